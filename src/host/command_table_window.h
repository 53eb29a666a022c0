#pragma once
/// Rows of the command table for the main window's size and the picture's.

#include "host/command_table.h"

std::span<const CommandRow> window_command_rows();
