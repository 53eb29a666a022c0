#pragma once
/// The bus: address map and port map of the machine. It supplies the processor's mem_read,
/// mem_write, z80_in and z80_out (declared in z80/z80.h) and charges one wait cycle for every
/// access to RAM, colour RAM and character RAM, and for every read of the keyboard, of the unused
/// RAM above it and of the device page. ROM, the open bus and refused writes cost nothing. Before a
/// byte or register changes that the beam engine may be about to show, it is told.

#include "wall/state_record.h"

#include <cstdint>

/// What the bus itself remembers; the port latches are in the memory.
struct bus_latches {
    uint8_t tape_level; ///< of the cassette input when it was last read: 0 or 1
};
extern bus_latches bus_state;
extern const state_record bus_record;

/// Connects the sound chip's two ports: A out to the printer, B in to the joysticks.
void memory_init();
/// The sound chip's port B: joysticks, or the printer's status when it is on.
uint8_t memory_read_port_b();
/// Not connected: FF.
uint8_t memory_read_port_a();
/// Drives the maskable interrupt line: nonzero asserts.
void irq_set_io(int line, int level);
