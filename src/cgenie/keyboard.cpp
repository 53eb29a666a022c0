#include "cgenie/keyboard.h"

#include "platform/platform.h"

#include <array>
#include <bit>

namespace {

/// Host key of each matrix position, by row and column.
constexpr std::array<std::array<uint8_t, 8>, 8> kb_matrix = {{
    {KEY_OEM_4, 'A', 'B', 'C', 'D', 'E', 'F', 'G'},
    {'H', 'I', 'J', 'K', 'L', 'M', 'N', 'O'},
    {'P', 'Q', 'R', 'S', 'T', 'U', 'V', 'W'},
    {'X', 'Y', 'Z', KEY_NONE, KEY_F1, KEY_F2, KEY_F3, KEY_F4},
    {'0', '1', '2', '3', '4', '5', '6', '7'},
    {'8', '9', KEY_OEM_7, KEY_OEM_1, KEY_OEM_COMMA, KEY_OEM_MINUS, KEY_OEM_PERIOD, KEY_OEM_2},
    {KEY_RETURN, KEY_HOME, KEY_END, KEY_UP, KEY_DOWN, KEY_LEFT, KEY_RIGHT, KEY_SPACE},
    {KEY_SHIFT, KEY_INSERT, KEY_NONE, KEY_TAB, KEY_CONTROL, KEY_NONE, KEY_NONE, KEY_NONE},
}};

constexpr unsigned ROW_CURSOR = 6;
constexpr uint8_t COLUMN_LEFT = 1 << 5;

uint8_t positional_row(unsigned row) {
    HostKeyboard& keys = platform().keyboard();
    if (keys.is_down(KEY_ALT)) return 0;
    uint8_t columns = 0;
    for (unsigned column = 0; column < 8; ++column) {
        const uint8_t key = kb_matrix[row][column];
        if (key != KEY_NONE && keys.is_down(key)) columns |= uint8_t(1U << column);
    }
    if (row == ROW_CURSOR && keys.is_down(KEY_BACKSPACE)) columns |= COLUMN_LEFT;
    return columns;
}

} // namespace

uint8_t keyboard_read(uint8_t address_low) {
    return address_low ? positional_row(unsigned(std::countr_zero(address_low))) : 0;
}

void keyboard_init() { keyboard_reset(); }
void keyboard_reset() {}
void keyboard_type_reset() {}
