#pragma once
/// The rows of the downloads, for hosts that have them.

#include "host/command_table.h"

std::span<const CommandRow> download_command_rows();
