#pragma once
/// The memory image of the machine: 64 KB of address space, the unpatched BASIC ROM, the expansion
/// ROM buffer and the port latches. It depends on no other module: the bus, the video and the
/// storage media read it directly. What an access by the processor does and costs is decided in the
/// bus.

#include "wall/state_record.h"

#include <cstdint>

enum : uint32_t {
    MEMORY_SIZE = 65536,
    BASIC_ROM_SIZE = 16384,
    EXPANSION_SIZE = 12288, ///< the buffer; its first 8192 bytes show at C000-DFFF
    DISK_ROM_SIZE = 8192,
    CHARSET_SIZE = 2048,
    RAM_START = 0x4000,
    RAM_SIZE = 49152, ///< 4000-FFFF, the part that a power-on fills
    COLOUR_RAM_START = 0xF000,
    CHARACTER_RAM_START = 0xF400
};

struct memory_contents {
    uint8_t address_space[MEMORY_SIZE];
    uint8_t basic_rom[BASIC_ROM_SIZE];
    uint8_t expansion_rom[EXPANSION_SIZE];
    uint8_t port_latches[256];
    uint64_t random; ///< state of the generator of random start-up contents
    uint32_t startup_pattern;
    uint8_t unused[4];
};
extern memory_contents memory_state;
extern const state_record memory_record;

// The arrays under their own names, at fixed addresses of the record.

/// 0000-3FFF is the working copy of the BASIC ROM, which traps may patch; 4000-FFFF holds RAM,
/// colour RAM, character RAM and bytes that the bus never writes.
inline constexpr auto& memory = memory_state.address_space;
/// The selected BASIC ROM as it was loaded; patches are undone from it.
inline constexpr auto& active_rom = memory_state.basic_rom;
inline constexpr auto& current_eprom = memory_state.expansion_rom;
/// The last byte written to each port, devices or not.
inline constexpr auto& ports = memory_state.port_latches;

/// 0 when C000-DFFF hold nothing.
int memory_has_eprom();
/// Does nothing: the RAM limit is read where memory_set_ram_size_source says.
void memory_set_active_setup(uint32_t ram_size);
/// Tells where the RAM size of the custom configuration stands (0 = 16 KB). Until then 32 KB.
void memory_set_ram_size_source(const uint32_t* ram_size);
/// 1 when writes at 8000-BFFF are refused.
int memory_is_16k();
/// Fills 4000-FFFF with the start-up pattern; ROM and the expansion buffer stay.
void memory_reset();

/// 0-255: the fill byte. 256 and above: random bytes.
void memory_set_startup_pattern(uint32_t value);
uint32_t memory_get_startup_pattern();
/// What the random bytes are made of from now on; the same seed gives the same bytes. Every fill
/// goes on where the one before it ended. At program start 0.
void memory_seed_random(uint64_t seed);

uint8_t* rom_pointer();        ///< the working copy at address 0000
uint8_t* source_rom_pointer(); ///< the unpatched copy
uint8_t* memory_get_ram();     ///< address 4000
uint8_t* memory_get_video_ram_ptr();
uint8_t* memory_get_video_colorram(uint32_t offset); ///< F000 + (offset AND 3FF)
uint8_t* memory_get_charram();                       ///< F400
