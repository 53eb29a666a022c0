#include "media/disk_image.h"

#include "wall/machine_host.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr uint32_t JV3_ENTRIES = 2901;
constexpr uint32_t DIRECTORY_TRACK = 21;  ///< where no boot sector tells
constexpr uint32_t DIRECTORY_POINTER = 2; ///< of the boot sector: the directory's track
constexpr uint32_t LARGEST_SIDE = 368640; ///< longer files have two sides
constexpr uint32_t MOST_TRACKS = 82;
constexpr uint8_t UNFORMATTED = 0xE5;

struct known_size {
    uint32_t file_size;
    uint32_t tracks;
    disk_layout layout;
};
constexpr known_size KNOWN_SIZES[] = {
    {46080, 18, DISK_PLAIN},  {89600, 35, DISK_PLAIN},  {98304, 35, DISK_JV3},
    {102400, 40, DISK_PLAIN}, {111104, 40, DISK_JV3},   {174080, 68, DISK_PLAIN},
    {200448, 80, DISK_PLAIN}, {204800, 80, DISK_PLAIN}, {213504, 80, DISK_JV3},
    {375296, 80, DISK_JV3},
};
constexpr uint32_t CGD_SIZES[] = {194560, 194640};
constexpr uint32_t CUT_SIZE = 200448; ///< a dump of 80 tracks that lacks its last sectors
constexpr uint32_t WHOLE_SIZE = 204800;

uint32_t little_endian(const uint8_t* bytes) {
    return uint32_t(bytes[0]) | uint32_t(bytes[1]) << 8 | uint32_t(bytes[2]) << 16 |
           uint32_t(bytes[3]) << 24;
}

/// Which of the image's sectors it is, counted in the order of their bytes.
std::optional<uint64_t> sector_index(const disk_record& disk, std::span<const uint8_t> image,
                                     uint32_t track, uint32_t sector) {
    if (disk.layout != DISK_JV3) return uint64_t(disk.sectors) * track + sector;
    if (image.size() < JV3_HEADER_SIZE) return {};
    for (uint32_t index = 0; index < JV3_ENTRIES; ++index) {
        const uint8_t* const entry = image.data() + index * JV3_ENTRY_SIZE;
        if (entry[0] == track && entry[1] == sector) return index;
    }
    return {};
}

/// Nothing when the image has no such sector.
std::optional<size_t> sector_offset(const disk_record& disk, std::span<const uint8_t> image,
                                    uint32_t track, uint32_t sector) {
    const std::optional<uint64_t> index = sector_index(disk, image, track, sector);
    // Whatever a header says, the product stays small.
    if (!index || *index > image.size() || disk.bytes_per_sector > LARGEST_SECTOR) return {};
    const uint64_t offset = disk.data_offset + disk.bytes_per_sector * *index;
    if (offset + disk.bytes_per_sector > image.size()) return {};
    return size_t(offset);
}

int read_cgd_header(disk_image& disk) {
    const uint8_t* const header = disk.image.data();
    const uint32_t sides = little_endian(header + 4);
    disk.tracks = little_endian(header);
    disk.sectors = little_endian(header + 8);
    disk.bytes_per_sector = little_endian(header + 12);
    disk.side_value = sides - 1;
    disk.data_offset = CGD_HEADER_SIZE;
    disk.layout = DISK_FIXED;
    const uint32_t bytes = disk.bytes_per_sector;
    const bool sectors_fit =
        bytes == SMALLEST_SECTOR || bytes == SECTOR_SIZE || bytes == LARGEST_SECTOR;
    if ((sides == 1 || sides == 2) && disk.tracks <= MOST_TRACKS && sectors_fit) return 1;
    disk.layout = DISK_REJECTED;
    return 0;
}

