#include "cgenie/joystick.h"

#include "cgenie/input.h"
#include "sound/ym2149.h"

namespace {

constexpr int COLUMNS = 3;
constexpr int COLUMN_KEYS = 4;
constexpr uint32_t PORT_A_REGISTER = 14;
constexpr uint8_t LEVEL_MASK = 0x3F; ///< of port A: the converter is six bits wide
constexpr int POSITION_SHIFT = 10;   ///< from 16 bits to those of the converter

// What stands at a crossing of the keypad matrix: a digit, or one of the fire buttons of joystick
// 0.
constexpr int8_t FIRE_1 = -1, FIRE_2 = -2;
// By the bit of port A that selects the column, then by the bit of port B.
constexpr int8_t KEYPAD[COLUMNS][COLUMN_KEYS] = {
    {3, 6, 9, FIRE_2}, {2, 5, 8, 0}, {1, 4, 7, FIRE_1}};

bool is_down(int8_t key, const machine_input& input) {
    if (key == FIRE_1) return input.sticks[0].first_button != 0;
    if (key == FIRE_2) return input.sticks[0].second_button != 0;
    return (input.keypad >> key & 1) != 0;
}

} // namespace

void joystick_init() {}
void joystick_reset() {}

uint32_t input_getJoyCords(int joystick, int query) {
    const machine_stick& stick = input_now().sticks[joystick];
    switch (query) {
    case JOYSTICK_X: return stick.x;
    case JOYSTICK_Y: return stick.y;
    case JOYSTICK_FIRST_BUTTON: return stick.first_button;
    case JOYSTICK_SECOND_BUTTON: return stick.second_button;
    default: return 0;
    }
}

uint8_t joystick_get_state() {
    const machine_input& input = input_now();
    const uint8_t port_a = ym2149_peek_reg(PORT_A_REGISTER);
    const uint32_t level = port_a & LEVEL_MASK;
    uint8_t low = 0; // the bits that something pulls down
    uint8_t comparator = 0x80;
    for (const machine_stick& stick : input.sticks) {
        for (const uint32_t position : {stick.x, stick.y}) {
            if (position >> POSITION_SHIFT <= level) low |= comparator;
            comparator >>= 1;
        }
    }
    for (int column = 0; column < COLUMNS; ++column) {
        if (port_a >> column & 1) continue;
        for (int row = 0; row < COLUMN_KEYS; ++row) {
            if (is_down(KEYPAD[column][row], input)) low |= uint8_t(1 << row);
        }
    }
    return uint8_t(~low);
}
