#pragma once
/// Firmware traps: the opcodes ED 00 to ED 0C, patched into the working copy of the BASIC ROM, hand
/// cassette and typing over to the emulator (trap_handle, declared in z80/z80.h). The cassette
/// traps cut the firmware's bit loops short and move whole bytes of the attached image; while the
/// sound of a tape is used instead, they are out and the firmware times the bits itself.

#include "wall/state_record.h"

#include <cstdint>

struct traps_state {
    int64_t last_trap = -1; ///< t_count after it
    uint8_t cas_traps_installed = 0;
    uint8_t unused[7] = {};
};
extern traps_state traps;
extern const state_record traps_record;

/// 1 while the cassette patches are in the working copy of the ROM.
int cas_is_traps_installed();
/// Places the cassette patches at the program's start.
void tape_init();
/// When the firmware waits for the file to save to, it is answered that there is none. Otherwise
/// nothing happens.
void tape_withdraw_save_question();
/// Clears the cassette input bit, once the cassette system is ready.
void tape_reset();
/// Whether the BASIC ROM has its cassette routines where the traps go in: DB FF at 01FB, the first
/// look at the port for a bit, and 06 FF at 023F, which counts the bytes of a leader. What lies
/// between two traps may differ.
bool tape_traps_fit(const uint8_t* rom);
/// Patches the cassette traps into a ROM image, the working copy. Where they do not fit the BASIC
/// ROM as it was loaded nothing is patched, and cassettes run as sound, in real time.
void tape_place_traps(uint8_t* rom);
/// Takes the cassette patches out of the working copy; nothing when they are not in it.
void tape_remove_traps();
/// Puts the typing trap into the keyboard routine at 002B.
void memory_place_bas_trap();
/// Takes the typing trap out of the keyboard routine.
void memory_remove_bas_trap();
