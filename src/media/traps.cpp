#include "media/traps.h"

#include "cgenie/keyboard.h"
#include "cgenie/memory.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>

namespace {

constexpr size_t KEYBOARD_ROUTINE = 0x002B;
/// The typing trap, two NOPs and a return.
constexpr std::array<uint8_t, 5> TYPING_PATCH = {0xED, 0x06, 0x00, 0x00, 0xC9};
constexpr int TRAP_TYPING = 6;

/// The keyboard routine's result is a character of the typing buffer; the last call takes the trap
/// out again.
void type_character() {
    int done = 0;
    const uint8_t character = keyboard_type_bas_file(&done);
    z80_state.af = uint16_t(character << 8 | (z80_state.af & 0xFF));
    if (!done) return;
    memory_remove_bas_trap();
    keyboard_type_reset();
}

} // namespace

int cas_is_traps_installed() { return 0; }
void tape_init() {}
void tape_place_traps(uint8_t* /*rom*/) {}

void memory_place_bas_trap() { std::ranges::copy(TYPING_PATCH, rom_pointer() + KEYBOARD_ROUTINE); }

void memory_remove_bas_trap() {
    std::copy_n(source_rom_pointer() + KEYBOARD_ROUTINE, TYPING_PATCH.size(),
                rom_pointer() + KEYBOARD_ROUTINE);
}

void trap_handle(int number) {
    if (number == TRAP_TYPING) type_character();
}
