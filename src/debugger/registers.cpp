#include "debugger/registers.h"

#include "files/file_names.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>
#include <string>

namespace {

struct PairName {
    std::string_view name, high, low; ///< of the whole and its halves; SP and PC have none
    uint16_t z80_registers::*pair;
};
constexpr auto PAIRS = std::to_array<PairName>({
    {"af", "a", "f", &z80_registers::af},
    {"bc", "b", "c", &z80_registers::bc},
    {"de", "d", "e", &z80_registers::de},
    {"hl", "h", "l", &z80_registers::hl},
    {"ix", "ixh", "ixl", &z80_registers::ix},
    {"iy", "iyh", "iyl", &z80_registers::iy},
    {"sp", {}, {}, &z80_registers::sp},
    {"pc", {}, {}, &z80_registers::pc},
    {"af'", "a'", "f'", &z80_registers::af_alt},
    {"bc'", "b'", "c'", &z80_registers::bc_alt},
    {"de'", "d'", "e'", &z80_registers::de_alt},
    {"hl'", "h'", "l'", &z80_registers::hl_alt},
});

struct ByteName {
    std::string_view name;
    uint8_t z80_registers::*byte;
    uint8_t most;
};
constexpr auto BYTES = std::to_array<ByteName>({
    {"i", &z80_registers::i, 0xFF},
    {"r", &z80_registers::r, 0xFF},
    {"iff1", &z80_registers::iff1, 1},
    {"iff2", &z80_registers::iff2, 1},
    {"im", &z80_registers::interrupt_mode, 2},
});

struct FlagName {
    std::string_view name;
    uint8_t bit;
};
constexpr auto FLAGS = std::to_array<FlagName>({{"fs", FLAG_S},
                                                {"fz", FLAG_Z},
                                                {"fh", FLAG_H},
                                                {"fp", FLAG_PV},
                                                {"fn", FLAG_N},
                                                {"fc", FLAG_C}});

} // namespace

bool set_register(z80_registers& registers, std::string_view name, uint16_t value) {
    const std::string small = lower_case(std::string(name));
    for (const PairName& row : PAIRS) {
        uint16_t& pair = registers.*row.pair;
        if (small == row.name) return pair = value, true;
        if (!row.high.empty() && small == row.high) {
            return pair = uint16_t((pair & 0x00FF) | value << 8), true;
        }
        if (!row.low.empty() && small == row.low) {
            return pair = uint16_t((pair & 0xFF00) | (value & 0xFF)), true;
        }
    }
    for (const ByteName& row : BYTES) {
        if (small != row.name) continue;
        if (row.most < 0xFF && value > row.most) return false;
        return registers.*row.byte = uint8_t(value), true;
    }
    for (const FlagName& row : FLAGS) {
        if (small != row.name) continue;
        const auto others = uint16_t(registers.af & ~row.bit);
        return registers.af = uint16_t(others | (value ? row.bit : 0)), true;
    }
    return false;
}
