#include "host/joysticks.h"

#include "cgenie/input.h"
#include "host/pad_keys.h"
#include "platform/platform.h"

#include <cstdio>
#include <optional>

namespace {

constexpr int STICKS = PADS;
constexpr uint16_t POSITION_MAX = 65535;

bool is_key(int number, PadInput input) {
    return pad_keys()[size_t(number)][input] != PAD_DOES_USUAL;
}

/// What is a key of the machine does not move its joystick.
machine_stick read_stick(int number) {
    const std::optional<JoystickState> host = platform().joysticks().read(number);
    machine_stick stick;
    if (!host) return stick;
    if (!is_key(number, host->x < stick.x ? PAD_LEFT : PAD_RIGHT)) stick.x = host->x;
    if (!is_key(number, host->y < stick.y ? PAD_UP : PAD_DOWN)) {
        stick.y = uint16_t(POSITION_MAX - host->y);
    }
    stick.first_button = host->is_down(PAD_A) && !is_key(number, PAD_A);
    stick.second_button = host->is_down(PAD_B) && !is_key(number, PAD_B);
    return stick;
}

} // namespace

void initJoyInput() {
    Joysticks& host = platform().joysticks();
    const int devices = host.count();
    if (devices == 0) std::fputs("No joystick driver found.\n", stderr);
    bool attached[STICKS] = {};
    int found = 0;
    for (int i = 0; i < STICKS; ++i) {
        attached[i] = i < devices && host.plugged(i);
        found += attached[i];
    }
    std::fprintf(stderr, "Number of joysticks found: %i\n", found);
    if (found == 0) {
        std::fputs("No joysticks are plugged.\n", stderr);
        return;
    }
    for (int i = 0; i < STICKS; ++i) {
        if (attached[i]) std::fprintf(stderr, "Controller %i: %s\n", i, host.name(i).c_str());
    }
    for (int i = 0; i < STICKS; ++i) {
        if (!attached[i] || host.capture(i)) continue;
        std::fprintf(stderr, "Couldn't capture joystick #%i.\n", i + 1);
    }
}

void read_host_joysticks(machine_input& input) {
    for (int number = 0; number < STICKS; ++number) input.sticks[number] = read_stick(number);
}

bool rewind_button_is_down() {
    for (int number = 0; number < STICKS; ++number) {
        const std::optional<JoystickState> host = platform().joysticks().read(number);
        const bool down = host && host->is_down(PAD_LEFT_SHOULDER);
        if (down && !is_key(number, PAD_LEFT_SHOULDER)) return true;
    }
    return false;
}
