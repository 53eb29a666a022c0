#pragma once
/// The rows of what only the menus of the status bar hold.

#include "host/command_table.h"

/// They stand behind all others in the command table.
std::span<const CommandRow> media_command_rows();
