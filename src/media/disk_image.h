#pragma once
/// Disk images in the four drives. None can be attached yet: every attempt fails.

#include <string>

constexpr unsigned DISK_DRIVES = 4;

struct disk_geometry {
    unsigned sides = 0;
    unsigned tracks = 0;
    unsigned sectors = 0; ///< per track
    unsigned size_kb = 0; ///< of 1024 bytes
};

/// 1 when the image is in `drive` (0 to 3) now.
int diskimg_attach(unsigned drive, const std::string& path, disk_geometry* geometry);
/// Takes the image out; with `save`, a changed one is written back first.
void diskimg_detach(unsigned drive, bool save);
bool diskimg_is_attached(unsigned drive);
bool diskimg_is_changed(unsigned drive);
/// Empty without an image.
std::string diskimg_file_name(unsigned drive);
