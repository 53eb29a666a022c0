#pragma once
/// The rows of the links, for hosts with a page.

#include "host/command_table.h"

std::span<const CommandRow> share_command_rows();
