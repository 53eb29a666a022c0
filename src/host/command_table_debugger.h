#pragma once
/// Rows of the command table: the debugger's window.

#include "host/command_table.h"

std::span<const CommandRow> debugger_command_rows();
