#include "cgenie/memory/memory.h"

#include <algorithm>
#include <span>

memory_contents memory_state;

namespace {

constexpr uint32_t RANDOM_PATTERN = 256; ///< this and above
constexpr uint8_t UNPROGRAMMED = 0xFF;
constexpr uint32_t RAM_16K = 0;

constexpr uint32_t default_ram_size = 1;
const uint32_t* custom_ram_size = &default_ram_size;

constexpr state_field memory_fields[] = {
    {"memory", sizeof(memory_contents::address_space)},
    {"active_rom", sizeof(memory_contents::basic_rom)},
    {"current_eprom", sizeof(memory_contents::expansion_rom)},
    {"ports", sizeof(memory_contents::port_latches)},
    {"random", sizeof(memory_contents::random)},
    {"startup_pattern", sizeof(memory_contents::startup_pattern)},
    {"unused", sizeof(memory_contents::unused)},
};

/// SplitMix64: one addition, and a mixture of all bits of the sum. Good for any seed, 0 included.
uint64_t next_random() {
    uint64_t bits = memory_state.random += 0x9E3779B97F4A7C15;
    bits = (bits ^ bits >> 30) * 0xBF58476D1CE4E5B9;
    bits = (bits ^ bits >> 27) * 0x94D049BB133111EB;
    return bits ^ bits >> 31;
}

} // namespace

const state_record memory_record = {"memory_state", &memory_state, sizeof memory_state,
                                    memory_fields};

int memory_has_eprom() {
    const std::span visible(current_eprom, DISK_ROM_SIZE);
    return std::ranges::any_of(visible, [](uint8_t byte) { return byte != UNPROGRAMMED; });
}

void memory_set_active_setup(uint32_t /*ram_size*/) {}

void memory_set_ram_size_source(const uint32_t* ram_size) { custom_ram_size = ram_size; }

int memory_is_16k() { return *custom_ram_size == RAM_16K ? 1 : 0; }

void memory_reset() {
    uint8_t* const end = memory + MEMORY_SIZE;
    if (memory_state.startup_pattern < RANDOM_PATTERN) {
        std::fill(memory_get_ram(), end, uint8_t(memory_state.startup_pattern));
        return;
    }
    std::generate(memory_get_ram(), end, [] { return uint8_t(next_random()); });
}

void memory_set_startup_pattern(uint32_t value) { memory_state.startup_pattern = value; }
uint32_t memory_get_startup_pattern() { return memory_state.startup_pattern; }
void memory_seed_random(uint64_t seed) { memory_state.random = seed; }

uint8_t* rom_pointer() { return memory; }
uint8_t* source_rom_pointer() { return active_rom; }
uint8_t* memory_get_ram() { return memory + RAM_START; }
uint8_t* memory_get_video_ram_ptr() { return memory + RAM_START; }
uint8_t* memory_get_video_colorram(uint32_t offset) {
    return memory + COLOUR_RAM_START + (offset & 0x3FF);
}
uint8_t* memory_get_charram() { return memory + CHARACTER_RAM_START; }
