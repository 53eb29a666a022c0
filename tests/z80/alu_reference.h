#pragma once
/// Results and flags as the data sheet words them, in plain wide integers: carries from sums that
/// leave the width, half carries from nibble sums, overflow from signed ranges, parity by counting.

#include "z80/z80.h"

#include <bit>
#include <cstdint>

struct ByteResult {
    uint8_t value, flags;
    bool operator==(const ByteResult&) const = default;
};
struct WordResult {
    uint16_t value;
    uint8_t flags;
    bool operator==(const WordResult&) const = default;
};

inline int flag_if(bool condition, int flag) { return condition ? flag : 0; }
inline bool outside(int value, int low, int high) { return value < low || value > high; }
inline int parity_flag(int value) {
    return flag_if(std::popcount(uint8_t(value)) % 2 == 0, FLAG_PV);
}
/// S, Z and bits 5 and 3 of a byte.
inline int sign_zero_53(int value) { return (value & 0xA8) | flag_if((value & 0xFF) == 0, FLAG_Z); }

/// Operations in the order of the opcodes: ADD ADC SUB SBC AND XOR OR CP.
inline ByteResult reference_alu(int operation, int a, int v, int f) {
    if (operation >= 4 && operation <= 6) {
        const int result = operation == 4 ? a & v : operation == 5 ? a ^ v : a | v;
        return {uint8_t(result), uint8_t(sign_zero_53(result) | parity_flag(result) |
                                         flag_if(operation == 4, FLAG_H))};
    }
    const int sign = operation < 2 ? 1 : -1;
    const int carry = operation == 1 || operation == 3 ? f & FLAG_C : 0;
    const int wide = a + sign * (v + carry);
    const int low = (a & 0x0F) + sign * ((v & 0x0F) + carry);
    const int exact = int8_t(a) + sign * (int8_t(v) + carry);
    const int flags = sign_zero_53(wide) | flag_if(outside(wide, 0, 0xFF), FLAG_C) |
                      flag_if(outside(low, 0, 0x0F), FLAG_H) |
                      flag_if(outside(exact, -128, 127), FLAG_PV) | flag_if(sign < 0, FLAG_N);
    if (operation == 7) return {uint8_t(a), uint8_t((flags & ~0x28) | (v & 0x28))};
    return {uint8_t(wide), uint8_t(flags)};
}

/// Delta is 1 for INC, -1 for DEC.
inline ByteResult reference_step(int v, int delta, int f) {
    const int flags = sign_zero_53(v + delta) | (f & FLAG_C) | flag_if(delta < 0, FLAG_N) |
                      flag_if(outside((v & 0x0F) + delta, 0, 0x0F), FLAG_H) |
                      flag_if(outside(int8_t(v) + delta, -128, 127), FLAG_PV);
    return {uint8_t(v + delta), uint8_t(flags)};
}

/// Kinds in the order of the opcodes: RLC RRC RL RR SLA SRA SLL SRL.
inline ByteResult reference_rotate(int kind, int v, int f) {
    const bool left = kind % 2 == 0;
    const int out = left ? v >> 7 : v & 1;
    const int carry = f & FLAG_C;
    const int in[8] = {out, out, carry, carry, 0, v >> 7, 1, 0};
    const int result = left ? (v << 1 | in[kind]) & 0xFF : v >> 1 | in[kind] << 7;
    return {uint8_t(result), uint8_t(sign_zero_53(result) | parity_flag(result) | out)};
}

inline uint8_t reference_bit(int v, int bit, bool memory, int f) {
    const bool set = (v >> bit & 1) != 0;
    return uint8_t((f & FLAG_C) | FLAG_H | flag_if(!set, FLAG_Z | FLAG_PV) |
                   flag_if(set && bit == 7, FLAG_S) | (memory ? 0 : v & 0x28));
}

enum class WordOperation { add, adc, sbc };

inline WordResult reference_word(WordOperation operation, int a, int v, int f) {
    const int sign = operation == WordOperation::sbc ? -1 : 1;
    const int carry = operation == WordOperation::add ? 0 : f & FLAG_C;
    const int wide = a + sign * (v + carry);
    const int low = (a & 0x0FFF) + sign * ((v & 0x0FFF) + carry);
    const int exact = int16_t(a) + sign * (int16_t(v) + carry);
    const int common = (wide >> 8 & 0x28) | flag_if(outside(wide, 0, 0xFFFF), FLAG_C) |
                       flag_if(outside(low, 0, 0x0FFF), FLAG_H);
    if (operation == WordOperation::add) {
        return {uint16_t(wide), uint8_t(common | (f & (FLAG_S | FLAG_Z | FLAG_PV)))};
    }
    return {uint16_t(wide),
            uint8_t(common | (wide >> 8 & FLAG_S) | flag_if(uint16_t(wide) == 0, FLAG_Z) |
                    flag_if(outside(exact, -32768, 32767), FLAG_PV) | flag_if(sign < 0, FLAG_N))};
}
