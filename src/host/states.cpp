#include "host/states.h"

#include "core/machine_state.h"
#include "wall/machine_host.h"

#include <array>

namespace {

struct {
    std::array<machine_state, STATE_SLOTS> slots;
    int current = 0;
} states;

} // namespace

int current_slot() { return states.current; }

void choose_slot(int slot) {
    states.current = (slot + STATE_SLOTS) % STATE_SLOTS;
    const bool full = !states.slots[size_t(states.current)].records.empty();
    StatusBarText("Slot %d: %s", states.current, full ? "a state of this run" : "empty");
}

void save_slot(int slot) {
    machine_save(states.slots[size_t(slot)]);
    StatusBarText("State saved in slot %d", slot);
}

void load_slot(int slot) {
    const bool loaded = machine_load(states.slots[size_t(slot)]) != 0;
    StatusBarText(loaded ? "State of slot %d loaded" : "Slot %d is empty", slot);
}
