#include "media/disk_system.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <map>
#include <span>

namespace {

constexpr size_t SECTOR = SECTOR_SIZE;
constexpr unsigned FORMATTED_TRACKS[] = {80, 40, 35}; ///< FORMAT takes the first that is there
constexpr unsigned MOST_TRACKS = FORMATTED_TRACKS[0];
constexpr uint8_t UNFORMATTED = 0xE5;

// The boot sector.
constexpr uint8_t BOOT_MARK = 0xFE;
constexpr uint8_t SIGNATURE[] = {'T', 'D', 'O', 'S', '1'};
constexpr size_t BOOT_NAME = 5;

// Bytes of the map.
constexpr uint8_t MAP_FREE = 0xFF, MAP_RESERVED = 0xFE, MAP_LAST = 0xC0;
constexpr uint8_t NO_BLOCK = 0xFF;

// Directory entries.
constexpr size_t ENTRY = 16, ENTRY_TYPE = 11, ENTRY_BLOCK = 12, ENTRY_LAST = 13;
constexpr size_t NAME_PART = 8;
constexpr uint8_t ENTRY_UNUSED = 0, ENTRY_DELETED = 0xE5;
constexpr uint8_t BLANK = ' ';

constexpr uint8_t JV3_WRITABLE = 0xFF; ///< also an entry without a sector
constexpr unsigned TRACKS_LIMIT = 256;

int fail(std::string& problem, const std::string& text) {
    problem = text;
    return 0;
}

std::string number(size_t value) { return std::to_string(value); }

// Sectors of the image. The ones that a mounted disk uses are all there.

std::optional<std::span<uint8_t>> sector_of(disk_image& image, unsigned track, unsigned sector) {
    const auto offset = diskimg_sector_offset(image, track, sector);
    if (!offset) return {};
    return std::span(image.image).subspan(*offset, SECTOR);
}

void fill_sector(disk_image& image, unsigned track, unsigned sector, uint8_t byte) {
    std::ranges::fill(*sector_of(image, track, sector), byte);
}

bool has_sectors(const disk_image& image, unsigned tracks, unsigned sectors) {
    for (unsigned track = 0; track < tracks; ++track) {
        for (unsigned sector = 0; sector < sectors; ++sector) {
            if (!diskimg_sector_offset(image, track, sector)) return false;
        }
    }
    return image.bytes_per_sector == SECTOR;
}

unsigned block_sectors(const DiskSystem& disk) { return disk.sectors / 2; }
unsigned block_count(const DiskSystem& disk) { return disk.tracks * 2; }

/// The bytes of sector `index` of a block.
std::span<uint8_t> block_sector(DiskSystem& disk, unsigned block, unsigned index) {
    return *sector_of(disk.image, block / 2, block % 2 * block_sectors(disk) + index);
}

void write_directory(DiskSystem& disk) {
    std::ranges::copy(disk.map, sector_of(disk.image, disk.directory_track, 0)->begin());
    for (unsigned sector = 1; sector < disk.sectors; ++sector) {
        std::copy_n(disk.directory.begin() + ptrdiff_t((sector - 1) * SECTOR), SECTOR,
                    sector_of(disk.image, disk.directory_track, sector)->begin());
    }
    disk.image.modified = true;
}

bool is_last(const DiskSystem& disk, uint8_t link) {
    return link > MAP_LAST && link <= MAP_LAST + block_sectors(disk);
}

/// Follows the chain of a file as far as it goes.
void measure_file(const DiskSystem& disk, DiskFile& file) {
    if (file.first_block == NO_BLOCK) {
        file.whole = file.last_bytes == 0;
        return;
    }
    for (uint8_t block = file.first_block; block < block_count(disk);) {
        if (file.blocks.size() == block_count(disk)) return;
        const uint8_t link = disk.map[block];
        if (link == MAP_FREE || link == MAP_RESERVED) return;
        file.blocks.push_back(block);
        file.whole = is_last(disk, link);
        file.sectors += file.whole ? link - MAP_LAST : block_sectors(disk);
        block = link;
    }
    if (!file.whole) return;
    file.bytes = file.sectors * SECTOR;
    if (file.last_bytes) file.bytes -= SECTOR - file.last_bytes;
}

void write_entry(DiskSystem& disk, size_t entry, const DiskName& name, uint8_t type, uint8_t block,
                 size_t bytes) {
    uint8_t* const to = disk.directory.data() + entry;
    std::ranges::copy(name, to);
    to[ENTRY_TYPE] = type;
    to[ENTRY_BLOCK] = block;
    to[ENTRY_LAST] = uint8_t(bytes % SECTOR);
    std::fill(to + ENTRY_LAST + 1, to + ENTRY, uint8_t(0));
}

std::optional<size_t> free_entry(const DiskSystem& disk) {
    for (size_t entry = 0; entry < disk.directory.size(); entry += ENTRY) {
        const uint8_t first = disk.directory[entry];
        if (first == ENTRY_UNUSED || first == ENTRY_DELETED) return entry;
    }
    return {};
}

const DiskFile* file_named(const std::vector<DiskFile>& files, const DiskName& name) {
    const auto found = std::ranges::find(files, name, &DiskFile::name);
    return found == files.end() ? nullptr : &*found;
}

void free_file(DiskSystem& disk, const DiskFile& file) {
    for (const uint8_t block : file.blocks) disk.map[block] = MAP_FREE;
    disk.directory[file.entry] = ENTRY_DELETED;
}

int may_write(const DiskSystem& disk, std::string& problem) {
    if (disk.image.write_protected) return fail(problem, "the disk is write-protected");
    for (const DiskFault& fault : disk_check(disk)) {
        if (fault.harmful) return fail(problem, "not written, since " + fault.text);
    }
    return 1;
}

// Names.

bool is_name_byte(uint8_t byte) {
    return byte > BLANK && byte != '/' && byte != ':' && !std::islower(byte);
}

uint8_t capital(uint8_t byte) { return byte >= 'a' && byte <= 'z' ? byte - 'a' + 'A' : byte; }

/// The bytes of a text with \xNN.
DiskBytes unescape(const std::string& text) {
    DiskBytes bytes;
    for (size_t at = 0; at < text.size(); ++at) {
        const auto digit = [&](size_t i) {
            return i < text.size() && std::isxdigit(uint8_t(text[i]));
        };
        if (text.compare(at, 2, "\\x") != 0 || !digit(at + 2) || !digit(at + 3)) {
            bytes.push_back(uint8_t(text[at]));
            continue;
        }
        bytes.push_back(uint8_t(std::stoul(text.substr(at + 2, 2), nullptr, 16)));
        at += 3;
    }
    return bytes;
}

/// `part` at `place` of the name; false when it does not fit.
bool put_part(DiskName& name, size_t place, size_t room, const DiskBytes& part) {
    if (part.size() > room) return false;
    for (const uint8_t byte : part) {
        const uint8_t letter = capital(byte);
        if (!is_name_byte(letter)) return false;
        name[place++] = letter;
    }
    return true;
}

bool is_valid(const DiskName& name) {
    const auto part = [&](size_t from, size_t to) {
        const auto end = std::find(name.begin() + from, name.begin() + to, BLANK);
        return std::all_of(name.begin() + from, end, is_name_byte) &&
               std::all_of(end, name.begin() + to, [](uint8_t byte) { return byte == BLANK; });
    };
    return name[0] != BLANK && name[0] != ENTRY_DELETED && part(0, NAME_PART) &&
           part(NAME_PART, name.size());
}

std::optional<DiskName> split_name(const std::string& text, size_t separator) {
    DiskName name;
    name.fill(BLANK);
    const std::string extension = separator == std::string::npos ? "" : text.substr(separator + 1);
    if (!put_part(name, 0, NAME_PART, unescape(text.substr(0, separator))) ||
        !put_part(name, NAME_PART, name.size() - NAME_PART, unescape(extension)))
        return {};
    return is_valid(name) ? std::optional(name) : std::nullopt;
}

// What disk_check looks at.

void add(std::vector<DiskFault>& faults, const std::string& text, bool harmful = true) {
    faults.push_back({text, harmful});
}

void check_boot_sector(const DiskSystem& disk, std::vector<DiskFault>& faults) {
    if (std::ranges::find(FORMATTED_TRACKS, disk.tracks) == std::end(FORMATTED_TRACKS))
        add(faults, "the boot sector has " + number(disk.tracks) + " tracks");
    if (disk.directory_track != disk.tracks / 2)
        add(faults, "the boot sector has the directory on track " + number(disk.directory_track));
}

void check_map(const DiskSystem& disk, std::vector<DiskFault>& faults) {
    const unsigned own = disk.directory_track * 2;
    for (const unsigned block : {0U, own, own + 1}) {
        if (disk.map[block] != MAP_RESERVED)
            add(faults, "block " + number(block) + " of the system is not reserved");
    }
    for (unsigned block = 0; block < SECTOR; ++block) {
        const uint8_t link = disk.map[block];
        if (block >= block_count(disk) && link != MAP_FREE)
            add(faults, "the map goes on behind the last block, at " + number(block), false);
        if (block >= block_count(disk) || link >= MAP_RESERVED || is_last(disk, link)) continue;
        if (link >= block_count(disk))
            add(faults, "block " + number(block) + " has a link to nowhere");
    }
}

void check_end_of_directory(const DiskSystem& disk, std::vector<DiskFault>& faults) {
    size_t entry = 0;
    while (entry < disk.directory.size() && disk.directory[entry] != ENTRY_UNUSED) entry += ENTRY;
    for (; entry < disk.directory.size(); entry += ENTRY) {
        if (disk.directory[entry] == ENTRY_UNUSED) continue;
        add(faults, "entry " + number(entry / ENTRY) + " stands behind the end of the directory");
    }
}

void check_entry(const DiskSystem& disk, const DiskFile& file, std::vector<DiskFault>& faults) {
    const std::string name = disk_name_text(file.name);
    const uint8_t* const entry = disk.directory.data() + file.entry;
    if (!is_valid(file.name)) add(faults, name + " is no name of a file");
    if (file.type > FILE_DATA) add(faults, name + " has the type " + number(file.type));
    if (!std::all_of(entry + ENTRY_LAST + 1, entry + ENTRY, [](uint8_t b) { return b == 0; }))
        add(faults, name + " has an entry that does not end with zeros", false);
    if (!file.whole && file.first_block == NO_BLOCK)
        add(faults, name + " is empty, and has a length");
    else if (!file.whole)
        add(faults, name + " has a chain of blocks that does not end");
}

void check_owners(const DiskSystem& disk, const std::vector<DiskFile>& files,
                  std::vector<DiskFault>& faults) {
    std::map<uint8_t, const DiskFile*> owners;
    for (const DiskFile& file : files) {
        for (const uint8_t block : file.blocks) {
            const auto [owner, first] = owners.try_emplace(block, &file);
            if (first) continue;
            const std::string other = disk_name_text(owner->second->name);
            add(faults, disk_name_text(file.name) + " has block " + number(block) +
                            (owner->second == &file ? " twice" : ", which is one of " + other));
            break;
        }
    }
    for (unsigned block = 0; block < block_count(disk); ++block) {
        if (disk.map[block] < MAP_RESERVED && !owners.contains(uint8_t(block)))
            add(faults, "block " + number(block) + " belongs to no file", false);
    }
}

void put_little_endian(DiskBytes& bytes, size_t place, uint32_t value) {
    for (unsigned i = 0; i < 4; ++i) bytes[place + i] = uint8_t(value >> 8 * i);
}

/// The table of sector headers: track, sector, and flags, 00 for single density.
void put_jv3_header(DiskBytes& bytes, unsigned tracks, unsigned sectors) {
    std::fill_n(bytes.begin(), JV3_HEADER_SIZE, JV3_WRITABLE);
    const size_t count = std::min<size_t>(tracks * sectors, JV3_HEADER_SIZE / JV3_ENTRY_SIZE);
    for (size_t i = 0; i < count; ++i) {
        uint8_t* const entry = bytes.data() + i * JV3_ENTRY_SIZE;
        entry[0] = uint8_t(i / sectors);
        entry[1] = uint8_t(i % sectors);
        entry[2] = 0;
    }
}

void put_cgd_header(DiskBytes& bytes, unsigned tracks, unsigned sectors) {
    std::fill_n(bytes.begin(), CGD_HEADER_SIZE, uint8_t(0));
    put_little_endian(bytes, 0, tracks);
    put_little_endian(bytes, 4, 1); // side
    put_little_endian(bytes, 8, sectors);
    put_little_endian(bytes, 12, SECTOR);
}

} // namespace

