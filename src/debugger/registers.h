#pragma once
/// The processor's registers by name, as expressions know them (expression.h).

#include <cstdint>
#include <span>
#include <string_view>

struct z80_registers;

/// A register, a half of one, or a flag: the bits from `shift` on of a pair, or a byte.
struct register_name {
    std::string_view name;
    uint16_t z80_registers::*pair = nullptr;
    uint8_t z80_registers::*byte = nullptr; ///< where there is no pair
    uint8_t shift = 0;
    uint16_t most = 0xFF; ///< its highest value
};

/// All of them, in small letters.
extern const std::span<const register_name> register_names;
/// In any case; null when there is none.
const register_name* find_register(std::string_view name);

uint16_t register_value(const z80_registers& registers, const register_name& of);
/// Sets one, of which the low bits count. False when there is none of this name, and for a value
/// that no processor has.
bool set_register(z80_registers& registers, std::string_view name, uint16_t value);
