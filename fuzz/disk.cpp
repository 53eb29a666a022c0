/// Disk images of every size that selects a layout, through the image module and through the
/// controller's registers.

#include "media/disk_system.h"
#include "media/files/drive_files.h"
#include "support/fake_host.h"
#include "support/files.h"
#include "support/machine.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace {

constexpr const char* NAME = "disk.dsk";
/// The last ones belong to no known format.
constexpr uint32_t SIZES[] = {46080,  89600,  98304,  102400, 111104, 174080, 194560,
                              194640, 200448, 204800, 213504, 375296, 368640, 737280,
                              2560,   4608,   256,    100000, 8704};
constexpr uint32_t MOST_TRACKS = 100;
constexpr uint32_t MOST_SECTORS = 64; ///< a header may claim any number

using Sector = std::array<uint8_t, LARGEST_SECTOR>;

/// One file in a controller; the first bytes choose its size.
void make_file(Input& input) {
    const uint8_t choice = input.byte();
    const auto pattern = input.take(input.word() % 4096);
    std::vector<uint8_t> file(choice < std::size(SIZES) ? SIZES[choice] : pattern.size());
    tile(file, pattern);
    write_file(NAME, file);
}

void turn_sector(uint32_t track, uint32_t sector) {
    disk_record& disk = wd1771.disks[0];
    const std::span<uint8_t> image = drive_contents[0].change();
    Sector bytes = {}, back = {};
    if (!disk_img_read_sector(disk, image, 0, track, sector, bytes.data())) return;
    for (uint8_t& byte : bytes) byte = uint8_t(~byte);
    require(disk_img_write_sector(disk, image, 0, track, sector, bytes.data()) == 1,
            "it is written");
    require(disk_img_read_sector(disk, image, 0, track, sector, back.data()) == 1,
            "it is read again");
    const auto count = ptrdiff_t(disk.bytes_per_sector);
    require(std::equal(bytes.begin(), bytes.begin() + count, back.begin()), "as it was written");
}

void turn_sectors() {
    const disk_record& disk = wd1771.disks[0];
    require(disk.bytes_per_sector <= LARGEST_SECTOR, "a sector fits into its buffer");
    const uint32_t tracks = std::min(disk.tracks, MOST_TRACKS);
    for (uint32_t track = 0; track < tracks + 2; track += 1 + track / 2) {
        for (uint32_t sector = 0; sector < std::min(disk.sectors, MOST_SECTORS) + 2; ++sector) {
            turn_sector(track, sector);
        }
    }
}

void list_files() {
    std::string problem;
    const auto disk = disk_mount(wd1771_disk(0), problem);
    if (!disk) return;
    for (const DiskFile& file : disk_files(*disk)) {
        const auto bytes = disk_contents(*disk, file);
        require(bytes.has_value() == file.whole, "a whole file can be read");
        require(!bytes || bytes->size() == file.bytes, "and has its size");
    }
}

/// One byte is the register, the direction and the time that passes; a written one follows.
void use_controller(Input& input) {
    constexpr int64_t TIME = 20'000; ///< cycles; two of them move a head
    while (!input.empty()) {
        const uint8_t action = input.byte();
        z80_state.t_count += (action >> 5) * TIME;
        if (action & 4) {
            wd1771_write_reg(action & 3, input.byte());
        } else if (action & 8) {
            wd1771_write_param_reg(input.byte());
        } else {
            for (int count = action & 16 ? 300 : 1; count > 0; --count) wd1771_read_reg(action & 3);
        }
        wd1771_is_active();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    fake_host = {};
    fresh_machine();
    const uint8_t flags = input.byte();
    make_file(input);
    const int attached = diskimg_attach(0, NAME);
    require((attached == 1) == diskimg_inserted(wd1771.disks[0]),
            "what is attached is in the drive");
    if (flags & 1) turn_sectors();
    turn_sector(input.dword(), input.dword());
    list_files();
    use_controller(input);
    const std::vector<uint8_t> image = wd1771_disk(0).image;
    require(diskimg_detach(0, (flags & 2) != 0) == 1, "it is written back");
    if (attached && (flags & 2)) require(read_file(NAME) == image, "the file is the image");
    return 0;
}
