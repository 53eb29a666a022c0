#pragma once
/// What lies in the ROM areas of the address map: the firmware's images, or the contents of the
/// files that a configuration names.

#include <cstdint>

/// Loads BASIC ROM 0 to 2 of the firmware, or 3, the user's: as far as it goes, and ROM 0 behind it
/// or where there is none. Traps that are in the working copy stay.
void memory_set_basic_rom(uint32_t index);
/// 0 the disk ROM, 1 and 3 nothing (all FF), 2 the user's, which leaves what it does not fill.
void memory_set_eprom(uint32_t index);
