#pragma once
/// What tells a file from all others, and whether its contents are still the same.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// The same for all names of a file. Both 0 where there is no file.
struct FileIdentity {
    uint64_t device = 0;
    uint64_t inode = 0;
    bool operator==(const FileIdentity&) const = default;
};
FileIdentity file_identity(const std::string& path);

/// The path without links and "..", or as it is when it leads nowhere.
std::string canonical_path(const std::string& path);

/// The path in absolute form, so that it holds wherever the next run starts; empty for an empty
/// one.
std::string lasting_path(const std::string& path);

/// Tells one run of bytes from another. Quick, and no protection against someone who means harm.
uint64_t content_hash(std::span<const uint8_t> bytes);
uint64_t content_hash(std::string_view text);
