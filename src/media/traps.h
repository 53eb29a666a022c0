#pragma once
/// Firmware traps: the opcodes ED 00 to ED 0C, patched into the BASIC ROM, hand cassette and typing
/// over to the emulator (trap_handle, declared in z80/z80.h). Only the typing trap is there yet;
/// the cassette's numbers are two-byte no-operations.

#include <cstdint>

/// 1 while the cassette patches are in the working copy of the ROM.
int cas_is_traps_installed();
/// Places the cassette patches at the program's start.
void tape_init();
/// Patches the cassette traps into a ROM image.
void tape_place_traps(uint8_t* rom);
/// Puts the typing trap into the keyboard routine at 002B.
void memory_place_bas_trap();
/// Takes the typing trap out of the keyboard routine.
void memory_remove_bas_trap();
