#pragma once
/// The rows of the machine's keyboard on the screen.

#include "host/command_table.h"

std::span<const CommandRow> keyboard_command_rows();