std::optional<disk_image> disk_image_of(DiskBytes bytes, std::string& problem) {
    disk_image image;
    image.image = std::move(bytes);
    const bool known = !image.image.empty() && diskimg_find_geometry(image);
    if (!known) fail(problem, "not the size or the header of a disk image");
    return known ? std::optional(std::move(image)) : std::nullopt;
}

std::optional<disk_image> disk_blank(disk_layout layout, unsigned tracks, unsigned sectors,
                                     std::string& problem) {
    const std::string shape = number(tracks) + " tracks of " + number(sectors) + " sectors";
    fail(problem, "the emulator does not know images of this layout with " + shape);
    if (tracks == 0 || tracks >= TRACKS_LIMIT || sectors == 0 || sectors > DENSE_SECTORS) return {};
    const size_t header = layout == DISK_JV3     ? JV3_HEADER_SIZE
                          : layout == DISK_FIXED ? CGD_HEADER_SIZE
                                                 : 0;
    DiskBytes bytes(header + size_t(tracks) * sectors * SECTOR, UNFORMATTED);
    if (layout == DISK_JV3) put_jv3_header(bytes, tracks, sectors);
    if (layout == DISK_FIXED) put_cgd_header(bytes, tracks, sectors);
    std::string unknown;
    std::optional<disk_image> image = disk_image_of(std::move(bytes), unknown);
    if (!image || image->tracks != tracks || image->sectors != sectors) return {};
    if (image->side_value > 1 || image->data_offset != header) return {};
    if (!has_sectors(*image, tracks, sectors)) return {};
    problem.clear();
    return image;
}

