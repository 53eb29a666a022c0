#pragma once
/// What the user has chosen of the things that the machine's state holds, too. A state that is
/// loaded brings its own, and the machine goes on with those; settings and the next start keep
/// these.

#include "core/machine.h"

#include <cstdint>

struct MachineChoices {
    machine_configuration custom = {};
    uint32_t active = 0; ///< configuration
    uint32_t startup_pattern = 0;
    bool cycle_based = false;
    bool clean_sound = false;
    bool printer = false;
    bool graphics_board = false;
};
extern MachineChoices choices;

/// Gives the machine all that is chosen but for the engine, and starts it cold.
void choices_apply();
