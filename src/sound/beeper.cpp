#include "sound/beeper.h"

#include "sound/sound_core.h"

#include <algorithm>

namespace {

constexpr uint16_t BEEPER_AMPLITUDE = 4096;

void render(uint16_t* buffer, uint32_t count) { std::fill_n(buffer, count, beeper.sound_level); }

sound_source source = {"beeper", nullptr, render, beeper_reset};

constexpr state_field beeper_fields[] = {{"sound_level", sizeof(beeper_state::sound_level)}};

const char* fault(const beeper_state& state) {
    return first_fault(
        {{"sound_level", state.sound_level == 0 || state.sound_level == BEEPER_AMPLITUDE}});
}

} // namespace

beeper_state beeper;
const state_record beeper_record = {"beeper", &beeper, sizeof beeper, beeper_fields,
                                    fault_of<beeper_state, fault>};

void beeper_init() {
    beeper_reset();
    sound_add_source(&source);
}

void beeper_reset() { beeper = {}; }
void beeper_set_level(uint32_t bit) { beeper.sound_level = uint16_t(bit * BEEPER_AMPLITUDE); }
uint16_t beeper_level() { return beeper.sound_level; }
