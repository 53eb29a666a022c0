#pragma once
/// The rows of what helps a newcomer: the manual, examples, the files opened last, and
/// the way into the monitor.

#include "host/command_table.h"

/// They stand behind those of time in the command table.
std::span<const CommandRow> help_command_rows();
