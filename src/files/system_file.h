#pragma once
/// What the operating system can do with files beyond the standard library. What fails
/// leaves its reason in errno.

#include "files/file_handle.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

bool path_exists(const std::string& path);
/// Whether it is certain that there is nothing of this name.
bool is_missing(const std::string& path);
/// Also true for a link that leads nowhere.
bool name_is_taken(const std::string& path);
bool is_folder(const std::string& path);
/// No folder, device or pipe, which may never come to an end.
bool is_plain_file(const std::string& path);
/// Bytes; nothing when there is no such file.
std::optional<uint64_t> size_of_file(const std::string& path);
/// Names of what is in the folder, in any order; none where it cannot be read.
std::vector<std::string> names_in(const std::string& folder);
/// Makes the folder and those above it, as far as they are missing.
void make_folders(const std::string& folder);

/// open_file for what may be no file: the other end of a pipe is never waited for.
FileHandle open_without_waiting(const std::string& path, const char* mode);
/// Makes the file, or empties it, to be read and written by its owner alone.
FileHandle open_private_file(const std::string& path);
/// A new file that has no name, or one that goes with the handle.
FileHandle open_nameless_file();

struct SystemFileFacts {
    enum class Kind { regular, device, other }; ///< other: a folder, a pipe
    Kind kind = Kind::other;
    uint64_t size = 0;
    bool has_name = true; ///< and was not removed after it had been opened
};
std::optional<SystemFileFacts> facts_of(std::FILE* file);

// None of these minds what is buffered in the handle, or moves its place: it is not to be mixed
// with reading and writing there.

/// Bytes that were read at `offset`; 0 at the file's end and after an error.
size_t read_at(std::FILE* file, uint64_t offset, std::span<uint8_t> bytes);
/// Bytes that reached the file at `offset`: fewer than wanted after an error.
size_t write_at(std::FILE* file, uint64_t offset, std::span<const uint8_t> bytes);
/// Cuts the file, or fills it up with zeros.
bool set_length(std::FILE* file, uint64_t length);
/// Writes the contents through to the disk. What cannot do that, such as a device, is no failure.
bool sync_contents(std::FILE* file);

enum class LockWait { no, yes };
/// Keeps the file for this handle; false where another one has it, and `wait` is no. The lock is
/// gone when the handle is closed, or its program ends in any way.
bool lock_file(std::FILE* file, LockWait wait);

/// Whether the user may read, or write to, what has this path.
bool may_read(const std::string& path);
bool may_write(const std::string& path);
/// Removes a file, not a folder.
bool remove_file(const std::string& path);
/// A file of the new name is replaced.
bool rename_file(const std::string& from, const std::string& to);
/// Makes one folder, for its owner alone.
bool make_private_folder(const std::string& path);
/// Removes a folder that is empty.
bool remove_folder(const std::string& path);
