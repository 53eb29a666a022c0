#include "platform/key_places.h"

namespace {

/// Number of the key of each letter that the layout has; 0 for others.
using LetterKeys = std::array<uint8_t, 26>;

LetterKeys find_letters(const KeyPlaces& us, const KeyPlaces& letters) {
    LetterKeys numbers{};
    for (size_t number = 0; number < us.size(); ++number) {
        const uint8_t letter = letters[number];
        if (!types_a_character(us[number]) || letter == 0) continue;
        if (numbers[letter - 'A'] == 0) numbers[letter - 'A'] = uint8_t(number);
    }
    return numbers;
}

} // namespace

KeyPlaces places_with_letters(const KeyPlaces& us, const KeyPlaces& letters) {
    const LetterKeys numbers = find_letters(us, letters);
    KeyPlaces keys = us;
    for (size_t number = 0; number < us.size(); ++number) {
        if (!types_a_character(us[number])) continue;
        if (letters[number] != 0) {
            keys[number] = letters[number];
            continue;
        }
        uint8_t& key = keys[number];
        // Every letter leads to another key, so the way ends at the latest after all of them.
        while (is_capital_letter(key) && numbers[key - 'A'] != 0) key = us[numbers[key - 'A']];
    }
    return keys;
}
