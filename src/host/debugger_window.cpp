#include "host/debugger_window.h"

#include "debugger_view/view.h"
#include "host/commands.h"
#include "host/debugging.h"
#include "host/dialogs/ask.h"
#include "host/dialogs/dialogs.h"
#include "host/display.h"
#include "host/menu.h"
#include "host/messages.h"
#include "host/shell.h"
#include "host/status.h"
#include "platform/platform.h"

namespace {

constexpr int YES = 0;

int debugger_user = 0; ///< the window

DebuggerPlace& place() { return shell_state.debugger_place; }

void open_window() {
    const auto left = int(place().left), top = int(place().top);
    const Rectangle wanted = {left, top, left + int(place().width), top + int(place().height)};
    platform().window().place_debugger(true, wanted, COMMAND_DEBUGGER);
    debugger_user = debugging_begin(debugger_view_log);
    debugger_view_start();
}

void close_window() {
    remember_debugger_window();
    debugger_view_end();
    debugging_end(debugger_user);
    platform().window().place_debugger(false, {}, COMMAND_DEBUGGER);
}

} // namespace

void toggle_debugger_window() {
    place().open = !place().open;
    place().open ? open_window() : close_window();
}

void start_debugger_window() {
    if (!place().open || debugger_view_is_open()) return;
    if (shell_state.start.unattended || !platform().window().has_debugger()) return;
    open_window();
}

void end_debugger_window() {
    if (debugger_view_is_open()) close_window();
}

bool debugger_window_is_open() { return debugger_view_is_open(); }

void remember_debugger_window() {
    const Rectangle now = platform().window().debugger_rectangle();
    if (now.width() <= 0) return;
    place().left = uint32_t(now.left);
    place().top = uint32_t(now.top);
    place().width = uint32_t(now.width());
    place().height = uint32_t(now.height());
}

bool debugger_window_wants(const Event& event) { return debugger_view_wants(event); }

void debugger_window_take_event(const Event& event) {
    obey_user([&event] { debugger_view_take(event); });
}

void paint_debugger_window() { debugger_view_paint(); }

void debugger_window_turn() {
    if (debugger_view_is_open()) debugger_view_turn();
}

void obey_accelerator(int command) {
    const bool resets = command == COMMAND_RESET || command == COMMAND_RESTART;
    if (!resets || !debugger_window_is_open()) return handle_command(command);
    const bool whole = command == COMMAND_RESTART;
    ask("Debugger", whole ? "Restart the machine?" : "Reset the machine?", {"Yes", "No"},
        [command](int answer) {
            if (answer == YES) handle_command(command);
        });
}
