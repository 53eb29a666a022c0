#include "media/disk_image.h"

#include "files/whole_file.h"
#include "platform/platform.h"
#include "wall/machine_host.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr uint32_t JV3_ENTRIES = 2901;
constexpr uint32_t DIRECTORY_TRACK = 21;  ///< where no boot sector tells
constexpr uint32_t DIRECTORY_POINTER = 2; ///< of the boot sector: the directory's track
constexpr uint32_t LARGEST_SIDE = 368640; ///< longer files have two sides
constexpr uint32_t MOST_TRACKS = 82;
constexpr uint8_t UNFORMATTED = 0xE5;
constexpr int MOST_RESCUES = 1000;       ///< of one name
constexpr size_t LONGEST_NAME = 255 - 7; ///< leaves room for the end that a file being written has

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

/// The offset of the sector in the file, or nothing when the file has no such sector.
std::optional<size_t> sector_offset(const disk_image& disk, uint32_t track, uint32_t sector) {
    uint64_t index = uint64_t(disk.sectors) * track + sector;
    if (disk.layout == DISK_JV3) {
        const uint8_t* const table = disk.image.data();
        for (index = 0; index < JV3_ENTRIES; ++index) {
            const uint8_t* const entry = table + index * JV3_ENTRY_SIZE;
            if (entry[0] == track && entry[1] == sector) break;
        }
        if (index == JV3_ENTRIES) return {};
    }
    if (index > disk.image.size()) return {}; // whatever a header says, the product stays small
    const uint64_t offset = disk.data_offset + disk.bytes_per_sector * index;
    if (offset + disk.bytes_per_sector > disk.image.size()) return {};
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
    const bool sectors_fit = bytes == 128 || bytes == 256 || bytes == LARGEST_SECTOR;
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
    if (disk.size == CUT_SIZE) disk.size = WHOLE_SIZE;
    const std::optional<size_t> boot_sector = sector_offset(disk, 0, 0);
    if (!boot_sector) return 0;
    disk.directory_track = disk.image[*boot_sector + DIRECTORY_POINTER];
    return 1;
}

/// A name in the user's data directory that no file has yet; empty when all are taken.
fs::path rescue_path(const std::string& path) {
    const fs::path folder = fs::path(platform().paths().data_directory()) / "rescue";
    const std::string name = fs::path(path).filename().string();
    const std::string extension = fs::path(name).extension().string();
    const std::string stem = name.substr(0, name.size() - extension.size());
    std::error_code error;
    fs::create_directories(folder, error);
    for (int n = 0; n < MOST_RESCUES; ++n) {
        const std::string ending = (n ? "-" + std::to_string(n) : "") + extension;
        const size_t room = LONGEST_NAME - std::min(LONGEST_NAME, ending.size());
        fs::path rescue = folder / (stem.substr(0, room) + ending);
        if (!fs::exists(fs::symlink_status(rescue, error))) return rescue;
    }
    return {};
}

} // namespace

int diskimg_attach(disk_image& disk, const std::string& path) {
    disk = {};
    disk.file = file_identity(path);
    std::optional<std::vector<uint8_t>> bytes = read_whole_file(path);
    if (!bytes || bytes->empty()) return 0;
    disk.file_hash = content_hash(*bytes);
    disk.image = std::move(*bytes);
    disk.size = uint32_t(disk.image.size());
    disk.write_protected = access(path.c_str(), W_OK) != 0;
    disk.path = path;
    if (diskimg_analyze(disk)) {
        diskimg_all_kept(disk);
        return 1;
    }
    disk = {};
    return 0;
}

int diskimg_analyze(disk_image& disk) {
    if (!diskimg_find_geometry(disk)) {
        if (disk.layout == DISK_REJECTED)
            std::fprintf(stderr, "IMAGE: Error! Unsupported image (%u) bytes.\n", disk.size);
        if (disk.layout == DISK_JV3)
            std::fputs("IMAGE: Error! Could not find boot sector.\n", stderr);
        return 0;
    }
    std::fprintf(stderr,
                 "IMAGE: Size in bytes: %u.\nIMAGE: Tracks per side: %u.\n"
                 "IMAGE: Bytes per sector: %u.\nIMAGE: Sectors per track: %u.\n"
                 "IMAGE: Dir on track: %u.\n",
                 disk.size, disk.tracks, disk.bytes_per_sector, disk.sectors, disk.directory_track);
    return 1;
}

