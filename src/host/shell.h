#pragma once
/// The application shell: start-up in a fixed order, shutdown, and whether the machine runs.

#include "host/shell_state.h"

#include <functional>

/// Start-up, message loop, shutdown. Returns the exit code.
int run_shell(const ShellOptions& options);
/// The start-up alone: what follows are turns (turn.h), up to the end that one of them tells. For a
/// host whose system has the loop. False when there is no window; nothing is running then.
bool start_shell(const ShellOptions& options);

/// Starts everything that needs the window, up to the command line's file.
void emu_init(const ShellOptions& options = {});
/// Ends recordings, writes the settings and asks about changed disks. After the last answer it
/// closes what emu_init opened, and calls `done`.
void emu_close(std::function<void()> done = {});

/// To be called after pause or monitor has toggled its flag: lets the machine run if it stood still
/// before and none of those below holds it now.
void activate_after_toggle();
/// Lets the machine run if neither pause nor monitor nor debugger holds it.
void activate_unless_held();
/// Whether one of them does.
bool machine_is_held();
