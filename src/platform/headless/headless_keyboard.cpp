#include "platform/headless/headless_keyboard.h"

#include "platform/events.h"

#include <string_view>

namespace {

/// Keys other than letters, with what they give alone and with Shift.
struct CharacterKey {
    uint8_t key;
    char alone;
    char shifted;
};

constexpr CharacterKey US_KEYS[] = {
    {KEY_OEM_1, ';', ':'},     {KEY_OEM_PLUS, '=', '+'},   {KEY_OEM_COMMA, ',', '<'},
    {KEY_OEM_MINUS, '-', '_'}, {KEY_OEM_PERIOD, '.', '>'}, {KEY_OEM_2, '/', '?'},
    {KEY_OEM_3, '`', '~'},     {KEY_OEM_4, '[', '{'},      {KEY_OEM_5, '\\', '|'},
    {KEY_OEM_6, ']', '}'},     {KEY_OEM_7, '\'', '"'},
};
constexpr std::string_view SHIFTED_DIGITS = ")!@#$%^&*(";

} // namespace

HeadlessLayout headless_us_layout() {
    HeadlessLayout layout;
    const auto set = [&layout](char character, uint8_t key, uint8_t modifiers) {
        layout[character - ' '] = KeyForCharacter{key, modifiers};
    };
    set(' ', KEY_SPACE, 0);
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
        set(letter, letter, MODIFIER_SHIFT);
        set(char(letter - 'A' + 'a'), letter, 0);
    }
    for (char digit = '0'; digit <= '9'; ++digit) {
        set(digit, digit, 0);
        set(SHIFTED_DIGITS[digit - '0'], digit, MODIFIER_SHIFT);
    }
    for (const CharacterKey& key : US_KEYS) {
        set(key.alone, key.key, 0);
        set(key.shifted, key.key, MODIFIER_SHIFT);
    }
    return layout;
}

std::optional<KeyForCharacter> HeadlessKeyboard::key_for(char character) {
    if (character < ' ' || character > '~') return {};
    return layout[character - ' '];
}

std::string HeadlessKeyboard::label(uint8_t key) {
    for (size_t n = 0; n < layout.size(); ++n) {
        if (layout[n] != KeyForCharacter{key, 0}) continue;
        const char character = char(n + ' ');
        const bool small = character >= 'a' && character <= 'z';
        return std::string(1, small ? char(character - 'a' + 'A') : character);
    }
    return {};
}
