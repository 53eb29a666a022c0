#pragma once
/// The application shell: start-up in a fixed order, the message loop, shutdown.

#include "host/command_line.h"

extern bool g_bActive; ///< frames are run in idle time

/// Starts everything; the platform is installed before.
void emu_init(const Arguments& arguments);
/// Messages first, a paced frame in every idle moment. Returns the exit code.
int run_message_loop();
void emu_close();
