#pragma once
/// The cassette port as a sound source: its level is what is heard of a tape.

#include <cstdint>

void beeper_init();
/// `bit` is 0 or 1.
void beeper_set_level(uint32_t bit);
uint16_t beeper_level();
