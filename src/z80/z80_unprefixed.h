#pragma once
/// Inside of the processor: the unprefixed opcodes, one line each.

#include "z80/z80_operations.h"
#include "z80/z80_prefixed.h"

#include <utility>

namespace z80_operations {

// Jumps read their operand whether or not they are taken; each returns its T-states.

inline int jump_relative(Registers& s, bool taken) {
    const auto displacement = int8_t(fetch(s));
    if (!taken) return 7;
    s.pc = uint16_t(s.pc + displacement);
    return 12;
}
inline int decrement_and_jump(Registers& s) {
    set_high(s.bc, uint8_t(high(s.bc) - 1));
    return jump_relative(s, high(s.bc) != 0) + 1;
}
inline int jump_if(Registers& s, bool taken) {
    const uint16_t target = fetch_word(s);
    if (taken) s.pc = target;
    return 10;
}
inline int call_if(BusRegisters auto& s, bool taken) {
    const uint16_t target = fetch_word(s);
    if (!taken) return 10;
    push(s, s.pc);
    s.pc = target;
    return 17;
}
inline int return_if(BusRegisters auto& s, bool taken) {
    if (!taken) return 5;
    s.pc = pop(s);
    return 11;
}
constexpr void exchange_banks(Registers& s) {
    std::swap(s.bc, s.bc_alt);
    std::swap(s.de, s.de_alt);
    std::swap(s.hl, s.hl_alt);
}

#ifdef __clang__
constexpr bool FLATTENS_DEEPLY = false; ///< only what a flattened function calls itself
#else
constexpr bool FLATTENS_DEEPLY = true;
#endif

/// An operation that is a call of its own where the compiler does not inline it. It gets the
/// registers as a copy then: those whose address is handed out are no longer in the host's.
[[gnu::always_inline]] inline int apart(BusRegisters auto& s, auto act) {
    if constexpr (FLATTENS_DEEPLY) return act(s);
    auto copy = s;
    const int cycles = act(copy);
    s = copy;
    return cycles;
}

/// Executes the instruction whose first byte is `opcode`; `pc` stands behind that byte. Returns its
/// T-states without the wait cycles of its accesses, never less than 0; a loop chooses the type
/// that costs it least.
template <typename Cycles = int>
[[gnu::always_inline]] inline Cycles execute(BusRegisters auto& s, uint8_t opcode) {
    // clang-format off
    switch (opcode) {
    case 0x00: return 4;
    case 0x01: s.bc = fetch_word(s); return 10;
    case 0x02: bus_write(s, s.bc, a(s)); return 7;
    case 0x03: ++s.bc; return 6;
    case 0x04: set_high(s.bc, increment(s, high(s.bc))); return 4;
    case 0x05: set_high(s.bc, decrement(s, high(s.bc))); return 4;
    case 0x06: set_high(s.bc, fetch(s)); return 7;
    case 0x07: rlca(s); return 4;
    case 0x08: std::swap(s.af, s.af_alt); return 4;
    case 0x09: s.hl = add_word(s, s.hl, s.bc); return 11;
    case 0x0A: set_a(s, bus_read(s, s.bc)); return 7;
    case 0x0B: --s.bc; return 6;
    case 0x0C: set_low(s.bc, increment(s, low(s.bc))); return 4;
    case 0x0D: set_low(s.bc, decrement(s, low(s.bc))); return 4;
    case 0x0E: set_low(s.bc, fetch(s)); return 7;
    case 0x0F: rrca(s); return 4;
    case 0x10: return decrement_and_jump(s);
    case 0x11: s.de = fetch_word(s); return 10;
    case 0x12: bus_write(s, s.de, a(s)); return 7;
    case 0x13: ++s.de; return 6;
    case 0x14: set_high(s.de, increment(s, high(s.de))); return 4;
    case 0x15: set_high(s.de, decrement(s, high(s.de))); return 4;
    case 0x16: set_high(s.de, fetch(s)); return 7;
    case 0x17: rla(s); return 4;
    case 0x18: return jump_relative(s, true);
    case 0x19: s.hl = add_word(s, s.hl, s.de); return 11;
    case 0x1A: set_a(s, bus_read(s, s.de)); return 7;
    case 0x1B: --s.de; return 6;
    case 0x1C: set_low(s.de, increment(s, low(s.de))); return 4;
    case 0x1D: set_low(s.de, decrement(s, low(s.de))); return 4;
    case 0x1E: set_low(s.de, fetch(s)); return 7;
    case 0x1F: rra(s); return 4;
    case 0x20: return jump_relative(s, !(f(s) & FLAG_Z));
    case 0x21: s.hl = fetch_word(s); return 10;
    case 0x22: write_word(s, fetch_word(s), s.hl); return 16;
    case 0x23: ++s.hl; return 6;
    case 0x24: set_high(s.hl, increment(s, high(s.hl))); return 4;
    case 0x25: set_high(s.hl, decrement(s, high(s.hl))); return 4;
    case 0x26: set_high(s.hl, fetch(s)); return 7;
    case 0x27: decimal_adjust(s); return 4;
    case 0x28: return jump_relative(s, f(s) & FLAG_Z);
    case 0x29: s.hl = add_word(s, s.hl, s.hl); return 11;
    case 0x2A: s.hl = read_word(s, fetch_word(s)); return 16;
    case 0x2B: --s.hl; return 6;
    case 0x2C: set_low(s.hl, increment(s, low(s.hl))); return 4;
    case 0x2D: set_low(s.hl, decrement(s, low(s.hl))); return 4;
    case 0x2E: set_low(s.hl, fetch(s)); return 7;
    case 0x2F: complement(s); return 4;
    case 0x30: return jump_relative(s, !(f(s) & FLAG_C));
    case 0x31: s.sp = fetch_word(s); return 10;
    case 0x32: bus_write(s, fetch_word(s), a(s)); return 13;
    case 0x33: ++s.sp; return 6;
    case 0x34: bus_write(s, s.hl, increment(s, bus_read(s, s.hl))); return 11;
    case 0x35: bus_write(s, s.hl, decrement(s, bus_read(s, s.hl))); return 11;
    case 0x36: bus_write(s, s.hl, fetch(s)); return 10;
    case 0x37: set_carry(s); return 4;
    case 0x38: return jump_relative(s, f(s) & FLAG_C);
    case 0x39: s.hl = add_word(s, s.hl, s.sp); return 11;
    case 0x3A: set_a(s, bus_read(s, fetch_word(s))); return 13;
    case 0x3B: --s.sp; return 6;
    case 0x3C: set_high(s.af, increment(s, high(s.af))); return 4;
    case 0x3D: set_high(s.af, decrement(s, high(s.af))); return 4;
    case 0x3E: set_high(s.af, fetch(s)); return 7;
    case 0x3F: complement_carry(s); return 4;

    // LD r,r' (76 is HALT: it stays on itself until an interrupt steps over it)
    case 0x40: return 4;
    case 0x41: set_high(s.bc, low(s.bc)); return 4;
    case 0x42: set_high(s.bc, high(s.de)); return 4;
    case 0x43: set_high(s.bc, low(s.de)); return 4;
    case 0x44: set_high(s.bc, high(s.hl)); return 4;
    case 0x45: set_high(s.bc, low(s.hl)); return 4;
    case 0x46: set_high(s.bc, bus_read(s, s.hl)); return 7;
    case 0x47: set_high(s.bc, high(s.af)); return 4;
    case 0x48: set_low(s.bc, high(s.bc)); return 4;
    case 0x49: return 4;
    case 0x4A: set_low(s.bc, high(s.de)); return 4;
    case 0x4B: set_low(s.bc, low(s.de)); return 4;
    case 0x4C: set_low(s.bc, high(s.hl)); return 4;
    case 0x4D: set_low(s.bc, low(s.hl)); return 4;
    case 0x4E: set_low(s.bc, bus_read(s, s.hl)); return 7;
    case 0x4F: set_low(s.bc, high(s.af)); return 4;
    case 0x50: set_high(s.de, high(s.bc)); return 4;
    case 0x51: set_high(s.de, low(s.bc)); return 4;
    case 0x52: return 4;
    case 0x53: set_high(s.de, low(s.de)); return 4;
    case 0x54: set_high(s.de, high(s.hl)); return 4;
    case 0x55: set_high(s.de, low(s.hl)); return 4;
    case 0x56: set_high(s.de, bus_read(s, s.hl)); return 7;
    case 0x57: set_high(s.de, high(s.af)); return 4;
    case 0x58: set_low(s.de, high(s.bc)); return 4;
    case 0x59: set_low(s.de, low(s.bc)); return 4;
    case 0x5A: set_low(s.de, high(s.de)); return 4;
    case 0x5B: return 4;
    case 0x5C: set_low(s.de, high(s.hl)); return 4;
    case 0x5D: set_low(s.de, low(s.hl)); return 4;
    case 0x5E: set_low(s.de, bus_read(s, s.hl)); return 7;
    case 0x5F: set_low(s.de, high(s.af)); return 4;
    case 0x60: set_high(s.hl, high(s.bc)); return 4;
    case 0x61: set_high(s.hl, low(s.bc)); return 4;
    case 0x62: set_high(s.hl, high(s.de)); return 4;
    case 0x63: set_high(s.hl, low(s.de)); return 4;
    case 0x64: return 4;
    case 0x65: set_high(s.hl, low(s.hl)); return 4;
    case 0x66: set_high(s.hl, bus_read(s, s.hl)); return 7;
    case 0x67: set_high(s.hl, high(s.af)); return 4;
    case 0x68: set_low(s.hl, high(s.bc)); return 4;
    case 0x69: set_low(s.hl, low(s.bc)); return 4;
    case 0x6A: set_low(s.hl, high(s.de)); return 4;
    case 0x6B: set_low(s.hl, low(s.de)); return 4;
    case 0x6C: set_low(s.hl, high(s.hl)); return 4;
    case 0x6D: return 4;
    case 0x6E: set_low(s.hl, bus_read(s, s.hl)); return 7;
    case 0x6F: set_low(s.hl, high(s.af)); return 4;
    case 0x70: bus_write(s, s.hl, high(s.bc)); return 7;
    case 0x71: bus_write(s, s.hl, low(s.bc)); return 7;
    case 0x72: bus_write(s, s.hl, high(s.de)); return 7;
    case 0x73: bus_write(s, s.hl, low(s.de)); return 7;
    case 0x74: bus_write(s, s.hl, high(s.hl)); return 7;
    case 0x75: bus_write(s, s.hl, low(s.hl)); return 7;
    case 0x76: --s.pc; return 4;
    case 0x77: bus_write(s, s.hl, high(s.af)); return 7;
    case 0x78: set_high(s.af, high(s.bc)); return 4;
    case 0x79: set_high(s.af, low(s.bc)); return 4;
    case 0x7A: set_high(s.af, high(s.de)); return 4;
    case 0x7B: set_high(s.af, low(s.de)); return 4;
    case 0x7C: set_high(s.af, high(s.hl)); return 4;
    case 0x7D: set_high(s.af, low(s.hl)); return 4;
    case 0x7E: set_high(s.af, bus_read(s, s.hl)); return 7;
    case 0x7F: return 4;

    // arithmetic and logic on A
    case 0x80: add_byte(s, high(s.bc)); return 4;
    case 0x81: add_byte(s, low(s.bc)); return 4;
    case 0x82: add_byte(s, high(s.de)); return 4;
    case 0x83: add_byte(s, low(s.de)); return 4;
    case 0x84: add_byte(s, high(s.hl)); return 4;
    case 0x85: add_byte(s, low(s.hl)); return 4;
    case 0x86: add_byte(s, bus_read(s, s.hl)); return 7;
    case 0x87: add_byte(s, high(s.af)); return 4;
    case 0x88: adc_byte(s, high(s.bc)); return 4;
    case 0x89: adc_byte(s, low(s.bc)); return 4;
    case 0x8A: adc_byte(s, high(s.de)); return 4;
    case 0x8B: adc_byte(s, low(s.de)); return 4;
    case 0x8C: adc_byte(s, high(s.hl)); return 4;
    case 0x8D: adc_byte(s, low(s.hl)); return 4;
    case 0x8E: adc_byte(s, bus_read(s, s.hl)); return 7;
    case 0x8F: adc_byte(s, high(s.af)); return 4;
    case 0x90: sub_byte(s, high(s.bc)); return 4;
    case 0x91: sub_byte(s, low(s.bc)); return 4;
    case 0x92: sub_byte(s, high(s.de)); return 4;
    case 0x93: sub_byte(s, low(s.de)); return 4;
    case 0x94: sub_byte(s, high(s.hl)); return 4;
    case 0x95: sub_byte(s, low(s.hl)); return 4;
    case 0x96: sub_byte(s, bus_read(s, s.hl)); return 7;
    case 0x97: sub_byte(s, high(s.af)); return 4;
    case 0x98: sbc_byte(s, high(s.bc)); return 4;
    case 0x99: sbc_byte(s, low(s.bc)); return 4;
    case 0x9A: sbc_byte(s, high(s.de)); return 4;
    case 0x9B: sbc_byte(s, low(s.de)); return 4;
    case 0x9C: sbc_byte(s, high(s.hl)); return 4;
    case 0x9D: sbc_byte(s, low(s.hl)); return 4;
    case 0x9E: sbc_byte(s, bus_read(s, s.hl)); return 7;
    case 0x9F: sbc_byte(s, high(s.af)); return 4;
    case 0xA0: and_byte(s, high(s.bc)); return 4;
    case 0xA1: and_byte(s, low(s.bc)); return 4;
    case 0xA2: and_byte(s, high(s.de)); return 4;
    case 0xA3: and_byte(s, low(s.de)); return 4;
    case 0xA4: and_byte(s, high(s.hl)); return 4;
    case 0xA5: and_byte(s, low(s.hl)); return 4;
    case 0xA6: and_byte(s, bus_read(s, s.hl)); return 7;
    case 0xA7: and_byte(s, high(s.af)); return 4;
    case 0xA8: xor_byte(s, high(s.bc)); return 4;
    case 0xA9: xor_byte(s, low(s.bc)); return 4;
    case 0xAA: xor_byte(s, high(s.de)); return 4;
    case 0xAB: xor_byte(s, low(s.de)); return 4;
    case 0xAC: xor_byte(s, high(s.hl)); return 4;
    case 0xAD: xor_byte(s, low(s.hl)); return 4;
    case 0xAE: xor_byte(s, bus_read(s, s.hl)); return 7;
    case 0xAF: xor_byte(s, high(s.af)); return 4;
    case 0xB0: or_byte(s, high(s.bc)); return 4;
    case 0xB1: or_byte(s, low(s.bc)); return 4;
    case 0xB2: or_byte(s, high(s.de)); return 4;
    case 0xB3: or_byte(s, low(s.de)); return 4;
    case 0xB4: or_byte(s, high(s.hl)); return 4;
    case 0xB5: or_byte(s, low(s.hl)); return 4;
    case 0xB6: or_byte(s, bus_read(s, s.hl)); return 7;
    case 0xB7: or_byte(s, high(s.af)); return 4;
    case 0xB8: compare(s, high(s.bc)); return 4;
    case 0xB9: compare(s, low(s.bc)); return 4;
    case 0xBA: compare(s, high(s.de)); return 4;
    case 0xBB: compare(s, low(s.de)); return 4;
    case 0xBC: compare(s, high(s.hl)); return 4;
    case 0xBD: compare(s, low(s.hl)); return 4;
    case 0xBE: compare(s, bus_read(s, s.hl)); return 7;
    case 0xBF: compare(s, high(s.af)); return 4;

    // jumps, calls, stack, ports, prefixes
    case 0xC0: return return_if(s, !(f(s) & FLAG_Z));
    case 0xC1: s.bc = pop(s); return 10;
    case 0xC2: return jump_if(s, !(f(s) & FLAG_Z));
    case 0xC3: return jump_if(s, true);
    case 0xC4: return call_if(s, !(f(s) & FLAG_Z));
    case 0xC5: push(s, s.bc); return 11;
    case 0xC6: add_byte(s, fetch(s)); return 7;
    case 0xC7: push(s, s.pc); s.pc = 0x00; return 11;
    case 0xC8: return return_if(s, f(s) & FLAG_Z);
    case 0xC9: s.pc = pop(s); return 10;
    case 0xCA: return jump_if(s, f(s) & FLAG_Z);
    case 0xCB: count_refresh(s); return apart(s, [](auto& r) { return cb_instruction(r); });
    case 0xCC: return call_if(s, f(s) & FLAG_Z);
    case 0xCD: return call_if(s, true);
    case 0xCE: adc_byte(s, fetch(s)); return 7;
    case 0xCF: push(s, s.pc); s.pc = 0x08; return 11;
    case 0xD0: return return_if(s, !(f(s) & FLAG_C));
    case 0xD1: s.de = pop(s); return 10;
    case 0xD2: return jump_if(s, !(f(s) & FLAG_C));
    case 0xD3: bus_out(s, fetch(s), a(s)); return 11;
    case 0xD4: return call_if(s, !(f(s) & FLAG_C));
    case 0xD5: push(s, s.de); return 11;
    case 0xD6: sub_byte(s, fetch(s)); return 7;
    case 0xD7: push(s, s.pc); s.pc = 0x10; return 11;
    case 0xD8: return return_if(s, f(s) & FLAG_C);
    case 0xD9: exchange_banks(s); return 4;
    case 0xDA: return jump_if(s, f(s) & FLAG_C);
    case 0xDB: set_a(s, bus_in(s, fetch(s))); return 10;
    case 0xDC: return call_if(s, f(s) & FLAG_C);
    case 0xDD: count_refresh(s); return apart(s, [](auto& r) { return indexed_instruction(r, r.ix); });
    case 0xDE: sbc_byte(s, fetch(s)); return 7;
    case 0xDF: push(s, s.pc); s.pc = 0x18; return 11;
    case 0xE0: return return_if(s, !(f(s) & FLAG_PV));
    case 0xE1: s.hl = pop(s); return 10;
    case 0xE2: return jump_if(s, !(f(s) & FLAG_PV));
    case 0xE3: s.hl = exchange_stack(s, s.hl); return 19;
    case 0xE4: return call_if(s, !(f(s) & FLAG_PV));
    case 0xE5: push(s, s.hl); return 11;
    case 0xE6: and_byte(s, fetch(s)); return 7;
    case 0xE7: push(s, s.pc); s.pc = 0x20; return 11;
    case 0xE8: return return_if(s, f(s) & FLAG_PV);
    case 0xE9: s.pc = s.hl; return 4;
    case 0xEA: return jump_if(s, f(s) & FLAG_PV);
    case 0xEB: std::swap(s.de, s.hl); return 4;
    case 0xEC: return call_if(s, f(s) & FLAG_PV);
    case 0xED: count_refresh(s); return apart(s, [](auto& r) { return ed_instruction(r); });
    case 0xEE: xor_byte(s, fetch(s)); return 7;
    case 0xEF: push(s, s.pc); s.pc = 0x28; return 11;
    case 0xF0: return return_if(s, !(f(s) & FLAG_S));
    case 0xF1: s.af = pop(s); return 10;
    case 0xF2: return jump_if(s, !(f(s) & FLAG_S));
    case 0xF3: s.iff1 = s.iff2 = 0; return 4;
    case 0xF4: return call_if(s, !(f(s) & FLAG_S));
    case 0xF5: push(s, s.af); return 11;
    case 0xF6: or_byte(s, fetch(s)); return 7;
    case 0xF7: push(s, s.pc); s.pc = 0x30; return 11;
    case 0xF8: return return_if(s, f(s) & FLAG_S);
    case 0xF9: s.sp = s.hl; return 6;
    case 0xFA: return jump_if(s, f(s) & FLAG_S);
    case 0xFB: s.iff1 = s.iff2 = 1; return 4;
    case 0xFC: return call_if(s, f(s) & FLAG_S);
    case 0xFD: count_refresh(s); return apart(s, [](auto& r) { return indexed_instruction(r, r.iy); });
    case 0xFE: compare(s, fetch(s)); return 7;
    case 0xFF: push(s, s.pc); s.pc = 0x38; return 11;
    }
    // clang-format on
    return 0;
}

} // namespace z80_operations
