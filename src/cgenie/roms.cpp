#include "cgenie/roms.h"

#include "cgenie/firmware_images.h"
#include "cgenie/memory/memory.h"
#include "media/tape.h"
#include "media/tape_audio.h"
#include "media/traps.h"
#include "wall/machine_host.h"

#include <algorithm>

namespace {

enum : uint32_t { CUSTOM_BASIC_ROM = 3 };
enum : uint32_t { EPROM_DISK_ROM = 0, EPROM_FILE = 2 };
constexpr uint8_t UNPROGRAMMED = 0xFF;

constexpr FirmwareImage basic_image(uint32_t index) {
    switch (index) {
    case 1: return FirmwareImage::basic_v2;
    case 2: return FirmwareImage::basic_v2sn;
    default: return FirmwareImage::basic_v1;
    }
}

} // namespace

void memory_set_basic_rom(uint32_t index) {
    // A ROM that the traps did not fit may give way to one that they fit.
    const bool patched = cas_is_traps_installed() ||
                         (cassette.ready && !tape_traps_fit(active_rom) && !tape_wav_is_open());
    std::ranges::copy(firmware_bytes(basic_image(index)), memory);
    if (index == CUSTOM_BASIC_ROM) machine_host.read_rom(ROM_BASIC, memory, BASIC_ROM_SIZE);
    std::copy_n(memory, BASIC_ROM_SIZE, active_rom);
    if (patched) tape_place_traps(memory);
}

void memory_set_eprom(uint32_t index) {
    if (index == EPROM_DISK_ROM) {
        std::ranges::copy(firmware_bytes(FirmwareImage::disk), current_eprom);
    } else if (index == EPROM_FILE) {
        machine_host.read_rom(ROM_EXPANSION, current_eprom, EXPANSION_SIZE);
    } else {
        std::ranges::fill(current_eprom, UNPROGRAMMED);
    }
}
