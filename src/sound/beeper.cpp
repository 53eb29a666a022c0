#include "sound/beeper.h"

namespace {
constexpr uint16_t BEEPER_AMPLITUDE = 4096;
uint16_t sound_level = 0;
} // namespace

void beeper_init() { sound_level = 0; }
void beeper_set_level(uint32_t bit) { sound_level = uint16_t(bit * BEEPER_AMPLITUDE); }
uint16_t beeper_level() { return sound_level; }
