#include "media/traps.h"

#include "cgenie/memory/memory.h"
#include "cgenie/typing/typing.h"
#include "media/tape.h"
#include "media/tape_audio.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>
#include <span>

namespace {

constexpr uint8_t TRAP_PREFIX = 0xED;

enum : uint8_t {
    TRAP_READ_BIT = 0,
    TRAP_FIND_LEADER = 1,
    TRAP_READ_BYTE = 2,
    TRAP_WRITE_LEADER = 3,
    TRAP_WRITE_BYTE = 4,
    TRAP_TYPING = 6
};

/// The prefix, the number, and zeros (NOP) up to `size`.
struct Patch {
    uint16_t address;
    uint8_t trap;
    uint8_t size;
};
constexpr std::array<Patch, 5> cassette_patches = {{
    {0x01FB, TRAP_READ_BIT, 2},      // the first look at the port
    {0x0264, TRAP_FIND_LEADER, 2},   // the loop that checks the leader
    {0x01EE, TRAP_READ_BYTE, 2},     // right behind the entry
    {0x023F, TRAP_WRITE_LEADER, 2},  // the entry
    {0x0221, TRAP_WRITE_BYTE, 0x1B}, // the whole body
}};

// Where the firmware goes on.
enum : uint16_t {
    READ_BIT_EXIT = 0x0219, ///< A to D, BC back
    FIND_SYNC = 0x0270,
    READ_BYTE_EXIT = 0x01F8,
    WRITE_LEADER_LOOP = 0x0241, ///< B leader bytes, then the sync byte
    WRITE_BYTE_EXIT = 0x0223
};
constexpr uint8_t LEADER_BYTES = 255;

constexpr size_t KEYBOARD_ROUTINE = 0x002B;
/// The typing trap, two NOPs and a return.
constexpr std::array<uint8_t, 5> TYPING_PATCH = {TRAP_PREFIX, TRAP_TYPING, 0x00, 0x00, 0xC9};

constexpr state_field fields[] = {
    {"last_trap", sizeof(traps_state::last_trap)},
    {"cas_traps_installed", sizeof(traps_state::cas_traps_installed)},
    {"unused", sizeof(traps_state::unused)},
};

const char* fault(const traps_state& state) {
    return first_fault({{"cas_traps_installed", state.cas_traps_installed <= 1}});
}

void set_a(uint8_t value) { z80_state.af = uint16_t(value << 8 | (z80_state.af & 0xFF)); }
void set_b(uint8_t value) { z80_state.bc = uint16_t(value << 8 | (z80_state.bc & 0xFF)); }

/// The firmware searches for the sync byte through its bit routine, so this is also where the text
/// at the start of a CGT image is skipped.
void read_bit() {
    set_a(tape_read_one_byte());
    tape_cas_skip_header();
    z80_state.pc = READ_BIT_EXIT;
}

void read_byte() {
    set_a(tape_read_one_byte());
    z80_state.pc = READ_BYTE_EXIT;
}

/// Goes on with the save: the question has been answered, in whatever way.
void write_leader() {
    set_b(LEADER_BYTES);
    z80_state.pc = WRITE_LEADER_LOOP;
}

void write_byte() {
    tape_write_one_byte(uint8_t(z80_state.af >> 8));
    z80_state.pc = WRITE_BYTE_EXIT;
}

/// The keyboard routine's result is a character of the typing buffer; the last call takes the trap
/// out again.
void type_character() {
    int done = 0;
    set_a(keyboard_type_bas_file(&done));
    if (!done) return;
    memory_remove_bas_trap();
    keyboard_type_reset();
}

/// Traps take no time, and the firmware runs many instructions between two of them. In a ROM where
/// one trap leads straight to the next, no frame would ever end; so the second of them takes a scan
/// line.
void let_frame_end() {
    if (z80_state.t_count == traps.last_trap) {
        z80_state.t_count += int64_t(z80_state.cycles_per_line);
    }
    traps.last_trap = z80_state.t_count;
}

/// Bytes that a ROM must have for the traps.
struct Mark {
    uint16_t address;
    std::array<uint8_t, 2> bytes;
};
constexpr std::array<Mark, 2> cassette_marks = {{
    {0x01FB, {0xDB, 0xFF}}, // IN A,(FF)
    {0x023F, {0x06, 0xFF}}, // LD B,255
}};

void restore(size_t address, size_t size) {
    std::copy_n(source_rom_pointer() + address, size, rom_pointer() + address);
}

} // namespace

traps_state traps;
constexpr state_record traps_record = {"traps", &traps, sizeof traps, fields,
                                       fault_of<traps_state, fault>};

int cas_is_traps_installed() { return traps.cas_traps_installed; }

void tape_init() {
    tape_ready = 1;
    tape_place_traps(rom_pointer());
}

void tape_withdraw_save_question() {
    if (!z80_state.waits) return;
    z80_state.waits = 0;
    write_leader();
}

void tape_reset() {
    if (tape_ready) tape_read_in = 0;
}

bool tape_traps_fit(const uint8_t* rom) {
    return std::ranges::all_of(cassette_marks, [rom](const Mark& mark) {
        return std::ranges::equal(mark.bytes, std::span(rom + mark.address, mark.bytes.size()));
    });
}

void tape_place_traps(uint8_t* rom) {
    traps.cas_traps_installed = 0;
    if (!tape_traps_fit(source_rom_pointer())) return;
    for (const Patch& patch : cassette_patches) {
        uint8_t* const bytes = rom + patch.address;
        std::fill_n(bytes, patch.size, uint8_t(0));
        bytes[0] = TRAP_PREFIX;
        bytes[1] = patch.trap;
    }
    traps.cas_traps_installed = 1;
}

void tape_remove_traps() {
    if (!traps.cas_traps_installed) return;
    for (const Patch& patch : cassette_patches) restore(patch.address, patch.size);
    traps.cas_traps_installed = 0;
}

void memory_place_bas_trap() { std::ranges::copy(TYPING_PATCH, rom_pointer() + KEYBOARD_ROUTINE); }

void memory_remove_bas_trap() { restore(KEYBOARD_ROUTINE, TYPING_PATCH.size()); }

/// Kept out of line, or the run loop would inline the cassettes and all that they call.
[[gnu::noinline]] void trap_handle(int number) {
    if (number == TRAP_WRITE_LEADER && tape_write_case_header() == SAVE_NOT_YET) {
        return z80_wait_at_trap();
    }
    let_frame_end();
    switch (number) {
    case TRAP_READ_BIT: return read_bit();
    case TRAP_FIND_LEADER: z80_state.pc = FIND_SYNC; break;
    case TRAP_READ_BYTE: return read_byte();
    case TRAP_WRITE_LEADER: return write_leader();
    case TRAP_WRITE_BYTE: return write_byte();
    case TRAP_TYPING: return type_character();
    default: break;
    }
}
