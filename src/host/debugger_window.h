#pragma once
/// The debugger's window beside the main window. While it is open the debugger is on.

#include "platform/events.h"

/// The command: opens the window, or closes it. The machine goes on as before; one that the
/// debugger had stand is let go when the window is closed.
void toggle_debugger_window();
/// Opens it where the settings say that it was open. The main window must be there.
void start_debugger_window();
void end_debugger_window();
bool debugger_window_is_open();
/// Notes where the window is, for the settings.
void remember_debugger_window();

/// Is the event for that window, and of use?
bool debugger_window_wants(const Event& event);
void debugger_window_take_event(const Event& event);
/// What was drawn in it is lost.
void paint_debugger_window();
/// Once a turn, behind debugging_turn: draws what has changed.
void debugger_window_turn();

/// Obeys the command of an accelerator. While the debugger's window is open, one that resets the
/// machine is asked about first: the same keys step there.
void obey_accelerator(int command);
