#include "debugger_view/actions.h"

#include "debugger/debugger.h"
#include "debugger_view/view_state.h"
#include "platform/keyboard.h"
#include "time/history.h"

#include <algorithm>
#include <array>

namespace {

constexpr uint8_t PLAIN = 0, SHIFT_KEY = MODIFIER_SHIFT, CONTROL_KEY = MODIFIER_CONTROL,
                  BOTH_KEYS = MODIFIER_SHIFT | MODIFIER_CONTROL;

bool may_stop() { return !debugger_stands(); }
bool may_go_back() { return history_is_kept(); }

/// Backwards without a history: says what is missing.
template <void (*BACK)()>
void back() {
    if (!history_is_kept()) return view_tell("Options, Keep history makes going back possible.");
    BACK();
}

void toggle_here() {
    const DebugSection& section = view_section(view_focused());
    const auto address = section.address();
    if (view_focused() == SectionId::memory || view_focused() == SectionId::stack) {
        return view_toggle_breakpoint(BreakpointKind::memory_write, *address);
    }
    const auto listed = view_section(SectionId::listing).address();
    const bool is_calls = view_focused() == SectionId::calls && address;
    view_toggle_breakpoint(BreakpointKind::execute, is_calls ? *address : *listed);
}

/// "Who wrote this byte?"
void back_to_write() {
    const auto address = view_section(view_focused()).address();
    if (!address) return view_tell("Put the cursor on a byte, in the memory or on the stack.");
    view_tell("Looking for the last write to " + hex(*address, 4) + " ...");
    debugger_back_to_write(*address);
}

uint16_t listed_address() { return *view_section(SectionId::listing).address(); }

void ask_where_to_go() {
    view_ask_address("Show the address", {}, [](uint16_t address) {
        if (!view_section(view_focused()).go_to(address)) view_show_listing(address);
    });
}

constexpr bool (*always)() = [] { return true; };

constexpr auto debug_action_table = std::to_array<DebugAction>({
    {KEY_F5, PLAIN, "Go", debugger_go, debugger_stands},
    {KEY_F6, PLAIN, "Stop", debugger_stop, may_stop},
    {KEY_PAUSE, PLAIN, nullptr, debugger_stop, may_stop},
    {KEY_F11, PLAIN, "Into", debugger_step, debugger_stands},
    {KEY_F10, PLAIN, "Over", debugger_step_over, debugger_stands},
    {KEY_F11, CONTROL_KEY, "Out", debugger_step_out, debugger_stands},
    {KEY_F5, SHIFT_KEY, "<Go", back<debugger_back_go>, may_go_back},
    {KEY_F11, SHIFT_KEY, "<Into", back<debugger_back_step>, may_go_back},
    {KEY_F10, SHIFT_KEY, "<Over", back<debugger_back_over>, may_go_back},
    {KEY_F11, BOTH_KEYS, "<Out", back<debugger_back_out>, may_go_back},
    {KEY_F9, SHIFT_KEY, "<Write", back<back_to_write>, may_go_back},
    {KEY_F5, CONTROL_KEY, "Present", debugger_to_present, debugger_is_in_past},
    {KEY_F9, PLAIN, nullptr, toggle_here, always},
    {KEY_F4, PLAIN, nullptr, [] { debugger_run_to(listed_address()); }, always},
    {KEY_F4, SHIFT_KEY, nullptr, back<[] { debugger_back_to(listed_address()); }>, may_go_back},
    {'G', CONTROL_KEY, nullptr, ask_where_to_go, always},
});

} // namespace

std::span<const DebugAction> debug_actions() { return debug_action_table; }

const DebugAction* debug_action_of(const Event& event) {
    const auto found = std::ranges::find_if(debug_action_table, [&](const DebugAction& action) {
        return action.key == event.value && action.modifiers == event.modifiers;
    });
    return found == debug_action_table.end() ? nullptr : &*found;
}
