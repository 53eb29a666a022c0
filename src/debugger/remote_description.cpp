#include "debugger/remote_description.h"

#include "cgenie/memory/memory.h"
#include "debugger/debugger.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>

namespace {

using Pair = uint16_t z80_registers::*;

struct Register {
    const char* name;
    const char* type;
    Pair pair = nullptr; ///< where it is one
};

constexpr std::array<Register, REMOTE_REGISTERS> registers = {{
    {"af", "uint16", &z80_registers::af},
    {"bc", "uint16", &z80_registers::bc},
    {"de", "data_ptr", &z80_registers::de},
    {"hl", "data_ptr", &z80_registers::hl},
    {"af'", "uint16", &z80_registers::af_alt},
    {"bc'", "uint16", &z80_registers::bc_alt},
    {"de'", "data_ptr", &z80_registers::de_alt},
    {"hl'", "data_ptr", &z80_registers::hl_alt},
    {"ix", "data_ptr", &z80_registers::ix},
    {"iy", "data_ptr", &z80_registers::iy},
    {"sp", "data_ptr", &z80_registers::sp},
    {"pc", "code_ptr", &z80_registers::pc},
    {"i", "uint8"},
    {"r", "uint8"},
    {"iff", "uint8"},
    {"im", "uint8"},
    {"ir", "uint16"},
}};

constexpr uint16_t LAST_MODE = 2;
constexpr uint16_t BOTH_FLIP_FLOPS = 3;
constexpr uint16_t BYTE = 0xFF;
constexpr int BYTE_BITS = 8;

struct Region {
    uint32_t first;
    bool writable;
};
constexpr uint32_t UPPER_RAM = 0x8000, EXPANSION = 0xC000;

/// GDB looks for callers behind the end of the memory and before its beginning. It takes the low 16
/// bits of such an address, as the processor does, unless the map says that nothing is there.
constexpr const char* BEHIND_THE_END =
    "<memory type=\"ram\" start=\"0x10000\" length=\"0xffffffffffff0000\"/>\n";

/// In order, up to the next one. The keyboard and the devices are what can be written, too.
std::array<Region, 5> regions() {
    return {{{0, false},
             {RAM_START, true},
             {UPPER_RAM, !memory_is_16k()},
             {EXPANSION, false},
             {COLOUR_RAM_START, true}}};
}

std::string target_description() {
    std::string text = "<?xml version=\"1.0\"?>\n"
                       "<!DOCTYPE target SYSTEM \"gdb-target.dtd\">\n"
                       "<target version=\"1.0\">\n"
                       "<architecture>z80</architecture>\n"
                       "<feature name=\"org.gnu.gdb.z80.cpu\">\n";
    for (size_t n = 0; n < registers.size(); ++n) {
        const std::string bits = std::to_string(remote_register_size(n) * BYTE_BITS);
        text += std::string("<reg name=\"") + registers[n].name + "\" bitsize=\"" + bits +
                "\" type=\"" + registers[n].type + "\" regnum=\"" + std::to_string(n) + "\"/>\n";
    }
    return text + "</feature>\n</target>\n";
}

std::string memory_map() {
    std::string text = "<?xml version=\"1.0\"?>\n<memory-map>\n";
    const auto all = regions();
    for (size_t n = 0; n < all.size(); ++n) {
        const uint32_t end = n + 1 < all.size() ? all[n + 1].first : MEMORY_SIZE;
        char line[80];
        std::snprintf(line, sizeof line, "<memory type=\"%s\" start=\"0x%x\" length=\"0x%x\"/>\n",
                      all[n].writable ? "ram" : "rom", unsigned(all[n].first),
                      unsigned(end - all[n].first));
        text += line;
    }
    return text + BEHIND_THE_END + "</memory-map>\n";
}

} // namespace

size_t remote_register_size(size_t number) {
    return number >= REMOTE_I && number <= REMOTE_IM ? 1 : 2;
}

uint16_t remote_register(size_t number) {
    const z80_record& now = z80_state;
    switch (number) {
    case REMOTE_I: return now.i;
    case REMOTE_R: return now.r;
    case REMOTE_IFF: return uint16_t((now.iff1 ? 1 : 0) | (now.iff2 ? 2 : 0));
    case REMOTE_IM: return now.interrupt_mode;
    case REMOTE_IR: return uint16_t(now.i << BYTE_BITS | now.r);
    default: return now.*registers[number].pair;
    }
}

bool set_remote_register(size_t number, uint16_t value) {
    switch (number) {
    case REMOTE_IFF:
        return value <= BOTH_FLIP_FLOPS && debugger_set_register("iff1", value & 1) &&
               debugger_set_register("iff2", value >> 1);
    case REMOTE_IM: return value <= LAST_MODE && debugger_set_register("im", value);
    case REMOTE_IR:
        return debugger_set_register("i", value >> BYTE_BITS) &&
               debugger_set_register("r", value & BYTE);
    default:
        return number < registers.size() && debugger_set_register(registers[number].name, value);
    }
}

bool remote_memory_is_writable(uint32_t address) {
    const auto all = regions();
    const auto next = std::ranges::find_if(
        all, [address](const Region& region) { return region.first > address; });
    return std::prev(next)->writable;
}

std::optional<std::string> remote_document(std::string_view object, std::string_view annex) {
    if (object == "features" && annex == "target.xml") return target_description();
    if (object == "memory-map" && annex.empty()) return memory_map();
    return {};
}
