#pragma once
/// Sound output through the host's looping ring of one second. The driver's name is "DirectSound"
/// to the core, and its messages keep that name.
///
/// A fragment is copied into the ring where the core says; the device reads on by itself. A ring
/// that could not be made, or whose device is lost, takes nothing, and the machine goes on
/// silently. A lost device is tried again after every second of sound that it has not taken.

#include <cstdint>

constexpr uint32_t SHORTEST_LATENCY = 30; ///< ms, from a register's write to the device
constexpr uint32_t DEFAULT_LATENCY = 60;
constexpr uint32_t LONGEST_SET_LATENCY = 150;

/// The median time from the write of a sound register to the device's taking the sample, for the
/// next dsound_init: `ms` or the nearest possible value, which is the result. When the device has
/// run dry twice within a minute, the latency grows and the user is told.
uint32_t dsound_set_latency(uint32_t ms);
/// Builds the output at `rate` samples per second and registers the driver; 1 on success. A step
/// that fails shows its message, and the null driver stays.
int dsound_init(int rate);
/// Makes the ring in place of any before and starts it; without one a message is shown. 1 on
/// success.
int dsound_create_secondary_buffer(int rate);
/// Copies `bytes` bytes to byte `offset` of the ring, which wraps. 0 when written, and when there
/// is no ring; else the number of the step that failed.
int dsound_write(const uint16_t* samples, uint32_t offset, uint32_t bytes);
/// Byte offset up to which the device has taken data, or -1 when unknown. With a device that plays,
/// it is shifted so that the latency is kept.
int32_t dsound_get_current_position();
/// Stops the ring, and starts it again.
void dsound_pause();
void dsound_resume();
/// See fade_out and begin_again of the driver table.
void dsound_fade_out();
bool dsound_begin_again();
/// Gets a lost device back.
void dsound_reset();
/// Frees the ring and the device; the core's driver stays registered.
void dsound_close();
