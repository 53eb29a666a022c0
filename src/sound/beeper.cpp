#include "sound/beeper.h"

#include "sound/sound_core.h"

#include <algorithm>

namespace {

constexpr uint16_t BEEPER_AMPLITUDE = 4096;
uint16_t sound_level = 0;

void render(uint16_t* buffer, uint32_t count) { std::fill_n(buffer, count, sound_level); }

sound_source beeper = {"beeper", nullptr, render, beeper_reset};

} // namespace

void beeper_init() {
    beeper_reset();
    sound_add_source(&beeper);
}

void beeper_reset() { sound_level = 0; }
void beeper_set_level(uint32_t bit) { sound_level = uint16_t(bit * BEEPER_AMPLITUDE); }
uint16_t beeper_level() { return sound_level; }
