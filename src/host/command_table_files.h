#pragma once
/// The rows of new disks and tapes and of the disks' write protection.

#include "host/command_table.h"

/// They stand behind all others in the command table.
std::span<const CommandRow> file_command_rows();
