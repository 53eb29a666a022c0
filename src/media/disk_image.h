#pragma once
/// Disk images: the sectors of a floppy disk in a file. The whole file is held in memory while it
/// is in a drive, and written back as a whole when it is taken out.
///
/// Three layouts: plain sector dumps (DSK), images with a table of sector headers (JV3), and images
/// with a small geometry header (CGD). Sectors count from 0. The side is not part of an address:
/// only the first side can be reached.

#include "files/file_identity.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

enum disk_layout : int { DISK_PLAIN = 0, DISK_JV3 = 1, DISK_FIXED = 2, DISK_REJECTED = 4 };

struct disk_image {
    uint32_t side_value = 0; ///< as shown to the user plus one
    uint32_t tracks = 0;     ///< per side
    uint32_t sectors = 0;    ///< per track
    uint32_t bytes_per_sector = 0;
    uint32_t directory_track = 0; ///< its sectors carry the deleted-data mark
    uint32_t size = 0;            ///< of the file, bytes
    uint32_t data_offset = 0;     ///< of the first sector in the file
    std::vector<uint8_t> image;   ///< the whole file; empty in an empty drive
    bool write_protected = false;
    bool modified = false;
    int layout = DISK_PLAIN;
    std::string path;
    FileIdentity file;         ///< that was read
    uint64_t file_hash = 0;    ///< of what it held then
    std::vector<bool> written; ///< sectors, in the order of the image, since diskimg_all_kept
};

// Bytes.
constexpr uint32_t SECTOR_SIZE = 256; ///< of all images but some CGD ones
constexpr uint32_t LARGEST_SECTOR = 512;
constexpr uint32_t CGD_HEADER_SIZE = 80; ///< before the first sector
constexpr uint32_t JV3_HEADER_SIZE = 8704;
constexpr uint32_t JV3_ENTRY_SIZE = 3; ///< of its table: track, sector, flags

constexpr uint32_t COMMON_SECTORS = 10; ///< on a track of single density
constexpr uint32_t DENSE_SECTORS = 18;  ///< on a track of double density

/// Reads the file and finds its geometry. 1 on success; on failure the record is empty.
int diskimg_attach(disk_image& disk, const std::string& path);
/// Sets the geometry from the size and the contents of `image`. 1 on success.
int diskimg_analyze(disk_image& disk);
/// The same without a word about it on the standard error stream.
int diskimg_find_geometry(disk_image& disk);
/// Where the sector is in `image`; nothing when there is none.
std::optional<size_t> diskimg_sector_offset(const disk_image& disk, uint32_t track,
                                            uint32_t sector);
bool diskimg_inserted(const disk_image& disk);
/// Copies a sector of `bytes_per_sector` bytes to `buffer`. 1 on success, 0 when there is none.
int disk_img_read_sector(const disk_image& disk, uint32_t side, uint32_t track, uint32_t sector,
                         uint8_t* buffer);
/// Copies `bytes_per_sector` bytes of `buffer` into a sector and marks the image as changed.
int disk_img_write_sector(disk_image& disk, uint32_t side, uint32_t track, uint32_t sector,
                          const uint8_t* buffer);
/// The sectors that were written since the image was read or diskimg_all_kept, as parts of `image`.
std::vector<std::span<const uint8_t>> diskimg_written(const disk_image& disk);
void diskimg_all_kept(disk_image& disk);

/// Whether the file holds anything else than when it was read. One that is missing does not.
bool diskimg_file_changed(const disk_image& disk);
/// The image replaces its file at one stroke. 0 when that fails, with the file as it was.
int diskimg_write_back(const disk_image& disk);
/// Writes the image to a new file in the folder "rescue" of the user's data directory, and returns
/// its path; nothing when that fails, too.
std::optional<std::string> diskimg_rescue(const disk_image& disk);
/// Empties the record. With `write_back` the image goes to its file first; where that fails, it is
/// rescued, which is reported, and the result is 0.
int diskimg_detach(disk_image& disk, bool write_back);
