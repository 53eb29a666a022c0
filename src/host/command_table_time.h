#pragma once
/// The rows of all that goes back and forth in time: states, history, replays, speed.

#include "host/command_table.h"

/// They stand behind all others in the command table.
std::span<const CommandRow> time_command_rows();
