#pragma once
/// Inside of the processor: every operation as an inline function on a set of registers, so that
/// the run loop can keep the registers where the host is fastest. The functions that the public
/// header promises are these, applied to z80_state.

#include "z80/z80.h"

#include <array>
#include <concepts>

namespace z80_operations {

using Registers = z80_registers;
/// Registers of a processor at its bus. Those of a run loop that looks out for accesses are a type
/// of their own, with bus functions of its own.
template <typename T>
concept BusRegisters = std::derived_from<T, Registers>;

// ---- halves of pairs ---------------------------------------------------------------------------

constexpr uint8_t low(uint16_t pair) { return uint8_t(pair); }
constexpr uint8_t high(uint16_t pair) { return uint8_t(pair >> 8); }
constexpr void set_low(uint16_t& pair, uint8_t value) { pair = uint16_t((pair & 0xFF00) | value); }
constexpr void set_high(uint16_t& pair, uint8_t value) {
    pair = uint16_t((pair & 0x00FF) | value << 8);
}
constexpr uint16_t make_pair(uint8_t high_byte, uint8_t low_byte) {
    return uint16_t(high_byte << 8 | low_byte);
}

constexpr uint8_t a(const Registers& s) { return high(s.af); }
constexpr uint8_t f(const Registers& s) { return low(s.af); }
constexpr void set_a(Registers& s, uint8_t value) { set_high(s.af, value); }
constexpr void set_f(Registers& s, uint8_t value) { set_low(s.af, value); }
constexpr void set_af(Registers& s, uint8_t value, uint8_t flags) {
    s.af = make_pair(value, flags);
}

// ---- flag tables -------------------------------------------------------------------------------

constexpr uint8_t COPY_BITS = FLAG_5 | FLAG_3;

/// S, P/V, C and H of an addition or subtraction for every flag index (see flag_index).
constexpr std::array<uint8_t, 128> by_flag_index(const uint8_t (&carry)[8],
                                                 const uint8_t (&half)[8], uint8_t always) {
    std::array<uint8_t, 128> table = {};
    for (unsigned n = 0; n < 128; ++n) table[n] = carry[n >> 4] | half[n & 7] | always;
    return table;
}
constexpr auto add_table = by_flag_index(sign_carry_overflow_table, half_carry_table, 0);
constexpr auto sub_table =
    by_flag_index(subtract_sign_carry_overflow_table, subtract_half_carry_table, FLAG_N);

constexpr bool even_parity(unsigned value) {
    bool even = true;
    for (; value; value &= value - 1) even = !even;
    return even;
}

template <typename Rule>
constexpr std::array<uint8_t, 256> by_value(Rule rule) {
    std::array<uint8_t, 256> table = {};
    for (unsigned v = 0; v < 256; ++v) table[v] = uint8_t(rule(v));
    return table;
}
constexpr auto parity_values = by_value([](unsigned v) { return even_parity(v) ? 1 : 0; });
/// Z and the copy bits.
constexpr auto zero_flags = by_value([](unsigned v) { return (v & COPY_BITS) | (v ? 0 : FLAG_Z); });
/// S, Z and the copy bits.
constexpr auto sign_flags = by_value([](unsigned v) { return zero_flags[v] | (v & FLAG_S); });
/// S, Z, the copy bits and parity.
constexpr auto logic_flags =
    by_value([](unsigned v) { return sign_flags[v] | (even_parity(v) ? FLAG_PV : 0); });
/// For INC and DEC, by the new value; the caller adds the carry, which they keep.
constexpr auto inc_flags = by_value([](unsigned v) {
    return sign_flags[v] | ((v & 0x0F) == 0 ? FLAG_H : 0) | (v == 0x80 ? FLAG_PV : 0);
});
constexpr auto dec_flags = by_value([](unsigned v) {
    return sign_flags[v] | ((v & 0x0F) == 0x0F ? FLAG_H : 0) | (v == 0x7F ? FLAG_PV : 0) | FLAG_N;
});

/// Bits 7 of a, b and result in bits 6-4, bits 3 in bits 2-0: the carry into a bit is fixed by the
/// operands' bits and the result's, so the tables are exact also when a carry came in.
constexpr unsigned flag_index(unsigned a, unsigned b, unsigned result) {
    return (a & 0x88) >> 1 | (b & 0x88) >> 2 | (result & 0x88) >> 3;
}
/// The same from bits 15 and 11.
constexpr unsigned word_flag_index(unsigned a, unsigned b, unsigned result) {
    return (a & 0x8800) >> 9 | (b & 0x8800) >> 10 | (result & 0x8800) >> 11;
}

// ---- 8-bit arithmetic --------------------------------------------------------------------------

constexpr uint8_t add_flags(uint8_t a, uint8_t b, uint8_t result) {
    return add_table[flag_index(a, b, result)] | zero_flags[result];
}
constexpr uint8_t sub_flags(uint8_t a, uint8_t b, uint8_t result) {
    return sub_table[flag_index(a, b, result)] | zero_flags[result];
}

constexpr void add_byte(Registers& s, uint8_t value, unsigned carry = 0) {
    const auto result = uint8_t(a(s) + value + carry);
    set_af(s, result, add_flags(a(s), value, result));
}
constexpr void sub_byte(Registers& s, uint8_t value, unsigned carry = 0) {
    const auto result = uint8_t(a(s) - value - carry);
    set_af(s, result, sub_flags(a(s), value, result));
}
constexpr void adc_byte(Registers& s, uint8_t value) { add_byte(s, value, f(s) & FLAG_C); }
constexpr void sbc_byte(Registers& s, uint8_t value) { sub_byte(s, value, f(s) & FLAG_C); }

constexpr void negate(Registers& s) {
    const auto result = uint8_t(0 - a(s));
    set_af(s, result, sub_flags(0, a(s), result));
}

/// The copy bits come from the operand.
constexpr void compare(Registers& s, uint8_t value) {
    const auto result = uint8_t(a(s) - value);
    const uint8_t flags = sub_table[flag_index(a(s), value, result)] | (result ? 0 : FLAG_Z);
    set_f(s, flags | (value & COPY_BITS));
}

constexpr void and_byte(Registers& s, uint8_t value) {
    const uint8_t result = a(s) & value;
    set_af(s, result, logic_flags[result] | FLAG_H);
}
constexpr void or_byte(Registers& s, uint8_t value) {
    const uint8_t result = a(s) | value;
    set_af(s, result, logic_flags[result]);
}
constexpr void xor_byte(Registers& s, uint8_t value) {
    const uint8_t result = a(s) ^ value;
    set_af(s, result, logic_flags[result]);
}

constexpr uint8_t increment(Registers& s, uint8_t value) {
    const auto result = uint8_t(value + 1);
    set_f(s, inc_flags[result] | (f(s) & FLAG_C));
    return result;
}
constexpr uint8_t decrement(Registers& s, uint8_t value) {
    const auto result = uint8_t(value - 1);
    set_f(s, dec_flags[result] | (f(s) & FLAG_C));
    return result;
}

constexpr void decimal_adjust(Registers& s) {
    unsigned value = a(s);
    const uint8_t flags = f(s);
    const unsigned digit = value & 0x0F;
    const bool adjust = (flags & FLAG_H) || digit > 9;
    bool carry = flags & FLAG_C;
    uint8_t half = flags & FLAG_H;
    if (flags & FLAG_N) {
        carry = carry || value > 0x99;
        if (adjust) {
            if (digit > 5) half = 0;
            value = (value - 6) & 0xFF;
        }
        if (carry) value = (value - 0x60) & 0xFF;
    } else {
        if (adjust) {
            half = digit > 9 ? FLAG_H : 0;
            value += 6;
        }
        if (carry || (value & 0x1F0) > 0x90) value += 0x60;
        carry = carry || value > 0xFF;
    }
    const auto result = uint8_t(value);
    set_af(s, result, logic_flags[result] | (flags & FLAG_N) | half | (carry ? FLAG_C : 0));
}

constexpr void complement(Registers& s) {
    const auto result = uint8_t(~a(s));
    set_af(s, result, (f(s) & 0xC5) | FLAG_H | FLAG_N | (result & COPY_BITS));
}
constexpr void set_carry(Registers& s) { set_f(s, (f(s) & 0xC4) | FLAG_C | (a(s) & COPY_BITS)); }
constexpr void complement_carry(Registers& s) {
    const uint8_t carry = f(s) & FLAG_C;
    set_f(s, uint8_t((f(s) & 0xC4) | carry << 4 | (carry ^ FLAG_C) | (a(s) & COPY_BITS)));
}

// ---- 16-bit arithmetic -------------------------------------------------------------------------

constexpr uint8_t add_word_flags(uint8_t old, uint16_t a, uint16_t b, uint16_t result) {
    const uint8_t flags = add_table[word_flag_index(a, b, result)] & (FLAG_H | FLAG_C);
    return (old & (FLAG_S | FLAG_Z | FLAG_PV)) | flags | (high(result) & COPY_BITS);
}
constexpr uint8_t adc_word_flags(uint16_t a, uint16_t b, uint16_t result) {
    return add_table[word_flag_index(a, b, result)] | (high(result) & COPY_BITS) |
           (result ? 0 : FLAG_Z);
}
constexpr uint8_t sbc_word_flags(uint16_t a, uint16_t b, uint16_t result) {
    return sub_table[word_flag_index(a, b, result)] | (high(result) & COPY_BITS) |
           (result ? 0 : FLAG_Z);
}

constexpr uint16_t add_word(Registers& s, uint16_t pair, uint16_t value) {
    const auto result = uint16_t(pair + value);
    set_f(s, add_word_flags(f(s), pair, value, result));
    return result;
}
constexpr void adc_word(Registers& s, uint16_t value) {
    const auto result = uint16_t(s.hl + value + (f(s) & FLAG_C));
    set_f(s, adc_word_flags(s.hl, value, result));
    s.hl = result;
}
constexpr void sbc_word(Registers& s, uint16_t value) {
    const auto result = uint16_t(s.hl - value - (f(s) & FLAG_C));
    set_f(s, sbc_word_flags(s.hl, value, result));
    s.hl = result;
}

// ---- rotates, shifts and bits ------------------------------------------------------------------

constexpr uint8_t shifted(Registers& s, unsigned result, unsigned carry) {
    const auto value = uint8_t(result);
    set_f(s, uint8_t(logic_flags[value] | (carry & FLAG_C)));
    return value;
}
constexpr uint8_t rlc(Registers& s, uint8_t v) { return shifted(s, v << 1 | v >> 7, v >> 7); }
constexpr uint8_t rrc(Registers& s, uint8_t v) { return shifted(s, v >> 1 | v << 7, v); }
constexpr uint8_t rl(Registers& s, uint8_t v) {
    return shifted(s, v << 1 | (f(s) & FLAG_C), v >> 7);
}
constexpr uint8_t rr(Registers& s, uint8_t v) {
    return shifted(s, v >> 1 | (f(s) & FLAG_C) << 7, v);
}
constexpr uint8_t sla(Registers& s, uint8_t v) { return shifted(s, v << 1, v >> 7); }
constexpr uint8_t sra(Registers& s, uint8_t v) { return shifted(s, v >> 1 | (v & 0x80), v); }
constexpr uint8_t slia(Registers& s, uint8_t v) { return shifted(s, v << 1 | 1, v >> 7); }
constexpr uint8_t srl(Registers& s, uint8_t v) { return shifted(s, v >> 1, v); }

/// Rotate or shift number `kind` (bits 5-3 of the opcode).
constexpr uint8_t rotate(Registers& s, unsigned kind, uint8_t value) {
    switch (kind & 7) {
    case 0: return rlc(s, value);
    case 1: return rrc(s, value);
    case 2: return rl(s, value);
    case 3: return rr(s, value);
    case 4: return sla(s, value);
    case 5: return sra(s, value);
    case 6: return slia(s, value);
    default: return srl(s, value);
    }
}

constexpr void rotated_a(Registers& s, unsigned result, unsigned carry) {
    const auto value = uint8_t(result);
    set_af(s, value, uint8_t((f(s) & 0xC4) | (value & COPY_BITS) | (carry & FLAG_C)));
}
constexpr void rlca(Registers& s) { rotated_a(s, a(s) << 1 | a(s) >> 7, a(s) >> 7); }
constexpr void rrca(Registers& s) { rotated_a(s, a(s) >> 1 | a(s) << 7, a(s)); }
constexpr void rla(Registers& s) { rotated_a(s, a(s) << 1 | (f(s) & FLAG_C), a(s) >> 7); }
constexpr void rra(Registers& s) { rotated_a(s, a(s) >> 1 | (f(s) & FLAG_C) << 7, a(s)); }

constexpr uint8_t MEMORY_OPERAND = 6; ///< low three bits of an opcode that works on memory

constexpr void test_bit(Registers& s, uint8_t opcode, uint8_t value, unsigned bit) {
    const auto tested = uint8_t(value & 1U << bit);
    uint8_t flags = uint8_t((f(s) & FLAG_C) | FLAG_H | (tested & FLAG_S));
    if (!tested) flags |= FLAG_Z | FLAG_PV;
    if ((opcode & 7) != MEMORY_OPERAND) flags |= value & COPY_BITS;
    set_f(s, flags);
}

// ---- memory, stack and ports -------------------------------------------------------------------

inline uint8_t bus_read(const Registers&, uint16_t address) { return mem_read(address); }
inline void bus_write(const Registers&, uint16_t address, uint8_t value) {
    mem_write(address, value);
}
inline uint8_t bus_in(const Registers&, uint8_t port) { return z80_in(port); }
inline void bus_out(const Registers&, uint8_t port, uint8_t value) { z80_out(port, value); }

inline uint16_t read_word(const BusRegisters auto& s, uint16_t address) {
    const uint8_t low_byte = bus_read(s, address);
    return make_pair(bus_read(s, uint16_t(address + 1)), low_byte);
}
inline void write_word(const BusRegisters auto& s, uint16_t address, uint16_t value) {
    bus_write(s, address, low(value));
    bus_write(s, uint16_t(address + 1), high(value));
}
inline uint8_t fetch(Registers& s) { return mem_read(s.pc++); }
inline uint16_t fetch_word(Registers& s) {
    const uint16_t value = read_word(s, s.pc);
    s.pc = uint16_t(s.pc + 2);
    return value;
}
inline void push(BusRegisters auto& s, uint16_t value) {
    s.sp = uint16_t(s.sp - 2);
    write_word(s, s.sp, value);
}
inline uint16_t pop(BusRegisters auto& s) {
    const uint16_t value = read_word(s, s.sp);
    s.sp = uint16_t(s.sp + 2);
    return value;
}
/// Puts `value` on the top of the stack in place of the word there, which is returned.
inline uint16_t exchange_stack(BusRegisters auto& s, uint16_t value) {
    const uint16_t top = read_word(s, s.sp);
    write_word(s, s.sp, value);
    return top;
}
constexpr void count_refresh(Registers& s) { s.r = uint8_t((s.r & 0x80) | ((s.r + 1) & 0x7F)); }

inline void rotate_digit_left(BusRegisters auto& s) {
    const uint8_t value = bus_read(s, s.hl);
    const auto stored = uint8_t(value << 4 | (a(s) & 0x0F));
    const auto result = uint8_t((a(s) & 0xF0) | value >> 4);
    set_af(s, result, logic_flags[result] | (f(s) & FLAG_C));
    bus_write(s, s.hl, stored);
}
inline void rotate_digit_right(BusRegisters auto& s) {
    const uint8_t value = bus_read(s, s.hl);
    const auto stored = uint8_t(value >> 4 | a(s) << 4);
    const auto result = uint8_t((a(s) & 0xF0) | (value & 0x0F));
    set_af(s, result, logic_flags[result] | (f(s) & FLAG_C));
    bus_write(s, s.hl, stored);
}
constexpr void load_a_special(Registers& s, uint8_t value) {
    set_af(s, value, sign_flags[value] | (s.iff2 ? FLAG_PV : 0) | (f(s) & FLAG_C));
}
inline uint8_t in_flags(BusRegisters auto& s, uint8_t port) {
    const uint8_t value = bus_in(s, port);
    set_f(s, (logic_flags[value] & (FLAG_S | FLAG_Z | FLAG_PV)) | (f(s) & (COPY_BITS | FLAG_C)));
    return value;
}

// ---- interrupts --------------------------------------------------------------------------------

constexpr uint16_t IRQ_ENTRY = 0x0038;
constexpr uint16_t NMI_ENTRY = 0x0066;

inline void accept_irq(BusRegisters auto& s) {
    count_refresh(s);
    --s.sp;
    s.iff1 = s.iff2 = 0;
    z80_state.t_count += 7;
    bus_write(s, s.sp, high(s.pc));
    --s.sp;
    z80_state.t_count += 3;
    bus_write(s, s.sp, low(s.pc));
    if (s.interrupt_mode == 2) {
        s.pc = read_word(s, make_pair(s.i, 0xFF));
        z80_state.t_count += 9;
    } else {
        s.pc = IRQ_ENTRY;
        z80_state.t_count += 3;
    }
}

inline void accept_nmi(BusRegisters auto& s) {
    count_refresh(s);
    push(s, s.pc);
    s.iff1 = 0;
    s.pc = NMI_ENTRY;
    z80_state.t_count += 11;
    z80_state.nmi_in_progress = 1;
}

} // namespace z80_operations
