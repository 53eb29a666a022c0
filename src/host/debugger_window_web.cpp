#include "host/commands.h"
#include "host/debugger_window.h"

// A browser's page has no debugger.

void toggle_debugger_window() {}
void start_debugger_window() {}
void end_debugger_window() {}
bool debugger_window_is_open() { return false; }
void remember_debugger_window() {}
bool debugger_window_wants(const Event& /*event*/) { return false; }
void debugger_window_take_event(const Event& /*event*/) {}
void paint_debugger_window() {}
void debugger_window_turn() {}
void obey_accelerator(int command) { handle_command(command); }
