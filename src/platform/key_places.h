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

/// The HostKey of every key of a layout with these letters, as capitals; 0 for a key without one.
/// What types no character is as in `us`.
KeyPlaces places_with_letters(const KeyPlaces& us, const KeyPlaces& letters);
