#include "debugger/peek.h"

#include "cgenie/input.h"
#include "cgenie/memory/memory.h"
#include "media/wd1771.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

namespace {

constexpr uint16_t UPPER_AREAS = 0xC000; ///< below, what is read is what is there
constexpr uint16_t KEYBOARD_AREA = 0xF800;
constexpr uint16_t DEVICE_AREA = 0xFF00;

/// Keeps the host from being asked for the keys, and mends what a look at them changes.
uint8_t peek_keyboard(uint16_t address) {
    const input_contents before = input_state;
    const auto ask = machine_host.read_input;
    machine_host.read_input = machine_without_host().read_input;
    const uint8_t value = mem_read(address);
    machine_host.read_input = ask;
    input_state = before;
    return value;
}

/// A read of the controller takes its interrupt back and counts the bytes of a sector.
uint8_t peek_device(uint16_t address) {
    const wd1771_controller before = wd1771;
    const int32_t irq = z80_state.irq;
    const uint8_t value = mem_read(address);
    z80_state.irq = irq;
    wd1771 = before;
    return value;
}

uint8_t peek_upper(uint16_t address) {
    if (address >= DEVICE_AREA) return peek_device(address);
    if (address >= KEYBOARD_AREA) return peek_keyboard(address);
    return mem_read(address);
}

} // namespace

uint8_t debug_peek(uint16_t address) {
    if (address < UPPER_AREAS) return memory[address];
    const int64_t now = z80_state.t_count;
    const uint8_t value = peek_upper(address);
    z80_state.t_count = now;
    return value;
}

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
