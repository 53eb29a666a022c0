#include "cgenie/keyboard.h"

#include "platform/platform.h"

#include <array>
#include <bit>

namespace {

constexpr unsigned ROWS = 8;
constexpr unsigned COLUMNS = 8;
constexpr unsigned POSITIONS = ROWS * COLUMNS; ///< row x 8 + column
constexpr unsigned ROW_CURSOR = 6;
constexpr unsigned ROW_SHIFT = 7;
using Row = std::array<uint8_t, COLUMNS>;
constexpr uint8_t COLUMN_LEFT = 1 << 5;
constexpr uint8_t COLUMN_SHIFT = 1 << 0;

/// Positional mapping: the host key of each position.
constexpr std::array<Row, ROWS> kb_matrix = {{
    {KEY_OEM_4, 'A', 'B', 'C', 'D', 'E', 'F', 'G'},
    {'H', 'I', 'J', 'K', 'L', 'M', 'N', 'O'},
    {'P', 'Q', 'R', 'S', 'T', 'U', 'V', 'W'},
    {'X', 'Y', 'Z', KEY_NONE, KEY_F1, KEY_F2, KEY_F3, KEY_F4},
    {'0', '1', '2', '3', '4', '5', '6', '7'},
    {'8', '9', KEY_OEM_7, KEY_OEM_1, KEY_OEM_COMMA, KEY_OEM_MINUS, KEY_OEM_PERIOD, KEY_OEM_2},
    {KEY_RETURN, KEY_HOME, KEY_END, KEY_UP, KEY_DOWN, KEY_LEFT, KEY_RIGHT, KEY_SPACE},
    {KEY_SHIFT, KEY_INSERT, KEY_NONE, KEY_TAB, KEY_CONTROL, KEY_NONE, KEY_NONE, KEY_NONE},
}};

/// Symbolic mapping: the characters on the keys, then those that they give with the machine's
/// SHIFT. The function keys and the last two rows of each plane are host keys, not characters.
constexpr std::array<Row, 2 * ROWS> kb_symbolic = {{
    {'@', 'a', 'b', 'c', 'd', 'e', 'f', 'g'},
    {'h', 'i', 'j', 'k', 'l', 'm', 'n', 'o'},
    {'p', 'q', 'r', 's', 't', 'u', 'v', 'w'},
    {'x', 'y', 'z', KEY_NONE, KEY_F1, KEY_F2, KEY_F3, KEY_F4},
    {'0', '1', '2', '3', '4', '5', '6', '7'},
    {'8', '9', ':', ';', ',', '-', '.', '/'},
    {KEY_RETURN, KEY_HOME, KEY_END, KEY_UP, KEY_DOWN, KEY_BACKSPACE, KEY_RIGHT, KEY_SPACE},
    {KEY_SHIFT},

    {KEY_NONE, 'A', 'B', 'C', 'D', 'E', 'F', 'G'},
    {'H', 'I', 'J', 'K', 'L', 'M', 'N', 'O'},
    {'P', 'Q', 'R', 'S', 'T', 'U', 'V', 'W'},
    {'X', 'Y', 'Z'},
    {KEY_NONE, '!', '"', '#', '$', '%', '&', '\''},
    {'(', ')', '*', '+', '<', '=', '>', '?'},
    {KEY_RETURN, KEY_HOME, KEY_END, KEY_UP, KEY_DOWN, KEY_BACKSPACE, KEY_RIGHT, KEY_SPACE},
    {},
}};
constexpr unsigned FUNCTION_KEYS = 28;
constexpr unsigned FUNCTION_KEYS_END = 32;
constexpr unsigned HOST_KEYS = 48;

/// A host key in the low byte, the modifiers that it needs (Modifier bits) above it.
using MapEntry = uint16_t;
constexpr unsigned MODIFIERS_AT = 8;
/// Modifiers that are never held: matches no key.
constexpr MapEntry NO_KEY = 0xFFFF;

/// kb_symbolic in the host's present layout, both planes one behind the other.
std::array<MapEntry, 2 * POSITIONS> symbolic_key_map;

constexpr int MAPPING_SYMBOLIC = 1;
int keyboard_mapping = 0;

/// A program looks at row 7 right behind a key's own row, some of them more than once.
constexpr int SHIFT_READS = 3;
/// Reads of row 7 to come that report SHIFT as down.
int next_shift_state = 0;

bool is_host_key(unsigned position) {
    return position >= HOST_KEYS || (position >= FUNCTION_KEYS && position < FUNCTION_KEYS_END);
}

MapEntry map_entry(uint8_t key, unsigned modifiers) {
    return MapEntry(key | modifiers << MODIFIERS_AT);
}

MapEntry symbolic_entry(unsigned index) {
    const uint8_t symbol = kb_symbolic[index / COLUMNS][index % COLUMNS];
    if (symbol == KEY_NONE) return NO_KEY;
    if (is_host_key(index % POSITIONS)) {
        return map_entry(symbol, index < POSITIONS ? 0 : MODIFIER_SHIFT);
    }
    const auto found = platform().keyboard().key_for(char(symbol));
    return found ? map_entry(found->key, found->modifiers) : NO_KEY;
}

uint8_t positional_row(unsigned row) {
    HostKeyboard& keys = platform().keyboard();
    if (keys.is_down(KEY_ALT)) return 0;
    uint8_t columns = 0;
    for (unsigned column = 0; column < COLUMNS; ++column) {
        const uint8_t key = kb_matrix[row][column];
        if (key != KEY_NONE && keys.is_down(key)) columns |= uint8_t(1U << column);
    }
    if (row == ROW_CURSOR && keys.is_down(KEY_BACKSPACE)) columns |= COLUMN_LEFT;
    return columns;
}

/// The program sees only the SHIFT that the characters need, whatever the host's own key does.
uint8_t symbolic_shift_row() {
    if (next_shift_state == 0) return 0;
    --next_shift_state;
    return COLUMN_SHIFT;
}

/// Modifier bits held. Control alone counts for none: a key held with it still is that key.
unsigned held_modifiers(HostKeyboard& keys) {
    unsigned modifiers = 0;
    if (keys.is_down(KEY_SHIFT)) modifiers |= MODIFIER_SHIFT;
    if (keys.is_down(KEY_CONTROL)) modifiers |= MODIFIER_CONTROL;
    if (keys.is_down(KEY_ALT)) modifiers |= MODIFIER_ALT;
    return modifiers == MODIFIER_CONTROL ? 0 : modifiers;
}

uint8_t symbolic_row(unsigned row) {
    if (row == ROW_SHIFT) return symbolic_shift_row();
    HostKeyboard& keys = platform().keyboard();
    const unsigned modifiers = held_modifiers(keys);
    // The modifiers are the cheaper question: they leave about one key to look at per column.
    const auto pressed = [&](unsigned index) {
        const MapEntry entry = symbolic_key_map[index];
        return entry >> MODIFIERS_AT == modifiers && keys.is_down(uint8_t(entry));
    };
    uint8_t columns = 0;
    for (unsigned column = 0; column < COLUMNS; ++column) {
        const unsigned position = row * COLUMNS + column;
        if (pressed(position)) {
            next_shift_state = 0;
        } else if (pressed(POSITIONS + position)) {
            next_shift_state = SHIFT_READS;
        } else {
            continue;
        }
        columns |= uint8_t(1U << column);
    }
    return columns;
}

} // namespace

uint8_t keyboard_read(uint8_t address_low) {
    if (!address_low) return 0;
    const unsigned row = unsigned(std::countr_zero(address_low));
    return keyboard_mapping == MAPPING_SYMBOLIC ? symbolic_row(row) : positional_row(row);
}

void keyboard_init() {
    for (unsigned index = 0; index < symbolic_key_map.size(); ++index) {
        symbolic_key_map[index] = symbolic_entry(index);
    }
    keyboard_change_mapping(MAPPING_SYMBOLIC);
    keyboard_reset();
}

void keyboard_reset() {
    platform().keyboard().release_all();
    next_shift_state = 0;
}

void keyboard_change_mapping(int mapping) { keyboard_mapping = mapping; }
