#include "cgenie/joystick.h"

#include "platform/platform.h"
#include "sound/ym2149.h"

#include <cstdio>
#include <optional>

namespace {

constexpr int STICKS = 2;
constexpr int COLUMNS = 3;
constexpr int COLUMN_KEYS = 4;
constexpr uint32_t PORT_A_REGISTER = 14;
constexpr uint8_t LEVEL_MASK = 0x3F; ///< of port A: the converter is six bits wide
constexpr int POSITION_SHIFT = 10;   ///< from the host's 16-bit range to that of the converter
constexpr uint32_t POSITION_MAX = 65535;
constexpr uint32_t CENTRE = 32767;

// What stands at a crossing of the keypad matrix: a digit of the host's numeric keypad, or one of
// the fire buttons of joystick 0.
constexpr int8_t FIRE_1 = -1, FIRE_2 = -2;
// By the bit of port A that selects the column, then by the bit of port B.
constexpr int8_t KEYPAD[COLUMNS][COLUMN_KEYS] = {
    {3, 6, 9, FIRE_2}, {2, 5, 8, 0}, {1, 4, 7, FIRE_1}};

struct Stick {
    uint32_t x = CENTRE;
    uint32_t y = CENTRE; ///< up is high
    bool first_button = false;
    bool second_button = false;
};

Stick read_stick(int number) {
    const std::optional<JoystickState> host = platform().joysticks().read(number);
    if (!host) return {};
    return {host->x, POSITION_MAX - host->y, host->first_button, host->second_button};
}

bool is_down(int8_t key, const Stick& stick) {
    if (key == FIRE_1) return stick.first_button;
    if (key == FIRE_2) return stick.second_button;
    return platform().keyboard().is_down(uint8_t(KEY_NUMPAD0 + key));
}

} // namespace

void joystick_init() {}
void joystick_reset() {}

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

uint32_t input_getJoyCords(int joystick, int query) {
    const Stick stick = read_stick(joystick);
    switch (query) {
    case JOYSTICK_X: return stick.x;
    case JOYSTICK_Y: return stick.y;
    case JOYSTICK_FIRST_BUTTON: return stick.first_button;
    case JOYSTICK_SECOND_BUTTON: return stick.second_button;
    default: return 0;
    }
}

uint8_t joystick_get_state() {
    const uint8_t port_a = ym2149_peek_reg(PORT_A_REGISTER);
    const uint32_t level = port_a & LEVEL_MASK;
    const Stick sticks[STICKS] = {read_stick(0), read_stick(1)};
    uint8_t low = 0; // the bits that something pulls down
    uint8_t comparator = 0x80;
    for (const Stick& stick : sticks) {
        for (const uint32_t position : {stick.x, stick.y}) {
            if (position >> POSITION_SHIFT <= level) low |= comparator;
            comparator >>= 1;
        }
    }
    for (int column = 0; column < COLUMNS; ++column) {
        if (port_a >> column & 1) continue;
        for (int row = 0; row < COLUMN_KEYS; ++row) {
            if (is_down(KEYPAD[column][row], sticks[0])) low |= uint8_t(1 << row);
        }
    }
    return uint8_t(~low);
}
