#pragma once
/// How fast the machine runs when it is paced: at its own speed, in turbo (as fast as the host can,
/// still with all that belongs to a paced frame), or in slow motion.

#include <cstdint>

struct speed_choice {
    bool turbo = false;      ///< by the menu; the key asks for it as long as it is held
    bool fast_tapes = false; ///< turbo while a tape is being loaded from a WAV file
    uint32_t slow = 1;       ///< a frame lasts so many times as long: 1, 2 or 4
};
extern speed_choice speed_choices;

/// How many times as long as it should a frame lasts at this moment: 1, 2, 4, or 0 in turbo. 1
/// while nothing is paced.
uint32_t frame_stretch();
/// From normal speed to half, to a quarter, and back.
void next_slow_motion();
/// For pacing: a frame has been run, and the tape has not been moved on by it yet.
void speed_watch_tape();
