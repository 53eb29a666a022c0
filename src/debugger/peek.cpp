#include "debugger/peek.h"

#include "z80/z80.h"

uint8_t debug_peek(uint16_t address) { return mem_peek(address); }

uint16_t debug_peek_word(uint16_t address) {
    const uint8_t low = debug_peek(address);
    return uint16_t(low | debug_peek(uint16_t(address + 1)) << 8);
}

std::optional<uint16_t> debug_call_before(uint16_t address) {
    constexpr uint8_t CALL = 0xCD, CALL_IF = 0xC4, CALL_IF_MASK = 0xC7, RST = 0xC7;
    const uint8_t three = debug_peek(uint16_t(address - 3));
    if (three == CALL || (three & CALL_IF_MASK) == CALL_IF) return uint16_t(address - 3);
    const uint8_t one = debug_peek(uint16_t(address - 1));
    // The open bus is all FF, which is RST 38h.
    const bool is_open = one == 0xFF && debug_peek(uint16_t(address - 2)) == 0xFF;
    if ((one & RST) == RST && !is_open) return uint16_t(address - 1);
    return std::nullopt;
}
