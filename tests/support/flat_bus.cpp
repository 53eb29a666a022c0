#include "support/flat_bus.h"

#include "z80/z80.h"

FlatBus flat_bus;

void FlatBus::clear() { *this = FlatBus(); }

void FlatBus::load(uint16_t address, std::initializer_list<int> bytes) {
    for (const int byte : bytes) memory[address++] = uint8_t(byte);
}

uint8_t mem_read(uint32_t address) {
    z80_state.t_count += flat_bus.wait_cycles;
    const uint8_t value = flat_bus.memory[address];
    if (flat_bus.record) {
        flat_bus.events.push_back({FlatBus::Access::read, uint16_t(address), value});
    }
    return value;
}

void mem_write(uint32_t address, uint8_t value) {
    z80_state.t_count += flat_bus.wait_cycles;
    flat_bus.memory[address] = value;
    if (flat_bus.record) {
        flat_bus.events.push_back({FlatBus::Access::write, uint16_t(address), value});
    }
}

uint8_t z80_in(uint32_t port) {
    const uint8_t value = flat_bus.input[port];
    if (flat_bus.record) {
        flat_bus.events.push_back({FlatBus::Access::in, uint16_t(port), value});
    }
    return value;
}

void z80_out(uint32_t port, uint8_t value) {
    if (flat_bus.record) {
        flat_bus.events.push_back({FlatBus::Access::out, uint16_t(port), value});
    }
    if (flat_bus.on_out) flat_bus.on_out(uint8_t(port), value);
}

void trap_handle(int number) {
    flat_bus.traps.push_back(number);
    if (flat_bus.on_trap) flat_bus.on_trap(number);
}
