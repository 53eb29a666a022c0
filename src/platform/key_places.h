#pragma once
/// Where the keys of a keyboard are that give a character.

#include "platform/keyboard.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// HostKey by the number that the host has for the key's place; KEY_NONE for others.
using KeyPlaces = std::array<uint8_t, 256>;

// Extra keys of Japanese and Brazilian keyboards.
constexpr uint8_t KEY_RIGHT_OF_SLASH = 0xC1;
constexpr uint8_t KEY_RIGHT_OF_PLUS = 0xC2;

struct KeyPlace {
    uint8_t scan;
    uint8_t key;
};

/// Rows of the US keyboard whose keys have consecutive scan codes and character codes of their own.
struct KeyRun {
    uint8_t first; ///< scan code
    std::string_view keys;
};
constexpr KeyRun US_RUNS[] = {
    {2, "1234567890"}, {16, "QWERTYUIOP"}, {30, "ASDFGHJKL"}, {44, "ZXCVBNM"}, {57, " "}};

constexpr KeyPlace US_PLACES[] = {
    {1, KEY_ESCAPE},       {12, KEY_OEM_MINUS},   {13, KEY_OEM_PLUS},    {14, KEY_BACKSPACE},
    {15, KEY_TAB},         {26, KEY_OEM_4},       {27, KEY_OEM_6},       {28, KEY_RETURN},
    {29, KEY_CONTROL},     {39, KEY_OEM_1},       {40, KEY_OEM_7},       {41, KEY_OEM_3},
    {42, KEY_SHIFT},       {43, KEY_OEM_5},       {51, KEY_OEM_COMMA},   {52, KEY_OEM_PERIOD},
    {53, KEY_OEM_2},       {54, KEY_SHIFT},       {56, KEY_ALT},         {71, KEY_NUMPAD0 + 7},
    {72, KEY_NUMPAD0 + 8}, {73, KEY_NUMPAD0 + 9}, {75, KEY_NUMPAD0 + 4}, {76, KEY_NUMPAD0 + 5},
    {77, KEY_NUMPAD0 + 6}, {79, KEY_NUMPAD0 + 1}, {80, KEY_NUMPAD0 + 2}, {81, KEY_NUMPAD0 + 3},
    {82, KEY_NUMPAD0},     {86, KEY_OEM_102},     {87, KEY_F11},         {88, KEY_F12}};

/// What Linux counts behind the scan codes of set 1.
constexpr KeyPlace LINUX_PLACES[] = {
    {89, KEY_RIGHT_OF_SLASH}, {96, KEY_RETURN},  {97, KEY_CONTROL},  {100, KEY_ALT},
    {102, KEY_HOME},          {103, KEY_UP},     {104, KEY_PAGE_UP}, {105, KEY_LEFT},
    {106, KEY_RIGHT},         {107, KEY_END},    {108, KEY_DOWN},    {109, KEY_PAGE_DOWN},
    {110, KEY_INSERT},        {111, KEY_DELETE}, {119, KEY_PAUSE},   {124, KEY_RIGHT_OF_PLUS},
    {127, KEY_MENU}};

/// The US keyboard by scan code (set 1, which is also what Linux counts by up to 88), from `first`
/// on, and further keys that the host counts in its own way.
template <size_t COUNT>
constexpr KeyPlaces us_keyboard(size_t first, const KeyPlace (&further)[COUNT]) {
    KeyPlaces keys{};
    for (const KeyRun& run : US_RUNS)
        for (size_t i = 0; i < run.keys.size(); ++i)
            keys[first + run.first + i] = uint8_t(run.keys[i]);
    for (const KeyPlace& place : US_PLACES) keys[first + place.scan] = place.key;
    for (uint8_t i = 0; i < 10; ++i) keys[first + 59 + i] = uint8_t(KEY_F1 + i);
    for (const KeyPlace& place : further) keys[first + place.scan] = place.key;
    return keys;
}

constexpr bool is_capital_letter(uint32_t code) { return code >= 'A' && code <= 'Z'; }

/// Keys that layouts fill on all keyboards, though only some have them.
constexpr bool is_on_some_keyboards(uint8_t key) {
    return key == KEY_OEM_102 || key == KEY_RIGHT_OF_SLASH || key == KEY_RIGHT_OF_PLUS;
}

constexpr bool types_a_character(uint8_t key) {
    return key == KEY_SPACE || (key >= '0' && key <= '9') || is_capital_letter(key) ||
           (key >= KEY_OEM_1 && key <= KEY_OEM_102);
}

/// Which of two keys that give a character is the better one; the lowest rank is best. Keys with
/// AltGr come last; among these, the one with the fewest modifiers is best. Without AltGr, a key
/// that this keyboard may lack comes after all others, and a dead key after an ordinary one: an
/// acute accent counts as an apostrophe only when there is no other.
constexpr uint8_t key_rank(bool may_lack, bool is_dead, bool shift, bool alt_gr) {
    if (alt_gr) return uint8_t(8 | shift << 2 | may_lack << 1 | int(is_dead));
    return uint8_t(may_lack << 2 | is_dead << 1 | int(shift));
}

/// The HostKey of every key of a layout with these letters, as capitals; 0 for a key without one.
/// What types no character is as in `us`.
KeyPlaces places_with_letters(const KeyPlaces& us, const KeyPlaces& letters);