int disk_format(disk_image& image, std::string& problem) {
    const auto fits = [&](unsigned count) { return count <= image.tracks; };
    const auto* const tracks = std::ranges::find_if(FORMATTED_TRACKS, fits);
    const unsigned sectors = image.sectors >= DENSE_SECTORS ? DENSE_SECTORS : COMMON_SECTORS;
    if (tracks == std::end(FORMATTED_TRACKS) || !has_sectors(image, *tracks, sectors))
        return fail(problem, "too few tracks for a directory");
    const unsigned directory = *tracks / 2;
    for (unsigned track = 0; track < *tracks; ++track) {
        for (unsigned sector = 0; sector < sectors; ++sector)
            fill_sector(image, track, sector, track == directory ? ENTRY_UNUSED : UNFORMATTED);
    }
    fill_sector(image, directory, 0, MAP_FREE);
    const std::span<uint8_t> map = *sector_of(image, directory, 0);
    for (const unsigned block : {0U, directory * 2, directory * 2 + 1}) map[block] = MAP_RESERVED;
    fill_sector(image, 0, 0, 0);
    const uint8_t boot[BOOT_NAME] = {0, BOOT_MARK, uint8_t(directory), uint8_t(*tracks),
                                     uint8_t(sectors)};
    const std::span<uint8_t> boot_sector = *sector_of(image, 0, 0);
    std::ranges::copy(boot, boot_sector.begin());
    std::ranges::copy(SIGNATURE, boot_sector.begin() + BOOT_NAME);
    const uint32_t shape[] = {image.tracks, image.sectors};
    if (!diskimg_find_geometry(image) || image.tracks != shape[0] || image.sectors != shape[1])
        return fail(problem, "the emulator does not know this image");
    image.modified = true;
    return 1;
}

