#pragma once
/// The application shell: start-up in a fixed order, shutdown, and whether the machine runs.

#include "host/shell_state.h"

#include <functional>

/// Start-up, message loop, shutdown. Returns the exit code.
int run_shell(const ShellOptions& options);

/// Starts everything that needs the window, up to the command line's file.
void emu_init(const ShellOptions& options = {});
/// Ends recordings, keeps the settings, asks for changed disks, and behind the last answer closes
/// what emu_init opened.
void emu_close(std::function<void()> done = {});

/// Pause and monitor have toggled their flag: run when the machine stood still before and neither
/// holds it now.
void activate_after_toggle();
/// Run when neither pause nor monitor holds the machine.
void activate_unless_held();
