#include "support/flat_bus.h"

#include "z80/z80.h"

FlatBus flat_bus;

void FlatBus::clear() { *this = FlatBus(); }

void FlatBus::load(uint16_t address, std::initializer_list<int> bytes) {
    for (const int byte : bytes) memory[address++] = uint8_t(byte);
}

void FlatBus::note(Access access, uint32_t address, uint8_t value) {
    if (!record) return;
    events.push_back({access, uint16_t(address), value});
    times.push_back(z80_state.t_count);
}

uint8_t mem_read(uint32_t address) {
    z80_state.t_count += flat_bus.wait_cycles;
    const uint8_t value = flat_bus.memory[address];
    flat_bus.note(FlatBus::Access::read, address, value);
    return value;
}

uint8_t mem_peek(uint32_t address) { return flat_bus.memory[address]; }

void mem_write(uint32_t address, uint8_t value) {
    z80_state.t_count += flat_bus.wait_cycles;
    flat_bus.memory[address] = value;
    flat_bus.note(FlatBus::Access::write, address, value);
}

uint8_t z80_in(uint32_t port) {
    const uint8_t value = flat_bus.input[port];
    flat_bus.note(FlatBus::Access::in, port, value);
    return value;
}

void z80_out(uint32_t port, uint8_t value) {
    flat_bus.note(FlatBus::Access::out, port, value);
    if (flat_bus.on_out) flat_bus.on_out(uint8_t(port), value);
}

void trap_handle(int number) {
    flat_bus.traps.push_back(number);
    if (flat_bus.on_trap) flat_bus.on_trap(number);
}
