#pragma once
/// The steps of replace_whole_file that each system does in its own way.

#include "files/file_handle.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>

/// What a file that is to be replaced turns out to be.
struct WriteTarget {
    enum class Kind {
        missing, ///< is to be made
        file,
        in_place, ///< a file that no other can take the place of, such as one with several names
        device,   ///< or a pipe
    };
    Kind kind = Kind::missing;
    std::string path; ///< where links lead to, absolute
};
/// Nothing for what may not be written, with the reason in errno.
std::optional<WriteTarget> write_target(const std::string& path);

bool write_to_device(const std::string& path, std::span<const uint8_t> bytes);
/// Makes the file with these bytes and writes it through to the disk. When that fails, the file is
/// removed again. It gets the permissions of the file `like`; without one, those of a new file.
bool make_whole_file(const std::string& path, std::span<const uint8_t> bytes,
                     const std::string& like);
/// Gives the complete file the name of the target at one stroke, which survives a crash.
bool take_place(const std::string& file, const WriteTarget& target);
/// Looks at errno: no file can be made in that folder, or none may take the place of the old one.
/// It is then written in place.
bool stays_in_place();
/// An existing file, as it is, to be written to.
FileHandle open_to_overwrite(const std::string& path);
/// Whether there is room for so many bytes. Not every file system can tell.
bool reserve(std::FILE* file, size_t size);
/// Writes names in the folder through to the disk.
void sync_folder(const std::string& folder);
