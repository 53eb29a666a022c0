#pragma once
/// Snapshots: the processor's registers, a few port bytes and the 48 KB of RAM in a fixed number of
/// bytes. Interrupt state, video, CRT controller and sound are not part of it.

#include <cstddef>
#include <cstdint>
#include <span>

constexpr size_t SNAPSHOT_SIZE = 49702;

/// The machine as it is; `ram` is address 4000.
void snapshot_pack(std::span<uint8_t, SNAPSHOT_SIZE> to, const uint8_t* ram);
/// Restores the machine. Less than SNAPSHOT_SIZE bytes return 0 and change nothing; the magic is
/// not looked at.
int snapshot_unpack(std::span<const uint8_t> snapshot, uint8_t* ram);
/// The last byte written to an output port.
uint8_t snapshot_out(uint8_t port);
/// Writes to an output port as a processor OUT does.
void snapshot_in(uint8_t port, uint8_t value);
