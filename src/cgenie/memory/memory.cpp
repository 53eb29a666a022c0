#include "cgenie/memory/memory.h"

#include "cgenie/firmware_images.h"
#include "files/file_handle.h"
#include "files/whole_file.h"
#include "media/traps.h"
#include "platform/platform.h"

#include <algorithm>
#include <random>
#include <span>
#include <string>

uint8_t memory[MEMORY_SIZE];
uint8_t active_rom[BASIC_ROM_SIZE];
uint8_t current_eprom[EXPANSION_SIZE];
uint8_t ports[256];

namespace {

enum : uint32_t { CUSTOM_BASIC_ROM = 3 };
enum : uint32_t { EPROM_DISK_ROM = 0, EPROM_FILE = 2 };
constexpr uint32_t RANDOM_PATTERN = 256; ///< this and above
constexpr uint8_t UNPROGRAMMED = 0xFF;
constexpr uint32_t RAM_16K = 0;

uint32_t startup_pattern = 0;

constexpr uint32_t default_ram_size = 1;
const uint32_t* custom_ram_size = &default_ram_size;

constexpr FirmwareImage basic_image(uint32_t index) {
    switch (index) {
    case 1: return FirmwareImage::basic_v2;
    case 2: return FirmwareImage::basic_v2sn;
    default: return FirmwareImage::basic_v1;
    }
}

std::string path_setting(const char* name) {
    return platform().settings().text(name).value_or(std::string());
}

} // namespace

void memory_set_basic_rom(uint32_t index) {
    const bool patched = cas_is_traps_installed() != 0;
    std::ranges::copy(firmware_bytes(basic_image(index)), memory);
    if (index == CUSTOM_BASIC_ROM) {
        const std::string path = path_setting("BasicROMPath");
        if (!path.empty()) memory_load_rom(memory, 0, BASIC_ROM_SIZE - 1, path.c_str());
    }
    std::copy_n(memory, BASIC_ROM_SIZE, active_rom);
    if (patched) tape_place_traps(memory);
}

void memory_set_eprom(uint32_t index) {
    if (index == EPROM_DISK_ROM) {
        std::ranges::copy(firmware_bytes(FirmwareImage::disk), current_eprom);
        return;
    }
    if (index != EPROM_FILE) {
        std::ranges::fill(current_eprom, UNPROGRAMMED);
        return;
    }
    const std::string path = path_setting("ExpansionROMPath");
    if (!path.empty()) memory_load_rom(current_eprom, 0, EXPANSION_SIZE - 1, path.c_str());
}

int memory_has_eprom() {
    const std::span visible(current_eprom, DISK_ROM_SIZE);
    return std::ranges::any_of(visible, [](uint8_t byte) { return byte != UNPROGRAMMED; });
}

void memory_set_active_setup(uint32_t /*ram_size*/) {}

void memory_set_ram_size_source(const uint32_t* ram_size) { custom_ram_size = ram_size; }

int memory_is_16k() { return *custom_ram_size == RAM_16K ? 1 : 0; }

void memory_reset() {
    uint8_t* const end = memory + MEMORY_SIZE;
    if (startup_pattern < RANDOM_PATTERN) {
        std::fill(memory_get_ram(), end, uint8_t(startup_pattern));
        return;
    }
    // One generator for the whole run: every power-on gets fresh contents.
    static std::mt19937 generator{std::random_device{}()};
    std::generate(memory_get_ram(), end, [] { return uint8_t(generator()); });
}

void memory_set_startup_pattern(uint32_t value) { startup_pattern = value; }
uint32_t memory_get_startup_pattern() { return startup_pattern; }

size_t memory_load_rom(uint8_t* destination, size_t first, size_t last, const char* path) {
    const FileHandle file = open_file(path, "rb");
    return file ? std::fread(destination + first, 1, last - first + 1, file.get()) : 0;
}

uint8_t* rom_pointer() { return memory; }
uint8_t* source_rom_pointer() { return active_rom; }
uint8_t* memory_get_ram() { return memory + RAM_START; }
uint8_t* memory_get_video_ram_ptr() { return memory + RAM_START; }
uint8_t* memory_get_video_colorram(uint32_t offset) {
    return memory + COLOUR_RAM_START + (offset & 0x3FF);
}
uint8_t* memory_get_charram() { return memory + CHARACTER_RAM_START; }

int mem_dump() { return save_binary("memdump.bin", memory, MEMORY_SIZE); }

int save_binary(const char* path, const uint8_t* data, size_t size) {
    return replace_whole_file(path, {data, size}) ? 1 : 0;
}