std::optional<DiskSystem> disk_mount(disk_image image, std::string& problem) {
    fail(problem, "not a disk of the disk ROM");
    const auto boot = sector_of(image, 0, 0);
    if (!boot || image.bytes_per_sector != SECTOR || (*boot)[1] != BOOT_MARK ||
        !std::ranges::equal(boot->subspan(BOOT_NAME, std::size(SIGNATURE)), SIGNATURE))
        return {};
    DiskSystem disk;
    disk.directory_track = (*boot)[2];
    disk.tracks = (*boot)[3];
    disk.sectors = (*boot)[4];
    fail(problem, "the boot sector has a shape that the disk has not");
    if (disk.sectors != COMMON_SECTORS && disk.sectors != DENSE_SECTORS) return {};
    if (disk.tracks > MOST_TRACKS || disk.directory_track == 0 ||
        disk.directory_track >= disk.tracks || !has_sectors(image, disk.tracks, disk.sectors))
        return {};
    for (unsigned sector = 0; sector < disk.sectors; ++sector) {
        const std::span<uint8_t> bytes = *sector_of(image, disk.directory_track, sector);
        DiskBytes& to = sector == 0 ? disk.map : disk.directory;
        to.insert(to.end(), bytes.begin(), bytes.end());
    }
    disk.image = std::move(image);
    problem.clear();
    return disk;
}

