#pragma once
/// Files of the host, as the programs for the command line take them: "-" is the standard input or
/// output.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// The bytes of a regular file or of the standard input; nothing when they cannot be read, or when
/// there are more than `limit`.
std::optional<std::vector<uint8_t>> read_host_file(const std::string& path, size_t limit);

/// Writes the file at one stroke, or to the standard output or a device. One that exists is
/// replaced with `force` only. Returns why it was not written; empty when it was.
std::string write_host_file(const std::string& path, std::span<const uint8_t> bytes, bool force);
