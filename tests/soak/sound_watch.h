#pragma once
/// A sound driver between the core and the host's ring: counts and judges what passes through.

#include <cstdint>

struct SoundFigures {
    double square_sum = 0; ///< of the samples
    int64_t samples = 0;
    int64_t clipped = 0;     ///< samples at either end of the scale
    int32_t longest_run = 0; ///< of equal samples
    int32_t least_lead = 0;  ///< bytes from the device to a fragment that is written
    int32_t most_lead = 0;
};

/// Puts the driver in.
void sound_watch_install();
/// Whether the core sees how far the device is, and adapts, or makes every fragment.
void sound_watch_show_device(bool shown);
int64_t sound_watch_fragments(); ///< written in all
/// The figures since the last call.
SoundFigures sound_watch_take();
