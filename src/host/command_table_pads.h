#pragma once
/// The row of the game pads.

#include "host/command_table.h"

/// It stands at the end of the command table.
std::span<const CommandRow> pad_command_rows();
