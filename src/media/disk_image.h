#pragma once
/// Disk images: the sectors of a floppy disk as the bytes of a file. A drive holds all of them.
///
/// Three layouts: plain sector dumps (DSK), images with a table of sector headers (JV3), and images
/// with a small geometry header (CGD). Sectors count from 0. The side is not part of an address:
/// only the first side can be reached.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

enum disk_layout : uint8_t { DISK_PLAIN = 0, DISK_JV3 = 1, DISK_FIXED = 2, DISK_REJECTED = 4 };

/// What is known of an image beside its bytes.
struct disk_record {
    uint32_t side_value = 0; ///< as shown to the user plus one
    uint32_t tracks = 0;     ///< per side
    uint32_t sectors = 0;    ///< per track
    uint32_t bytes_per_sector = 0;
    uint32_t directory_track = 0; ///< its sectors carry the deleted-data mark
    uint32_t size = 0;            ///< of the image, bytes; 0 for an empty drive
    uint32_t data_offset = 0;     ///< of the first sector in the image
    uint8_t layout = DISK_PLAIN;
    uint8_t write_protected = 0; ///< 1: what is written to it is not to be kept
    uint8_t modified = 0;        ///< 1: written to since it was put in
    uint8_t unused = 0;
};

/// An image outside of the drives.
struct disk_image : disk_record {
    std::vector<uint8_t> image; ///< `size` bytes
};

// Bytes.
constexpr uint32_t SECTOR_SIZE = 256; ///< of all images but some CGD ones
constexpr uint32_t SMALLEST_SECTOR = 128;
constexpr uint32_t LARGEST_SECTOR = 512;
constexpr uint32_t CGD_HEADER_SIZE = 80; ///< before the first sector
constexpr uint32_t JV3_HEADER_SIZE = 8704;
constexpr uint32_t JV3_ENTRY_SIZE = 3; ///< of its table: track, sector, flags

constexpr uint32_t COMMON_SECTORS = 10; ///< on a track of single density
constexpr uint32_t DENSE_SECTORS = 18;  ///< on a track of double density

/// Sets the size and the geometry from the contents of `image`. 1 on success. Prints on the
/// standard error stream what it has found.
int diskimg_analyze(disk_image& disk);
/// The same, without printing.
int diskimg_find_geometry(disk_image& disk);
bool diskimg_inserted(const disk_record& disk);

// In the following, `image` has the bytes that belong to the record.

/// Where the sector is in `image`; nothing when there is none.
std::optional<size_t> diskimg_sector_offset(const disk_record& disk, std::span<const uint8_t> image,
                                            uint32_t track, uint32_t sector);
/// Copies a sector of `bytes_per_sector` bytes to `buffer`. 1 on success, 0 when there is none.
int disk_img_read_sector(const disk_record& disk, std::span<const uint8_t> image, uint32_t side,
                         uint32_t track, uint32_t sector, uint8_t* buffer);
/// Copies `bytes_per_sector` bytes of `buffer` into a sector and marks the image as changed. 1 on
/// success, 0 when there is none.
int disk_img_write_sector(disk_record& disk, std::span<uint8_t> image, uint32_t side,
                          uint32_t track, uint32_t sector, const uint8_t* buffer);

inline std::optional<size_t> diskimg_sector_offset(const disk_image& disk, uint32_t track,
                                                   uint32_t sector) {
    return diskimg_sector_offset(disk, disk.image, track, sector);
}
inline int disk_img_read_sector(const disk_image& disk, uint32_t side, uint32_t track,
                                uint32_t sector, uint8_t* buffer) {
    return disk_img_read_sector(disk, disk.image, side, track, sector, buffer);
}
inline int disk_img_write_sector(disk_image& disk, uint32_t side, uint32_t track, uint32_t sector,
                                 const uint8_t* buffer) {
    return disk_img_write_sector(disk, disk.image, side, track, sector, buffer);
}
