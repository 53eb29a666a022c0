#pragma once
/// Files of one process, in a folder that is the current directory and goes at the end.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// Makes the folder when it is asked for first.
void use_own_folder();
void write_file(const std::string& name, std::span<const uint8_t> bytes);
std::vector<uint8_t> read_file(const std::string& name);
