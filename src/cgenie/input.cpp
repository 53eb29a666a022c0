#include "cgenie/input.h"

#include "wall/machine_host.h"

input_contents input_state = {};

namespace {

enum : uint8_t { LOOK_ALWAYS, LOOK_ONCE, LOOK_NO_MORE };

constexpr state_field input_fields[] = {
    {"symbolic", sizeof(machine_input::symbolic)},
    {"positional", sizeof(machine_input::positional)},
    {"direct", sizeof(machine_input::direct)},
    {"sticks", sizeof(machine_input::sticks)},
    {"keypad", sizeof(machine_input::keypad)},
    {"look", sizeof(input_contents::look)},
    {"keyboard_mapping", sizeof(input_contents::keyboard_mapping)},
    {"next_shift_state", sizeof(input_contents::next_shift_state)},
    {"unused", sizeof(input_contents::unused)},
};

const char* fault(const input_contents& input) {
    return first_fault(
        {{"look", input.look <= LOOK_NO_MORE}, {"keyboard_mapping", input.keyboard_mapping <= 1}});
}

} // namespace

const state_record input_record = {"input_state", &input_state, sizeof input_state, input_fields,
                                   fault_of<input_contents, fault>};

void input_begin_frame() { input_state.look = LOOK_ONCE; }
void input_end_frame() { input_state.look = LOOK_ALWAYS; }

const machine_input& input_now() {
    if (input_state.look != LOOK_NO_MORE) {
        machine_host.read_input(input_state.now);
        if (input_state.look == LOOK_ONCE) input_state.look = LOOK_NO_MORE;
    }
    return input_state.now;
}
