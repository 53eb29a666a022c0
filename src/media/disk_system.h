#pragma once
/// Disks of the disk ROM: boot sector, allocation map, directory and files in a disk image.
///
/// Sectors have 256 bytes, S (10 or 18) on each of T (35, 40 or 80) tracks, and count from 0.
/// - Track 0 sector 0, the boot sector: 00 or 01 (bootable), FE, D, T, S, "TDOS1"; code from 10.
/// - D = T / 2 is the directory track. Its sector 0 is the map: a byte for each of 2 T blocks.
///   Block n is the half n mod 2 of track n / 2. FF free, FE reserved, 00 to 9F next block of the
///   file, C0 + n last block with n sectors in use.
/// - The other sectors of that track are the directory, 16 bytes for a file: 8 characters of name,
///   3 of extension, type, first block (FF: empty file), bytes used in the last sector (00: 256),
///   00 00. 00 as the first byte ends the directory, E5 is a file deleted.
///
/// The image is never trusted: a chain without an end, or a block that is not on the disk, makes
/// the function fail.

#include "media/disk_image.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

using DiskBytes = std::vector<uint8_t>;
using DiskName = std::array<uint8_t, 11>; ///< name and extension, filled with blanks

enum DiskFileType : uint8_t { FILE_PROGRAM = 0, FILE_CODE = 1, FILE_DATA = 2 };

struct DiskFile {
    DiskName name = {};
    uint8_t type = 0;
    uint8_t first_block = 0;
    uint8_t last_bytes = 0;
    size_t entry = 0;              ///< offset in the directory
    std::vector<uint8_t> blocks;   ///< up to the fault where there is one
    size_t sectors = 0, bytes = 0; ///< in use
    bool whole = false;            ///< the chain has an end
};

/// A disk as its boot sector describes it. Map and directory are the ones of the image.
struct DiskSystem {
    disk_image image;
    unsigned tracks = 0, sectors = 0, directory_track = 0;
    DiskBytes map;       ///< one sector
    DiskBytes directory; ///< the other sectors of the track
};

struct DiskFault {
    std::string text;
    bool harmful = true; ///< writing to the disk could do damage
};

/// The geometry of the bytes of an image file. Nothing and `problem` when it has none.
std::optional<disk_image> disk_image_of(DiskBytes bytes, std::string& problem);

/// An image file of `tracks` times `sectors` sectors. Nothing and `problem` when the emulator would
/// not take it for that.
std::optional<disk_image> disk_blank(disk_layout layout, unsigned tracks, unsigned sectors,
                                     std::string& problem);
/// Formats the disk as the command FORMAT does: an empty directory on the first 80, 40 or 35
/// tracks. 0 and `problem` when there are too few.
int disk_format(disk_image& image, std::string& problem);

/// Nothing and `problem` when it is no disk of this system.
std::optional<DiskSystem> disk_mount(disk_image image, std::string& problem);

/// A name as in BASIC, NAME/EXT, or NAME.EXT as on the host; \xNN is the byte NN. Small letters
/// become capitals. Nothing when the disk ROM would refuse it.
std::optional<DiskName> disk_name(const std::string& text);
/// NAME/EXT, with \xNN for what ASCII cannot print.
std::string disk_name_text(const DiskName& name);

/// The files in the order of the directory.
std::vector<DiskFile> disk_files(const DiskSystem& disk);
/// The file of that name, which may also have a point in its name part.
std::optional<DiskFile> disk_find(const DiskSystem& disk, const std::string& name);
unsigned disk_free_blocks(const DiskSystem& disk);
size_t disk_block_bytes(const DiskSystem& disk);
/// Nothing when the chain of blocks has no end or leaves the disk.
std::optional<DiskBytes> disk_contents(const DiskSystem& disk, const DiskFile& file);
/// What is wrong with map, directory and files; nothing with a disk in order.
std::vector<DiskFault> disk_check(const DiskSystem& disk);

/// Each of these changes the image, or returns 0 and `problem` with everything as it was. `put`
/// replaces a file of the same name.
int disk_put(DiskSystem& disk, const DiskName& name, DiskFileType type, const DiskBytes& bytes,
             std::string& problem);
int disk_delete(DiskSystem& disk, const DiskFile& file, std::string& problem);
int disk_rename(DiskSystem& disk, const DiskFile& file, const DiskName& name, std::string& problem);
