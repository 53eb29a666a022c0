#pragma once
/// The memory image of the machine: 64 KB of address space, the unpatched BASIC ROM, the expansion
/// ROM buffer and the port latches. A leaf: the bus, the video and the storage media read it
/// directly; what an access does and costs is the bus's business.

#include <cstddef>
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

/// 0000-3FFF is the working copy of the BASIC ROM, which traps may patch; 4000-FFFF holds RAM,
/// colour RAM, character RAM and bytes that the bus never writes.
extern uint8_t memory[MEMORY_SIZE];
/// The selected BASIC ROM as it was loaded; patches are undone from it.
extern uint8_t active_rom[BASIC_ROM_SIZE];
extern uint8_t current_eprom[EXPANSION_SIZE];
/// The last byte written to each port, devices or not.
extern uint8_t ports[256];

/// Loads BASIC ROM 0 to 2 from the firmware images, or 3 from the file that the setting
/// "BasicROMPath" names; a missing or empty setting or an unreadable file leaves ROM 0.
void memory_set_basic_rom(uint32_t index);
/// 0 the disk ROM, 1 and 3 nothing (all FF), 2 the file named by "ExpansionROMPath", which leaves
/// the buffer as it is when there is none.
void memory_set_eprom(uint32_t index);
/// 0 when C000-DFFF hold nothing.
int memory_has_eprom();
/// Keeps nothing: the RAM limit is read from the custom configuration.
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

/// Fills destination[first] to destination[last] from the file, as far as it goes. A file that
/// cannot be opened changes nothing. Returns the number of bytes read.
size_t memory_load_rom(uint8_t* destination, size_t first, size_t last, const char* path);

uint8_t* rom_pointer();        ///< the working copy at address 0000
uint8_t* source_rom_pointer(); ///< the unpatched copy
uint8_t* memory_get_ram();     ///< address 4000
uint8_t* memory_get_video_ram_ptr();
uint8_t* memory_get_video_colorram(uint32_t offset); ///< F000 + (offset AND 3FF)
uint8_t* memory_get_charram();                       ///< F400

/// Writes the whole address space to "memdump.bin" in the current directory. 0 when that fails,
/// with the reason in errno.
int mem_dump();
/// Replaces the file by `size` bytes. 0 when that fails, with the reason in errno.
int save_binary(const char* path, const uint8_t* data, size_t size);
