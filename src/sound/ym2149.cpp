#include "sound/ym2149.h"

#include <array>

namespace {

enum : uint32_t { REG_MIXER = 7, REG_PORT_A = 14, REG_PORT_B = 15 };

/// Bits that a read of each register returns.
constexpr std::array<uint8_t, 16> read_mask = {0xFF, 0x0F, 0xFF, 0x0F, 0xFF, 0x0F, 0x1F, 0xFF,
                                               0x1F, 0x1F, 0x1F, 0xFF, 0xFF, 0x0F, 0xFF, 0xFF};

struct {
    uint8_t selected = 0;
    std::array<uint8_t, 16> registers = {};
    std::array<uint8_t, 2> input_latch = {};
    std::array<uint8_t (*)(), 2> read_callback = {};
    std::array<void (*)(uint8_t), 2> write_callback = {};
} ay;

bool is_output(uint32_t port) { return (ay.registers[REG_MIXER] >> (6 + port) & 1) != 0; }

} // namespace

void ym2149_init(uint32_t /*clock_hz*/) {
    ym2149_reset();
    ym2149_set_port_read_callback(0, nullptr);
}

void ym2149_reset() {
    ay.selected = 0;
    ay.input_latch = {};
}

void ym2149_register_select(uint8_t value) { ay.selected = value; }

void ym2149_write(uint8_t value) { ym2149_write_register(ay.selected, value); }

void ym2149_write_register(uint32_t reg, uint8_t value) {
    if ((reg == REG_PORT_A || reg == REG_PORT_B) && ay.write_callback[reg - REG_PORT_A]) {
        ay.write_callback[reg - REG_PORT_A](value);
    }
    ay.registers[reg % 16] = value;
}

uint8_t ym2149_read() {
    const uint32_t reg = ay.selected;
    if (reg > 15) return ay.registers[reg % 16];
    if (reg < REG_PORT_A) return ay.registers[reg] & read_mask[reg];
    const uint32_t port = reg - REG_PORT_A;
    if (is_output(port)) return ay.registers[reg];
    ay.input_latch[port] = ay.read_callback[port] ? ay.read_callback[port]() : 0xFF;
    return ay.input_latch[port];
}

uint8_t ym2149_peek_reg(uint32_t reg) { return ay.registers[reg % 16]; }

void ym2149_set_port_write_callback(uint32_t port, void (*callback)(uint8_t value)) {
    ay.write_callback[port % 2] = callback;
}

void ym2149_set_port_read_callback(uint32_t port, uint8_t (*callback)()) {
    ay.read_callback[port % 2] = callback;
}
