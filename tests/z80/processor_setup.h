#pragma once
/// A processor with a different value in every register, on cleared memory, and comparisons of
/// everything that an instruction could have touched.

#include "support/flat_bus.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

inline constexpr uint16_t origin = 0x8000; ///< where the code under test stands

inline void fresh_processor() {
    flat_bus.clear();
    z80_state = {};
    z80_init(2216750);
    static_cast<z80_registers&>(z80_state) = {
        0xA500, 0xB1C2, 0xD3E4, 0x4567, 0x5678, 0x6789, 0x7F00, origin, // AF BC DE HL IX IY SP PC
        0x1A2B, 0x3C4D, 0x5E6F, 0x7081, 0x21,   0x32,   0,      1,      0}; // AF' to HL' I R IFF IM
}

inline void put_code(const std::vector<int>& bytes) {
    uint16_t address = z80_state.pc;
    for (const int byte : bytes) flat_bus.memory[address++] = uint8_t(byte);
}

inline std::string hex_bytes(const std::vector<int>& bytes) {
    std::string text;
    char digits[8];
    for (const int byte : bytes) {
        std::snprintf(digits, sizeof digits, "%02X ", byte & 0xFF);
        text += digits;
    }
    return text;
}

inline std::string describe(const z80_record& s) {
    char text[256];
    std::snprintf(text, sizeof text,
                  "AF=%04X BC=%04X DE=%04X HL=%04X IX=%04X IY=%04X SP=%04X PC=%04X AF'=%04X "
                  "BC'=%04X DE'=%04X HL'=%04X I=%02X R=%02X IFF1=%d IFF2=%d IM=%d",
                  s.af, s.bc, s.de, s.hl, s.ix, s.iy, s.sp, s.pc, s.af_alt, s.bc_alt, s.de_alt,
                  s.hl_alt, s.i, s.r, s.iff1, s.iff2, s.interrupt_mode);
    return text;
}

/// The recorded accesses behind the fetch of `length` bytes from `start`, as "r4000 w4001=12 i10
/// o10=34". A fetch out of order shows up among them, a fetch too few is told.
inline std::string data_accesses(uint16_t start, size_t length) {
    std::string text;
    char entry[16];
    if (flat_bus.events.size() < length) return "not read whole";
    for (size_t n = 0; n < flat_bus.events.size(); n++) {
        const auto& [access, address, value] = flat_bus.events[n];
        const bool fetch = access == FlatBus::Access::read && address == uint16_t(start + n);
        if (n < length && fetch) continue;
        const char letter = "rwio"[int(access)];
        const bool output = letter == 'w' || letter == 'o';
        std::snprintf(entry, sizeof entry, output ? "%c%02X=%02X" : "%c%02X", letter, address,
                      value);
        if (!text.empty()) text += ' ';
        text += entry;
    }
    return text;
}

/// The present state with PC and R behind an instruction of these bytes.
inline z80_record behind(const std::vector<int>& bytes) {
    z80_record next = z80_state;
    const bool prefixed =
        bytes[0] == 0xCB || bytes[0] == 0xDD || bytes[0] == 0xED || bytes[0] == 0xFD;
    next.pc = uint16_t(next.pc + bytes.size());
    next.r = uint8_t((next.r & 0x80) | ((next.r + (prefixed ? 2 : 1)) & 0x7F));
    return next;
}

/// Runs one instruction placed at PC and compares every register and every access.
inline void expect_step(const std::string& name, const std::vector<int>& bytes,
                        const z80_record& want, const std::string& accesses) {
    const uint16_t start = z80_state.pc;
    put_code(bytes);
    flat_bus.events.clear();
    flat_bus.record = true;
    z80_run(0);
    flat_bus.record = false;
    EXPECT_EQ(describe(z80_state), describe(want)) << name << ": " << hex_bytes(bytes);
    EXPECT_EQ(data_accesses(start, bytes.size()), accesses) << name << ": " << hex_bytes(bytes);
}