int guess_from_size(disk_image& disk) {
    disk.side_value = disk.size <= LARGEST_SIDE ? 1 : 2;
    const uint32_t side_bytes = disk.size / disk.side_value;
    const uint32_t count = side_bytes / SECTOR_SIZE;
    if (side_bytes % SECTOR_SIZE) return 0;
    disk.sectors = count % DENSE_SECTORS == 0 ? DENSE_SECTORS : COMMON_SECTORS;
    disk.tracks = count / disk.sectors;
    disk.layout = DISK_FIXED;
    return count % disk.sectors == 0 ? 1 : 0;
}

int apply_known_size(disk_image& disk, const known_size& known) {
    disk.side_value = 1;
    disk.tracks = known.tracks;
    disk.sectors = COMMON_SECTORS;
    disk.layout = known.layout;
    if (known.layout == DISK_JV3) disk.data_offset = JV3_HEADER_SIZE;
    if (disk.size == CUT_SIZE) disk.image.resize(WHOLE_SIZE, UNFORMATTED);
    disk.size = uint32_t(disk.image.size());
    const std::optional<size_t> boot_sector = sector_offset(disk, disk.image, 0, 0);
    if (!boot_sector) return 0;
    disk.directory_track = disk.image[*boot_sector + DIRECTORY_POINTER];
    return 1;
}

} // namespace

int diskimg_analyze(disk_image& disk) {
    if (!diskimg_find_geometry(disk)) {
        if (disk.layout == DISK_REJECTED)
            machine_print(TEXT_ERROR, "IMAGE: Error! Unsupported image (%u) bytes.\n", disk.size);
        if (disk.layout == DISK_JV3)
            machine_print(TEXT_ERROR, "IMAGE: Error! Could not find boot sector.\n");
        return 0;
    }
    machine_print(TEXT_ERROR,
                  "IMAGE: Size in bytes: %u.\nIMAGE: Tracks per side: %u.\n"
                  "IMAGE: Bytes per sector: %u.\nIMAGE: Sectors per track: %u.\n"
                  "IMAGE: Dir on track: %u.\n",
                  disk.size, disk.tracks, disk.bytes_per_sector, disk.sectors,
                  disk.directory_track);
    return 1;
}

int diskimg_find_geometry(disk_image& disk) {
    disk.size = uint32_t(disk.image.size());
    disk.data_offset = 0;
    disk.bytes_per_sector = SECTOR_SIZE;
    disk.directory_track = DIRECTORY_TRACK;
    if (std::ranges::find(CGD_SIZES, disk.size) != std::end(CGD_SIZES)) {
        return read_cgd_header(disk);
    }
    const known_size* known = std::ranges::find(KNOWN_SIZES, disk.size, &known_size::file_size);
    return known != std::end(KNOWN_SIZES) ? apply_known_size(disk, *known) : guess_from_size(disk);
}

bool diskimg_inserted(const disk_record& disk) { return disk.size != 0; }

std::optional<size_t> diskimg_sector_offset(const disk_record& disk, std::span<const uint8_t> image,
                                            uint32_t track, uint32_t sector) {
    if (!diskimg_inserted(disk) || sector >= disk.sectors) return {};
    return sector_offset(disk, image, track, sector);
}

int disk_img_read_sector(const disk_record& disk, std::span<const uint8_t> image, uint32_t side,
                         uint32_t track, uint32_t sector, uint8_t* buffer) {
    const std::optional<size_t> offset = diskimg_sector_offset(disk, image, track, sector);
    if (!offset) return 0;
    std::copy_n(image.data() + *offset, disk.bytes_per_sector, buffer);
    machine_print(TEXT_ERROR, "IMAGE. Read(%u,%u,%u) from offset %05X.\n", side, track, sector,
                  unsigned(*offset));
    return 1;
}

int disk_img_write_sector(disk_record& disk, std::span<uint8_t> image, uint32_t /*side*/,
                          uint32_t track, uint32_t sector, const uint8_t* buffer) {
    const std::optional<size_t> offset = diskimg_sector_offset(disk, image, track, sector);
    if (!offset) return 0;
    std::copy_n(buffer, disk.bytes_per_sector, image.data() + *offset);
    disk.modified = disk.write_protected ? 0 : 1;
    return 1;
}
