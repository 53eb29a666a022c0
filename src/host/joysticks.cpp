#include "host/joysticks.h"

#include "cgenie/input.h"
#include "platform/platform.h"

#include <cstdio>
#include <optional>

namespace {

constexpr int STICKS = 2;
constexpr uint16_t POSITION_MAX = 65535;

machine_stick read_stick(int number) {
    const std::optional<JoystickState> host = platform().joysticks().read(number);
    if (!host) return {};
    return {host->x, uint16_t(POSITION_MAX - host->y), host->first_button, host->second_button};
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
        if (host && host->third_button) return true;
    }
    return false;
}
