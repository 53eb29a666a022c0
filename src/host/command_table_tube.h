#pragma once
/// The rows of the picture tube.

#include "host/command_table.h"

/// They stand behind those of help in the command table.
std::span<const CommandRow> tube_command_rows();
