#pragma once
/// Files that are read and written as a whole.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// In bytes. No file for this machine comes near it: a tape of an hour has less than a megabyte.
constexpr size_t LARGEST_FILE = 16 << 20;

/// The bytes of a regular file; nothing when it cannot be opened or read, is a folder or a device,
/// or is larger than `limit`.
std::optional<std::vector<uint8_t>> read_whole_file(const std::string& path,
                                                    size_t limit = LARGEST_FILE);

/// What read_whole_file asks about a path that is not that of a file: a program that reads archives
/// as if they were folders sets it. Null where there are no archives.
extern std::optional<std::vector<uint8_t>> (*read_in_archive)(const std::string& path,
                                                              size_t limit);

/// Replaces the file, or makes it, at one stroke: whatever happens, the file holds either its old
/// or its new contents. Permissions, owner, group and access lists stay as far as the user may set
/// them, and a link keeps pointing to its file, which is made where it is missing.
///
/// A file with several names, or in a folder where no file can be made, is written in place. A copy
/// of the new contents is then in the rescue folder of the user's data directory meanwhile; after a
/// kill interrupted_writes() finds it. A device or a pipe with a reader just gets the bytes.
///
/// False when that fails, with the reason in errno and the file as it was. Only where a file that
/// is written in place could not be restored either, it is one of interrupted_writes().
bool replace_whole_file(const std::string& path, std::span<const uint8_t> bytes);
bool replace_whole_file(const std::string& path, std::string_view text);

/// Letters and digits that no other file has in its name.
std::string random_name();
/// Whether replace_whole_file gives its temporary files such a name.
bool is_temporary_name(std::string_view name);
