#pragma once
/// The cassette port as a sound source: its level is what is heard of a tape.

#include "wall/state_record.h"

#include <cstdint>

struct beeper_state {
    uint16_t sound_level = 0; ///< the present sample
};
extern beeper_state beeper;
extern const state_record beeper_record;

/// Silent; from the first call on the beeper is one of the sound core's sources.
void beeper_init();
/// Back to silence.
void beeper_reset();
/// `bit` is 0 or 1. Bring the sound up to date before: the level counts for all samples to come.
void beeper_set_level(uint32_t bit);
/// The present sample, 0 or 4096.
uint16_t beeper_level();
