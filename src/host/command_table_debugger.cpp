#include "host/command_table_debugger.h"

#include "host/debugger_window.h"
#include "host/menu.h"
#include "host/shell_state.h"

namespace {

constexpr uint32_t FARTHEST = 20000; ///< no screen is wider

template <uint32_t DebuggerPlace::*NUMBER>
Setting debugger_place_setting(const char* name) {
    constexpr NumberAccess access = {
        [] {
            remember_debugger_window();
            return shell_state.debugger_place.*NUMBER;
        },
        [](uint32_t number) { shell_state.debugger_place.*NUMBER = number; }};
    return {.name = name,
            .place = access,
            .initial = 0,
            .read = StartStep::picture,
            .possible = [](uint32_t n) { return n > FARTHEST ? 0 : n; }};
}

} // namespace

std::span<const CommandRow> debugger_command_rows() {
    static const CommandRow rows[] = {
        {.id = COMMAND_DEBUGGER,
         .label = "&Debugger window",
         .hint = "Alt+D",
         .tip = "Stops the machine where you want, shows all of it, and goes back in time.",
         .keys = {{{'D', MODIFIER_ALT}}},
         .run = toggle_debugger_window,
         .marked = [] { return shell_state.debugger_place.open; },
         .setting = {.name = "Debugger",
                     .place = &shell_state.debugger_place.open,
                     .initial = 0,
                     .read = StartStep::picture}},
        {.setting = debugger_place_setting<&DebuggerPlace::left>("DebuggerLeft")},
        {.setting = debugger_place_setting<&DebuggerPlace::top>("DebuggerTop")},
        {.setting = debugger_place_setting<&DebuggerPlace::width>("DebuggerWidth")},
        {.setting = debugger_place_setting<&DebuggerPlace::height>("DebuggerHeight")},
    };
    return rows;
}
