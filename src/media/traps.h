#pragma once
/// Firmware traps: the opcodes ED 00 to ED 0C, patched into the BASIC ROM, hand cassette and typing
/// over to the emulator (trap_handle, declared in z80/z80.h). No tape is fitted yet, so none is
/// patched in and every number is a two-byte no-operation.

#include <cstdint>

/// 1 while the cassette patches are in the working copy of the ROM.
int cas_is_traps_installed();
/// Patches the cassette traps into a ROM image.
void tape_place_traps(uint8_t* rom);
/// Takes the typing trap out of the keyboard routine.
void memory_remove_bas_trap();
