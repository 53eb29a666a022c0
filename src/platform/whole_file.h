#pragma once
/// Files that are read and written as a whole.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// No file for this machine comes near it: a tape of an hour has less than a megabyte.
constexpr size_t LARGEST_FILE = 16 << 20;

/// The bytes of a regular file; nothing when it cannot be opened or read, is a folder or a device,
/// or is larger than `limit`.
std::optional<std::vector<uint8_t>> read_whole_file(const std::string& path,
                                                    size_t limit = LARGEST_FILE);

/// Replaces the file, or makes it, at one stroke: whatever happens, the file holds either its old
/// or its new contents. The permissions stay, and a link keeps pointing to its file. False when
/// that fails, with the file as it was.
bool replace_whole_file(const std::string& path, std::span<const uint8_t> bytes);