int diskimg_find_geometry(disk_image& disk) {
    disk.data_offset = 0;
    disk.bytes_per_sector = SECTOR_SIZE;
    disk.directory_track = DIRECTORY_TRACK;
    if (std::ranges::find(CGD_SIZES, disk.size) != std::end(CGD_SIZES)) {
        return read_cgd_header(disk);
    }
    const known_size* known = std::ranges::find(KNOWN_SIZES, disk.size, &known_size::file_size);
    return known != std::end(KNOWN_SIZES) ? apply_known_size(disk, *known) : guess_from_size(disk);
}

bool diskimg_inserted(const disk_image& disk) { return !disk.image.empty(); }

std::optional<size_t> diskimg_sector_offset(const disk_image& disk, uint32_t track,
                                            uint32_t sector) {
    if (!diskimg_inserted(disk) || sector >= disk.sectors) return {};
    return sector_offset(disk, track, sector);
}

int disk_img_read_sector(const disk_image& disk, uint32_t side, uint32_t track, uint32_t sector,
                         uint8_t* buffer) {
    const std::optional<size_t> offset = diskimg_sector_offset(disk, track, sector);
    if (!offset) return 0;
    std::copy_n(disk.image.data() + *offset, disk.bytes_per_sector, buffer);
    std::fprintf(stderr, "IMAGE. Read(%u,%u,%u) from offset %05zX.\n", side, track, sector,
                 *offset);
    return 1;
}

int disk_img_write_sector(disk_image& disk, uint32_t /*side*/, uint32_t track, uint32_t sector,
                          const uint8_t* buffer) {
    const std::optional<size_t> offset = diskimg_sector_offset(disk, track, sector);
    if (!offset) return 0;
    std::copy_n(buffer, disk.bytes_per_sector, disk.image.data() + *offset);
    disk.modified = !disk.write_protected;
    const size_t number = (*offset - disk.data_offset) / disk.bytes_per_sector;
    if (disk.modified && number < disk.written.size()) disk.written[number] = true;
    return 1;
}

std::vector<std::span<const uint8_t>> diskimg_written(const disk_image& disk) {
    std::vector<std::span<const uint8_t>> sectors;
    const auto first = disk.written.begin();
    for (auto at = first; (at = std::find(at, disk.written.end(), true)) != disk.written.end();
         ++at) {
        const auto n = size_t(at - first);
        sectors.push_back(
            std::span(disk.image)
                .subspan(disk.data_offset + n * disk.bytes_per_sector, disk.bytes_per_sector));
    }
    return sectors;
}

void diskimg_all_kept(disk_image& disk) {
    disk.written.assign((disk.image.size() - disk.data_offset) / disk.bytes_per_sector, false);
}

bool diskimg_file_changed(const disk_image& disk) {
    std::error_code error;
    if (!fs::exists(disk.path, error)) return false;
    const auto bytes = read_whole_file(disk.path);
    return !bytes || content_hash(*bytes) != disk.file_hash;
}

int diskimg_write_back(const disk_image& disk) {
    return replace_whole_file(disk.path, disk.image) ? 1 : 0;
}

std::optional<std::string> diskimg_rescue(const disk_image& disk) {
    const std::string rescue = rescue_path(disk.path).string();
    if (rescue.empty() || !replace_whole_file(rescue, disk.image)) return {};
    return rescue;
}

int diskimg_detach(disk_image& disk, bool write_back) {
    if (!write_back || !diskimg_inserted(disk) || diskimg_write_back(disk)) {
        disk = {};
        return 1;
    }
    const std::string reason = std::strerror(errno);
    const std::optional<std::string> rescue = diskimg_rescue(disk);
    report({.text = disk.path + " cannot be written. " +
                    (rescue ? "The disk is in " + *rescue
                            : "No copy of the disk could be made: its contents are lost"),
            .reason = reason});
    disk = {};
    return 0;
}
