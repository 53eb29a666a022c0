#pragma once
/// The cassette port as a sound source: its level is what is heard of a tape.

#include <cstdint>

/// Silent; from the first call on the beeper is one of the sound core's sources.
void beeper_init();
void beeper_reset();
/// `bit` is 0 or 1.
void beeper_set_level(uint32_t bit);
uint16_t beeper_level();
