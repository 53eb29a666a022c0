#pragma once
/// Inside of the processor: the groups behind CB, ED, DD and FD. The prefix is consumed and two
/// refresh counts are made; each group returns the T-states of its instruction.

#include "z80/z80_operations.h"

namespace z80_operations {

// ---- CB ----------------------------------------------------------------------------------------

/// Register B, C, D, E, H, L or A by the low three bits of an opcode; 6 means the memory operand,
/// which the caller serves.
constexpr uint8_t register_value(const Registers& s, unsigned code) {
    switch (code & 7) {
    case 0: return high(s.bc);
    case 1: return low(s.bc);
    case 2: return high(s.de);
    case 3: return low(s.de);
    case 4: return high(s.hl);
    case 5: return low(s.hl);
    default: return a(s);
    }
}
constexpr void set_register(Registers& s, unsigned code, uint8_t value) {
    switch (code & 7) {
    case 0: set_high(s.bc, value); break;
    case 1: set_low(s.bc, value); break;
    case 2: set_high(s.de, value); break;
    case 3: set_low(s.de, value); break;
    case 4: set_high(s.hl, value); break;
    case 5: set_low(s.hl, value); break;
    default: set_a(s, value); break;
    }
}

enum : unsigned { GROUP_ROTATE, GROUP_BIT, GROUP_RES, GROUP_SET }; ///< bits 7-6 of the opcode

/// The rotate, shift, RES or SET that `opcode` names, on `value`.
constexpr uint8_t bit_operation(Registers& s, uint8_t opcode, uint8_t value) {
    const auto mask = uint8_t(1U << (opcode >> 3 & 7));
    switch (opcode >> 6) {
    case GROUP_ROTATE: return rotate(s, opcode >> 3, value);
    case GROUP_RES: return value & uint8_t(~mask);
    default: return value | mask;
    }
}

inline int cb_instruction(BusRegisters auto& s) {
    const uint8_t opcode = fetch(s);
    const bool in_memory = (opcode & 7) == MEMORY_OPERAND;
    const uint8_t value = in_memory ? bus_read(s, s.hl) : register_value(s, opcode);
    if (opcode >> 6 == GROUP_BIT) {
        test_bit(s, opcode, value, opcode >> 3 & 7);
        return in_memory ? 12 : 8;
    }
    const uint8_t result = bit_operation(s, opcode, value);
    if (in_memory) {
        bus_write(s, s.hl, result);
        return 15;
    }
    set_register(s, opcode, result);
    return 8;
}

// ---- ED ----------------------------------------------------------------------------------------

/// Bits 3 and 5 of a block instruction: bits 3 and 1 of `n`.
constexpr uint8_t block_copy_bits(unsigned n) { return uint8_t((n & FLAG_3) | (n << 4 & FLAG_5)); }

/// One LDI (`step` 1) or LDD (-1) without the flags; returns the sum that bits 5 and 3 come from.
inline unsigned load_pass(BusRegisters auto& s, int step) {
    const uint8_t value = bus_read(s, s.hl);
    bus_write(s, s.de, value);
    s.hl = uint16_t(s.hl + step);
    s.de = uint16_t(s.de + step);
    --s.bc;
    return unsigned(value) + a(s);
}
inline int load_block(BusRegisters auto& s, int step) {
    const unsigned n = load_pass(s, step);
    set_f(s, (f(s) & (FLAG_S | FLAG_Z | FLAG_C)) | block_copy_bits(n) | (s.bc ? FLAG_PV : 0));
    return 16;
}
/// LDIR and LDDR: each pass is a step of its own, so that an interrupt can come between two. Only
/// the last one changes the flags.
inline int load_block_repeat(BusRegisters auto& s, int step) {
    const unsigned n = load_pass(s, step);
    if (s.bc) {
        s.pc = uint16_t(s.pc - 2);
        return 21;
    }
    set_f(s, (f(s) & (FLAG_S | FLAG_Z | FLAG_C)) | block_copy_bits(n));
    return 16;
}

/// The flags after comparing A with `value`, BC already counted.
constexpr void block_compare_flags(Registers& s, uint8_t value) {
    const auto result = uint8_t(a(s) - value);
    const uint8_t flags = sub_flags(a(s), value, result);
    const unsigned n = unsigned(result) - (flags & FLAG_H ? 1 : 0);
    set_f(s, (flags & (FLAG_S | FLAG_Z | FLAG_H | FLAG_N)) | (f(s) & FLAG_C) |
                 (s.bc ? FLAG_PV : 0) | block_copy_bits(n));
}
inline uint8_t compare_pass(BusRegisters auto& s, int step) {
    const uint8_t value = bus_read(s, s.hl);
    s.hl = uint16_t(s.hl + step);
    --s.bc;
    return value;
}
inline int compare_block(BusRegisters auto& s, int step) {
    block_compare_flags(s, compare_pass(s, step));
    return 16;
}
/// CPIR and CPDR: the whole search is one step. The time of each pass is counted before the next
/// begins.
inline int compare_block_repeat(BusRegisters auto& s, int step) {
    uint8_t value = compare_pass(s, step);
    while (s.bc && value != a(s)) {
        z80_state.t_count += 21;
        value = compare_pass(s, step);
    }
    block_compare_flags(s, value);
    return 16;
}

inline void input_pass(BusRegisters auto& s, int step) {
    bus_write(s, s.hl, bus_in(s, low(s.bc)));
    s.hl = uint16_t(s.hl + step);
    set_high(s.bc, uint8_t(high(s.bc) - 1));
}
inline void output_pass(BusRegisters auto& s, int step) {
    bus_out(s, low(s.bc), bus_read(s, s.hl));
    s.hl = uint16_t(s.hl + step);
    set_high(s.bc, uint8_t(high(s.bc) - 1));
}
constexpr void block_io_flags(Registers& s) {
    set_f(s, (f(s) & uint8_t(~FLAG_Z)) | FLAG_N | (high(s.bc) ? 0 : FLAG_Z));
}
inline int input_block(BusRegisters auto& s, int step) {
    input_pass(s, step);
    block_io_flags(s);
    return 16;
}
inline int output_block(BusRegisters auto& s, int step) {
    output_pass(s, step);
    block_io_flags(s);
    return 16;
}
/// Behind a pass of INIR, INDR, OTIR and OTDR: each pass is a step of its own; only the last one
/// changes the flags.
constexpr int end_repeated_io(Registers& s) {
    if (high(s.bc)) {
        s.pc = uint16_t(s.pc - 2);
        return 21;
    }
    block_io_flags(s);
    return 16;
}

constexpr uint8_t LAST_TRAP = 0x0C;

/// Calls trap_handle with the registers in the record, and reads them back: it may have changed
/// any.
inline void trap(BusRegisters auto& s, int number) {
    static_cast<Registers&>(z80_state) = s;
    trap_handle(number);
    static_cast<Registers&>(s) = z80_state;
}

inline int ed_instruction(BusRegisters auto& s) {
    const uint8_t opcode = fetch(s);
    // clang-format off
    switch (opcode) {
    case 0x40: set_high(s.bc, in_flags(s, low(s.bc))); return 11;
    case 0x41: bus_out(s, low(s.bc), high(s.bc)); return 12;
    case 0x48: set_low(s.bc, in_flags(s, low(s.bc))); return 11;
    case 0x49: bus_out(s, low(s.bc), low(s.bc)); return 12;
    case 0x50: set_high(s.de, in_flags(s, low(s.bc))); return 11;
    case 0x51: bus_out(s, low(s.bc), high(s.de)); return 12;
    case 0x58: set_low(s.de, in_flags(s, low(s.bc))); return 11;
    case 0x59: bus_out(s, low(s.bc), low(s.de)); return 12;
    case 0x60: set_high(s.hl, in_flags(s, low(s.bc))); return 11;
    case 0x61: bus_out(s, low(s.bc), high(s.hl)); return 12;
    case 0x68: set_low(s.hl, in_flags(s, low(s.bc))); return 11;
    case 0x69: bus_out(s, low(s.bc), low(s.hl)); return 12;
    case 0x70: in_flags(s, low(s.bc)); return 11;
    case 0x71: bus_out(s, low(s.bc), 0); return 12;
    case 0x78: set_high(s.af, in_flags(s, low(s.bc))); return 11;
    case 0x79: bus_out(s, low(s.bc), high(s.af)); return 12;
    case 0x42: sbc_word(s, s.bc); return 15;
    case 0x4A: adc_word(s, s.bc); return 15;
    case 0x43: write_word(s, fetch_word(s), s.bc); return 20;
    case 0x4B: s.bc = read_word(s, fetch_word(s)); return 20;
    case 0x52: sbc_word(s, s.de); return 15;
    case 0x5A: adc_word(s, s.de); return 15;
    case 0x53: write_word(s, fetch_word(s), s.de); return 20;
    case 0x5B: s.de = read_word(s, fetch_word(s)); return 20;
    case 0x62: sbc_word(s, s.hl); return 15;
    case 0x6A: adc_word(s, s.hl); return 15;
    case 0x63: write_word(s, fetch_word(s), s.hl); return 20;
    case 0x6B: s.hl = read_word(s, fetch_word(s)); return 20;
    case 0x72: sbc_word(s, s.sp); return 15;
    case 0x7A: adc_word(s, s.sp); return 15;
    case 0x73: write_word(s, fetch_word(s), s.sp); return 20;
    case 0x7B: s.sp = read_word(s, fetch_word(s)); return 20;
    case 0x44: case 0x4C: case 0x54: case 0x5C: case 0x64: case 0x6C: case 0x74: case 0x7C: negate(s); return 8;
    case 0x45: s.pc = pop(s); s.iff1 = s.iff2; return 14;
    case 0x4D: case 0x55: case 0x5D: case 0x65: case 0x6D: case 0x75: case 0x7D: s.pc = pop(s); return 14;
    case 0x46: case 0x66: s.interrupt_mode = 0; return 8;
    case 0x56: case 0x76: s.interrupt_mode = 1; return 8;
    case 0x5E: case 0x7E: s.interrupt_mode = 2; return 8;
    case 0x47: s.i = a(s); return 9;
    case 0x4F: s.r = a(s); return 9;
    case 0x57: load_a_special(s, s.i); return 9;
    case 0x5F: load_a_special(s, s.r); return 9;
    case 0x67: rotate_digit_right(s); return 18;
    case 0x6F: rotate_digit_left(s); return 18;
    case 0xA0: return load_block(s, 1);
    case 0xA1: return compare_block(s, 1);
    case 0xA2: return input_block(s, 1);
    case 0xA3: return output_block(s, 1);
    case 0xB0: return load_block_repeat(s, 1);
    case 0xB1: return compare_block_repeat(s, 1);
    case 0xB2: input_pass(s, 1); return end_repeated_io(s);
    case 0xB3: output_pass(s, 1); return end_repeated_io(s);
    case 0xA8: return load_block(s, -1);
    case 0xA9: return compare_block(s, -1);
    case 0xAA: return input_block(s, -1);
    case 0xAB: return output_block(s, -1);
    case 0xB8: return load_block_repeat(s, -1);
    case 0xB9: return compare_block_repeat(s, -1);
    case 0xBA: input_pass(s, -1); return end_repeated_io(s);
    case 0xBB: output_pass(s, -1); return end_repeated_io(s);
    default: break;
    }
    // clang-format on
    if (opcode <= LAST_TRAP) trap(s, opcode);
    return 0; // the other opcodes are holes: consumed, without effect or cost
}

// ---- DD and FD ---------------------------------------------------------------------------------

/// Fetches the displacement and adds it to the index register.
inline uint16_t indexed_address(Registers& s, uint16_t index) {
    return uint16_t(index + int8_t(fetch(s)));
}
inline void modify_indexed(BusRegisters auto& s, uint16_t index,
                           uint8_t (*operation)(Registers&, uint8_t)) {
    const uint16_t address = indexed_address(s, index);
    bus_write(s, address, operation(s, bus_read(s, address)));
}
inline void store_immediate_indexed(BusRegisters auto& s, uint16_t index) {
    const uint16_t address = indexed_address(s, index);
    bus_write(s, address, fetch(s));
}

/// DDCB and FDCB: the displacement comes before the opcode, and every form but BIT also copies its
/// result to the register that the low bits name.
inline int indexed_bit_instruction(BusRegisters auto& s, uint16_t index) {
    const uint16_t address = indexed_address(s, index);
    const uint8_t opcode = fetch(s);
    const uint8_t value = bus_read(s, address);
    if (opcode >> 6 == GROUP_BIT) {
        test_bit(s, opcode, value, opcode >> 3 & 7);
        return 20;
    }
    const uint8_t result = bit_operation(s, opcode, value);
    bus_write(s, address, result);
    if ((opcode & 7) != MEMORY_OPERAND) set_register(s, opcode, result);
    return 23;
}

/// `index` is `s.ix` or `s.iy`.
inline int indexed_instruction(BusRegisters auto& s, uint16_t& index) {
    // clang-format off
    switch (fetch(s)) {
    case 0x09: index = add_word(s, index, s.bc); return 15;
    case 0x19: index = add_word(s, index, s.de); return 15;
    case 0x29: index = add_word(s, index, index); return 15;
    case 0x39: index = add_word(s, index, s.sp); return 15;
    case 0x21: index = fetch_word(s); return 14;
    case 0x22: write_word(s, fetch_word(s), index); return 20;
    case 0x2A: index = read_word(s, fetch_word(s)); return 20;
    case 0x23: ++index; return 10;
    case 0x2B: --index; return 10;
    case 0x24: set_high(index, increment(s, high(index))); return 8;
    case 0x25: set_high(index, decrement(s, high(index))); return 8;
    case 0x26: set_high(index, fetch(s)); return 11;
    case 0x2C: set_low(index, increment(s, low(index))); return 8;
    case 0x2D: set_low(index, decrement(s, low(index))); return 8;
    case 0x2E: set_low(index, fetch(s)); return 11;
    case 0x34: modify_indexed(s, index, increment); return 23;
    case 0x35: modify_indexed(s, index, decrement); return 23;
    case 0x36: store_immediate_indexed(s, index); return 19;
    case 0x44: set_high(s.bc, high(index)); return 8;
    case 0x45: set_high(s.bc, low(index)); return 8;
    case 0x46: set_high(s.bc, bus_read(s, indexed_address(s, index))); return 19;
    case 0x4C: set_low(s.bc, high(index)); return 8;
    case 0x4D: set_low(s.bc, low(index)); return 8;
    case 0x4E: set_low(s.bc, bus_read(s, indexed_address(s, index))); return 19;
    case 0x54: set_high(s.de, high(index)); return 8;
    case 0x55: set_high(s.de, low(index)); return 8;
    case 0x56: set_high(s.de, bus_read(s, indexed_address(s, index))); return 19;
    case 0x5C: set_low(s.de, high(index)); return 8;
    case 0x5D: set_low(s.de, low(index)); return 8;
    case 0x5E: set_low(s.de, bus_read(s, indexed_address(s, index))); return 19;
    case 0x60: set_high(index, high(s.bc)); return 8;
    case 0x61: set_high(index, low(s.bc)); return 8;
    case 0x62: set_high(index, high(s.de)); return 8;
    case 0x63: set_high(index, low(s.de)); return 8;
    case 0x64: return 8;
    case 0x65: set_high(index, low(index)); return 8;
    case 0x66: set_high(s.hl, bus_read(s, indexed_address(s, index))); return 19;
    case 0x67: set_high(index, high(s.af)); return 8;
    case 0x68: set_low(index, high(s.bc)); return 8;
    case 0x69: set_low(index, low(s.bc)); return 8;
    case 0x6A: set_low(index, high(s.de)); return 8;
    case 0x6B: set_low(index, low(s.de)); return 8;
    case 0x6C: set_low(index, high(index)); return 8;
    case 0x6D: return 8;
    case 0x6E: set_low(s.hl, bus_read(s, indexed_address(s, index))); return 19;
    case 0x6F: set_low(index, high(s.af)); return 8;
    case 0x70: bus_write(s, indexed_address(s, index), high(s.bc)); return 19;
    case 0x71: bus_write(s, indexed_address(s, index), low(s.bc)); return 19;
    case 0x72: bus_write(s, indexed_address(s, index), high(s.de)); return 19;
    case 0x73: bus_write(s, indexed_address(s, index), low(s.de)); return 19;
    case 0x74: bus_write(s, indexed_address(s, index), high(s.hl)); return 19;
    case 0x75: bus_write(s, indexed_address(s, index), low(s.hl)); return 19;
    case 0x77: bus_write(s, indexed_address(s, index), high(s.af)); return 19;
    case 0x7C: set_high(s.af, high(index)); return 8;
    case 0x7D: set_high(s.af, low(index)); return 8;
    case 0x7E: set_high(s.af, bus_read(s, indexed_address(s, index))); return 19;
    case 0x84: add_byte(s, high(index)); return 8;
    case 0x85: add_byte(s, low(index)); return 8;
    case 0x86: add_byte(s, bus_read(s, indexed_address(s, index))); return 19;
    case 0x8C: adc_byte(s, high(index)); return 8;
    case 0x8D: adc_byte(s, low(index)); return 8;
    case 0x8E: adc_byte(s, bus_read(s, indexed_address(s, index))); return 19;
    case 0x94: sub_byte(s, high(index)); return 8;
    case 0x95: sub_byte(s, low(index)); return 8;
    case 0x96: sub_byte(s, bus_read(s, indexed_address(s, index))); return 19;
    case 0x9C: sbc_byte(s, high(index)); return 8;
    case 0x9D: sbc_byte(s, low(index)); return 8;
    case 0x9E: sbc_byte(s, bus_read(s, indexed_address(s, index))); return 19;
    case 0xA4: and_byte(s, high(index)); return 8;
    case 0xA5: and_byte(s, low(index)); return 8;
    case 0xA6: and_byte(s, bus_read(s, indexed_address(s, index))); return 19;
    case 0xAC: xor_byte(s, high(index)); return 8;
    case 0xAD: xor_byte(s, low(index)); return 8;
    case 0xAE: xor_byte(s, bus_read(s, indexed_address(s, index))); return 19;
    case 0xB4: or_byte(s, high(index)); return 8;
    case 0xB5: or_byte(s, low(index)); return 8;
    case 0xB6: or_byte(s, bus_read(s, indexed_address(s, index))); return 19;
    case 0xBC: compare(s, high(index)); return 8;
    case 0xBD: compare(s, low(index)); return 8;
    case 0xBE: compare(s, bus_read(s, indexed_address(s, index))); return 19;
    case 0xCB: return indexed_bit_instruction(s, index);
    case 0xE1: index = pop(s); return 14;
    case 0xE3: index = exchange_stack(s, index); return 23;
    case 0xE5: push(s, index); return 15;
    case 0xE9: s.pc = index; return 8;
    case 0xF9: s.sp = index; return 10;
    default: break;
    }
    // clang-format on
    --s.pc; // the prefix alone; the byte behind it is an instruction of its own
    return 4;
}

} // namespace z80_operations
