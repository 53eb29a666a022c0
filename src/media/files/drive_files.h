#pragma once
/// The files of the disks in the drives. A file is read as a whole when its disk is put in, and
/// written as a whole when the disk is taken out.

#include "files/file_identity.h"
#include "media/wd1771.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

struct disk_file {
    std::string path;      ///< empty without a file
    FileIdentity identity; ///< of the file that was read
    uint64_t hash = 0;     ///< of what it held then
};
extern std::array<disk_file, DISK_DRIVES> drive_files; ///< of the drives

// Drives are 0 to 3.

/// Reads the file into the drive, whose disk before is thrown away. 1 on success; on failure the
/// drive is empty. A file that may only be read makes a write-protected disk.
int diskimg_attach(unsigned drive, const std::string& path);
/// Whether the file holds anything else than when it was read. One that is missing does not.
bool diskimg_file_changed(unsigned drive);
/// The disk replaces its file at one stroke. 0 when that fails, with the file as it was.
int diskimg_write_back(unsigned drive);
/// Writes the disk to a new file in the folder "rescue" of the user's data directory, and returns
/// its path; nothing when that fails, too.
std::optional<std::string> diskimg_rescue(unsigned drive);
/// Empties the drive. With `write_back` the disk goes to its file first; where that fails, it is
/// rescued, which is reported, and the result is 0.
int diskimg_detach(unsigned drive, bool write_back);
