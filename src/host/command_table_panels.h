#pragma once
/// Rows of the command table: the panels of disks and cassette.

#include "host/command_table.h"

std::span<const CommandRow> panel_command_rows();
