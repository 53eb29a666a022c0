#pragma once
/// The debugger's window: draws into the pane PaneId::debugger what the machine is, and takes its
/// keys and its mouse. It is one of the debugger's fronts (debugger/debugger.h), which has to be
/// on.

#include "platform/events.h"

#include <string>

/// The pane is open. The machine stays as it is.
void debugger_view_start();
void debugger_view_end();
bool debugger_view_is_open();
/// Draws all of it: what was drawn is lost.
void debugger_view_paint();
/// Once a turn: draws what has changed; ten times a second while the machine runs.
void debugger_view_turn();
/// Whether the event is for it, and of use.
bool debugger_view_wants(const Event& event);
void debugger_view_take(const Event& event);
/// The machine has been changed by somebody else, or breakpoints have: it is drawn anew.
void debugger_view_changed();
/// A line that a breakpoint has logged.
void debugger_view_log(const std::string& line);
