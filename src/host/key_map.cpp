#include "host/key_map.h"

#include "cgenie/input.h"
#include "cgenie/keyboard.h"
#include "core/machine_events.h"
#include "platform/platform.h"

#include <algorithm>
#include <array>

namespace {

constexpr unsigned ROWS = 8;
constexpr unsigned COLUMNS = 8;
constexpr unsigned POSITIONS = ROWS * COLUMNS; ///< row x 8 + column
constexpr unsigned KEYPAD_DIGITS = 10;
constexpr unsigned ROW_CURSOR = 6;
using Row = std::array<uint8_t, COLUMNS>;
constexpr uint8_t COLUMN_LEFT = 1 << 5;

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

/// What is printed on the keys.
constexpr std::array<std::array<const char*, COLUMNS>, ROWS> key_names = {{
    {"@", "A", "B", "C", "D", "E", "F", "G"},
    {"H", "I", "J", "K", "L", "M", "N", "O"},
    {"P", "Q", "R", "S", "T", "U", "V", "W"},
    {"X", "Y", "Z", nullptr, "F1", "F2", "F3", "F4"},
    {"0", "1", "2", "3", "4", "5", "6", "7"},
    {"8", "9", ":", ";", ",", "-", ".", "/"},
    {"RETURN", "CLEAR", "BREAK", "UP", "DOWN", "LEFT", "RIGHT", "SPACE"},
    {"SHIFT", "MODSEL", nullptr, "RPT", "CTRL", nullptr, nullptr, nullptr},
}};

/// A host key in the low byte, the modifiers that it needs (Modifier bits) above it.
using MapEntry = uint16_t;
constexpr unsigned MODIFIERS_AT = 8;
/// Modifiers that are never held: matches no key.
constexpr MapEntry NO_KEY = 0xFFFF;

/// kb_symbolic in the host's present layout, both planes one behind the other.
std::array<MapEntry, 2 * POSITIONS> symbolic_key_map;

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

/// Modifier bits held. Control without Alt does not count: a key held with it is still that key.
unsigned held_modifiers(HostKeyboard& keys) {
    unsigned modifiers = 0;
    if (keys.is_down(KEY_SHIFT)) modifiers |= MODIFIER_SHIFT;
    if (keys.is_down(KEY_CONTROL)) modifiers |= MODIFIER_CONTROL;
    if (keys.is_down(KEY_ALT)) modifiers |= MODIFIER_ALT;
    return modifiers == MODIFIER_CONTROL ? 0 : modifiers;
}

} // namespace

void host_keyboard_learn() {
    for (unsigned index = 0; index < symbolic_key_map.size(); ++index) {
        symbolic_key_map[index] = symbolic_entry(index);
    }
}

void host_keyboard_init() {
    host_keyboard_learn();
    machine_apply(event_kind::key_mapping, MAPPING_SYMBOLIC);
    host_keyboard_reset();
}

void host_keyboard_reset() {
    platform().keyboard().release_all();
    machine_apply(event_kind::key_reset);
}

void read_host_keys(machine_input& input) {
    HostKeyboard& keys = platform().keyboard();
    const unsigned modifiers = held_modifiers(keys);
    const bool hidden = keys.is_down(KEY_ALT); // by position, Alt belongs to the program
    // The modifiers are compared first, which is cheaper than asking for a key.
    const auto pressed = [&](unsigned index) {
        const MapEntry entry = symbolic_key_map[index];
        return entry >> MODIFIERS_AT == modifiers && keys.is_down(uint8_t(entry));
    };
    for (unsigned row = 0; row < ROWS; ++row) {
        unsigned positional = 0, alone = 0, shifted = 0;
        for (unsigned column = 0; column < COLUMNS; ++column) {
            const unsigned position = row * COLUMNS + column;
            const uint8_t key = kb_matrix[row][column];
            const bool down = !hidden && key != KEY_NONE && keys.is_down(key);
            positional |= unsigned(down) << column;
            alone |= unsigned(pressed(position)) << column;
            shifted |= unsigned(pressed(POSITIONS + position)) << column;
        }
        input.positional[row] = uint8_t(positional);
        input.symbolic[0][row] = uint8_t(alone);
        input.symbolic[1][row] = uint8_t(shifted);
    }
    std::ranges::fill(input.direct, uint8_t(0));
    if (!hidden && keys.is_down(KEY_BACKSPACE)) input.positional[ROW_CURSOR] |= COLUMN_LEFT;
    input.keypad = 0;
    for (unsigned digit = 0; digit < KEYPAD_DIGITS; ++digit) {
        if (keys.is_down(uint8_t(KEY_NUMPAD0 + digit))) input.keypad |= uint16_t(1U << digit);
    }
}

const char* machine_key_name(unsigned position) {
    return position < POSITIONS ? key_names[position / COLUMNS][position % COLUMNS] : nullptr;
}

std::optional<uint8_t> machine_key_of(uint8_t host_key) {
    if (host_key == KEY_NONE) return {};
    if (input_state.keyboard_mapping == MAPPING_SYMBOLIC) {
        const auto end = symbolic_key_map.begin() + POSITIONS;
        const auto found = std::find(symbolic_key_map.begin(), end, map_entry(host_key, 0));
        if (found != end) return uint8_t(found - symbolic_key_map.begin());
    }
    if (host_key == KEY_BACKSPACE) host_key = KEY_LEFT;
    for (unsigned position = 0; position < POSITIONS; ++position) {
        if (kb_matrix[position / COLUMNS][position % COLUMNS] == host_key) return uint8_t(position);
    }
    return {};
}

std::optional<KeyForCharacter> host_key_for(unsigned position, bool symbolic, bool shifted) {
    const uint8_t place = kb_matrix[position / COLUMNS][position % COLUMNS];
    const MapEntry entry = symbolic  ? symbolic_key_map[position + (shifted ? POSITIONS : 0)]
                           : shifted ? NO_KEY
                                     : map_entry(place, 0);
    if (entry == NO_KEY || uint8_t(entry) == KEY_NONE) return {};
    return KeyForCharacter{uint8_t(entry), uint8_t(entry >> MODIFIERS_AT)};
}
