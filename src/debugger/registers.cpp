#include "debugger/registers.h"

#include "files/file_names.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>
#include <string>

namespace {

constexpr register_name pair(std::string_view name, uint16_t z80_registers::*place) {
    return {name, place, nullptr, 0, 0xFFFF};
}
constexpr register_name high(std::string_view name, uint16_t z80_registers::*place) {
    return {name, place, nullptr, 8};
}
constexpr register_name low(std::string_view name, uint16_t z80_registers::*place) {
    return {name, place};
}
constexpr register_name flag(std::string_view name, uint8_t bit) {
    return {name, &z80_registers::af, nullptr, bit, 1};
}
constexpr register_name byte(std::string_view name, uint8_t z80_registers::*place, uint16_t most) {
    return {name, nullptr, place, 0, most};
}

using z80 = z80_registers;
constexpr auto all_names = std::to_array<register_name>({
    pair("af", &z80::af),
    pair("bc", &z80::bc),
    pair("de", &z80::de),
    pair("hl", &z80::hl),
    pair("ix", &z80::ix),
    pair("iy", &z80::iy),
    pair("sp", &z80::sp),
    pair("pc", &z80::pc),
    pair("af'", &z80::af_alt),
    pair("bc'", &z80::bc_alt),
    pair("de'", &z80::de_alt),
    pair("hl'", &z80::hl_alt),
    high("a", &z80::af),
    low("f", &z80::af),
    high("b", &z80::bc),
    low("c", &z80::bc),
    high("d", &z80::de),
    low("e", &z80::de),
    high("h", &z80::hl),
    low("l", &z80::hl),
    high("ixh", &z80::ix),
    low("ixl", &z80::ix),
    high("iyh", &z80::iy),
    low("iyl", &z80::iy),
    high("a'", &z80::af_alt),
    low("f'", &z80::af_alt),
    high("b'", &z80::bc_alt),
    low("c'", &z80::bc_alt),
    high("d'", &z80::de_alt),
    low("e'", &z80::de_alt),
    high("h'", &z80::hl_alt),
    low("l'", &z80::hl_alt),
    byte("i", &z80::i, 0xFF),
    byte("r", &z80::r, 0xFF),
    byte("iff1", &z80::iff1, 1),
    byte("iff2", &z80::iff2, 1),
    byte("im", &z80::interrupt_mode, 2),
    flag("fs", 7),
    flag("fz", 6),
    flag("fh", 4),
    flag("fp", 2),
    flag("fn", 1),
    flag("fc", 0),
});

} // namespace

const std::span<const register_name> register_names = all_names;

const register_name* find_register(std::string_view name) {
    const std::string small = lower_case(std::string(name));
    const auto* const found = std::ranges::find(all_names, small, &register_name::name);
    return found == all_names.end() ? nullptr : found;
}

uint16_t register_value(const z80_registers& registers, const register_name& of) {
    if (!of.pair) return registers.*of.byte;
    return uint16_t(registers.*of.pair >> of.shift & of.most);
}

bool set_register(z80_registers& registers, std::string_view name, uint16_t value) {
    const register_name* const of = find_register(name);
    if (!of) return false;
    if (!of->pair) {
        if (of->most < 0xFF && value > of->most) return false;
        registers.*of->byte = uint8_t(value);
        return true;
    }
    const auto bits = uint16_t(of->most == 1 ? value != 0 : value & of->most);
    uint16_t& pair = registers.*of->pair;
    pair = uint16_t((pair & ~(of->most << of->shift)) | bits << of->shift);
    return true;
}
