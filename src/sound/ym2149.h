#pragma once
/// AY-3-8910 / YM2149 sound generator, the half that the bus sees: register file and I/O ports.
///
/// Registers keep what was written; a read masks the bits that the chip does not have. Registers
/// 14 and 15 are the two 8-bit ports; bits 6 and 7 of register 7 make them outputs. The tone, noise
/// and envelope generators are not part of this module yet: the machine is silent.

#include <cstdint>

/// Sets the chip's clock in Hz and resets it; disconnects the port A input.
void ym2149_init(uint32_t clock_hz);
/// Selects register 0 and clears the port latches. The register file and the callbacks stay.
void ym2149_reset();
void ym2149_register_select(uint8_t value);
void ym2149_write(uint8_t value);
/// `reg` above 15 changes only the register file, at `reg` modulo 16.
void ym2149_write_register(uint32_t reg, uint8_t value);
/// The selected register; a port in input mode without a callback reads FF.
uint8_t ym2149_read();
/// The byte last written to register `reg` modulo 16, without side effect.
uint8_t ym2149_peek_reg(uint32_t reg);

/// Port 0 is A, 1 is B; none disconnects.
void ym2149_set_port_write_callback(uint32_t port, void (*callback)(uint8_t value));
void ym2149_set_port_read_callback(uint32_t port, uint8_t (*callback)());
