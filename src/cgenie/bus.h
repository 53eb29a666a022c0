#pragma once
/// The bus: address map and port map of the machine. It supplies the processor's mem_read,
/// mem_write, z80_in and z80_out (declared in z80/z80.h) and charges one wait cycle for every
/// access to RAM, colour RAM and character RAM, and for every read of the keyboard, of the unused
/// RAM above it and of the device page. ROM, the open bus and refused writes cost nothing.

#include <cstdint>

/// What the processor did that a picture may show. The beam engine compares `changes` before and
/// after an instruction.
struct bus_activity_record {
    uint32_t changes;    ///< 1 for a byte written to memory, OUTPUT_CHANGES for an output; wraps
    uint32_t last_write; ///< address of the last byte written to RAM, colour or character RAM
};
constexpr uint32_t OUTPUT_CHANGES = 8; ///< to the CRT controller or the port FF latch
extern bus_activity_record bus_activity;

/// Connects the sound chip's two ports: A out to the printer, B in to the joysticks.
void memory_init();
/// The sound chip's port B: joysticks, or the printer's status when it is on.
uint8_t memory_read_port_b();
/// Not connected: FF.
uint8_t memory_read_port_a();
/// Drives the maskable interrupt line: nonzero asserts.
void irq_set_io(int line, int level);