std::optional<DiskName> disk_name(const std::string& text) {
    const size_t slash = text.find('/');
    return split_name(text, slash == std::string::npos ? text.rfind('.') : slash);
}

std::string disk_name_text(const DiskName& name) {
    std::string text;
    const auto add_part = [&](size_t from, size_t to) {
        while (to > from && name[to - 1] == BLANK) --to;
        for (; from < to; ++from) {
            char escaped[5];
            std::snprintf(escaped, sizeof escaped, "\\x%02X", name[from]);
            text += name[from] >= BLANK && name[from] < 0x7F ? std::string(1, char(name[from]))
                                                             : std::string(escaped);
        }
    };
    add_part(0, NAME_PART);
    if (name[NAME_PART] == BLANK) return text;
    text += '/';
    add_part(NAME_PART, name.size());
    return text;
}

std::vector<DiskFile> disk_files(const DiskSystem& disk) {
    std::vector<DiskFile> files;
    for (size_t at = 0; at < disk.directory.size(); at += ENTRY) {
        const uint8_t* const entry = disk.directory.data() + at;
        if (*entry == ENTRY_UNUSED) break;
        if (*entry == ENTRY_DELETED) continue;
        DiskFile file;
        std::copy_n(entry, file.name.size(), file.name.begin());
        file.type = entry[ENTRY_TYPE];
        file.first_block = entry[ENTRY_BLOCK];
        file.last_bytes = entry[ENTRY_LAST];
        file.entry = at;
        measure_file(disk, file);
        files.push_back(std::move(file));
    }
    return files;
}

std::optional<DiskFile> disk_find(const DiskSystem& disk, const std::string& name) {
    const std::vector<DiskFile> files = disk_files(disk);
    for (const auto& wanted : {disk_name(name), split_name(name, std::string::npos)}) {
        const DiskFile* const found = wanted ? file_named(files, *wanted) : nullptr;
        if (found) return *found;
    }
    return {};
}

