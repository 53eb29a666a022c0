#pragma once
/// Snapshots: the processor's registers, a few port bytes and the 48 KB of RAM in a file of fixed
/// length. Interrupt state, video, CRT controller and sound are not part of it.

#include <cstddef>
#include <cstdint>

constexpr size_t SNAPSHOT_SIZE = 49702;

/// Replaces the file by the machine; `ram` is address 4000. 0 when that fails, with the reason in
/// errno.
int snapshot_save(const char* path, const uint8_t* ram);
/// Restores the machine. A missing or shorter file returns 0 and changes nothing; the magic is not
/// looked at.
int snapshot_load(const char* path, uint8_t* ram);
/// The last byte written to an output port.
uint8_t snapshot_out(uint8_t port);
/// Writes to an output port as a processor OUT does.
void snapshot_in(uint8_t port, uint8_t value);
