#pragma once
/// What the address of a page says behind its "?", for pages that have the machine in a frame:
/// "keyboard=1&tube=2&scale=whole&mute=1".

#include "host/command_line.h"

#include <string_view>

/// Adds the settings to the line, for this run. What is not known, or has a value that is not,
/// is left to others.
void read_page_query(std::string_view query, CommandLine& line);