unsigned disk_free_blocks(const DiskSystem& disk) {
    const auto end = disk.map.begin() + block_count(disk);
    return unsigned(std::count(disk.map.begin(), end, MAP_FREE));
}

size_t disk_block_bytes(const DiskSystem& disk) { return block_sectors(disk) * SECTOR; }

std::optional<DiskBytes> disk_contents(const DiskSystem& disk, const DiskFile& file) {
    if (!file.whole) return {};
    DiskBytes all;
    for (const uint8_t block : file.blocks) {
        for (unsigned i = 0; i < block_sectors(disk) && all.size() < file.bytes; ++i) {
            const unsigned sector = block % 2 * block_sectors(disk) + i;
            const size_t at = *diskimg_sector_offset(disk.image, block / 2, sector);
            const auto from = disk.image.image.begin() + ptrdiff_t(at);
            all.insert(all.end(), from,
                       from + ptrdiff_t(std::min(SECTOR, file.bytes - all.size())));
        }
    }
    return all;
}

std::vector<DiskFault> disk_check(const DiskSystem& disk) {
    std::vector<DiskFault> faults;
    check_boot_sector(disk, faults);
    check_map(disk, faults);
    check_end_of_directory(disk, faults);
    const std::vector<DiskFile> files = disk_files(disk);
    for (const DiskFile& file : files) {
        check_entry(disk, file, faults);
        if (file_named(files, file.name) != &file)
            add(faults, disk_name_text(file.name) + " is there twice");
    }
    check_owners(disk, files, faults);
    return faults;
}

int disk_put(DiskSystem& disk, const DiskName& name, DiskFileType type, const DiskBytes& bytes,
             std::string& problem) {
    if (!may_write(disk, problem)) return 0;
    DiskSystem next = disk;
    const std::vector<DiskFile> files = disk_files(disk);
    const DiskFile* const old = file_named(files, name);
    if (old) free_file(next, *old);
    const std::optional<size_t> entry = old ? old->entry : free_entry(next);
    if (!entry) return fail(problem, "the directory is full");
    const size_t sectors = (bytes.size() + SECTOR - 1) / SECTOR;
    if (sectors > size_t(disk_free_blocks(next)) * block_sectors(next))
        return fail(problem, "the disk is full");
    uint8_t first = NO_BLOCK;
    uint8_t* link = &first;
    unsigned block = 0;
    for (size_t sector = 0; sector < sectors; ++sector) {
        const unsigned index = unsigned(sector % block_sectors(next));
        if (index == 0) {
            block = unsigned(std::ranges::find(next.map, MAP_FREE) - next.map.begin());
            *link = uint8_t(block);
            link = &next.map[block];
        }
        *link = uint8_t(MAP_LAST + index + 1);
        const std::span<uint8_t> to = block_sector(next, block, index);
        const size_t count = std::min(SECTOR, bytes.size() - sector * SECTOR);
        std::ranges::fill(to, uint8_t(0));
        std::copy_n(bytes.begin() + ptrdiff_t(sector * SECTOR), count, to.begin());
    }
    write_entry(next, *entry, name, type, first, bytes.size());
    write_directory(next);
    disk = std::move(next);
    return 1;
}

int disk_delete(DiskSystem& disk, const DiskFile& file, std::string& problem) {
    if (!may_write(disk, problem)) return 0;
    free_file(disk, file);
    write_directory(disk);
    return 1;
}

int disk_rename(DiskSystem& disk, const DiskFile& file, const DiskName& name,
                std::string& problem) {
    if (!may_write(disk, problem)) return 0;
    const std::vector<DiskFile> files = disk_files(disk);
    const DiskFile* const other = file_named(files, name);
    if (other) return fail(problem, disk_name_text(name) + " is there already");
    std::ranges::copy(name, disk.directory.begin() + ptrdiff_t(file.entry));
    write_directory(disk);
    return 1;
}
