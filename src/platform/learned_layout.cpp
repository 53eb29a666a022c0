#include "platform/learned_layout.h"

#include "platform/events.h"
#include "platform/utf8.h"

#include <string_view>

namespace {

constexpr KeyPlaces US_KEYBOARD = us_keyboard(0, LINUX_PLACES);

/// Keys with consecutive scan codes, and what a US keyboard gives there.
struct UsRow {
    uint8_t first;
    std::string_view plain, shifted;
};
constexpr UsRow US_ROWS[] = {{2, "1234567890-=", "!@#$%^&*()_+"},
                             {16, "qwertyuiop[]", "QWERTYUIOP{}"},
                             {30, "asdfghjkl;'`", "ASDFGHJKL:\"~"},
                             {43, "\\zxcvbnm,./", "|ZXCVBNM<>?"},
                             {57, " ", " "}};

uint32_t us_character(uint8_t place, size_t level) {
    if (level > LearnedLayout::shifted) return 0;
    for (const UsRow& row : US_ROWS) {
        const std::string_view keys = level == LearnedLayout::plain ? row.plain : row.shifted;
        if (place >= row.first && place < row.first + keys.size()) return keys[place - row.first];
    }
    return 0;
}

/// Of ASCII and Latin-1; the sharp s and what is beyond stay as they are.
uint32_t capital(uint32_t character) {
    const bool letter = (character >= 'a' && character <= 'z') ||
                        (character >= 0xE0 && character <= 0xFE && character != 0xF7);
    return letter ? character - 0x20 : character;
}

} // namespace

LearnedLayout::LearnedLayout() : keys_(US_KEYBOARD) {}

LearnedLayout::Given LearnedLayout::given(uint8_t place, size_t level) const {
    const auto found = learned_.find(place);
    if (found != learned_.end() && found->second[level].character) return found->second[level];
    return {us_character(place, level)};
}

bool LearnedLayout::learn(uint8_t place, Level level, uint32_t character, bool dead) {
    if (!types_a_character(US_KEYBOARD[place]) || character < ' ') return false;
    const Given known = learned_[place][level];
    if (known.character == character && known.dead == dead) return false;
    const bool other_layout = known.character && known.character != character;
    if (other_layout) learned_.clear();
    const Given before = given(place, level);
    learned_[place][level] = {character, dead};
    find_letters();
    return other_layout || before.character != character || before.dead != dead;
}

void LearnedLayout::find_letters() {
    const auto is_learned = [this](uint8_t place) {
        const auto found = learned_.find(place);
        return found != learned_.end() && found->second[plain].character != 0;
    };
    std::array<bool, 256> taken{};
    KeyPlaces letters{};
    for (const bool learned : {true, false}) {
        for (size_t n = 0; n < letters.size(); ++n) {
            const auto place = uint8_t(n);
            if (!types_a_character(US_KEYBOARD[n]) || is_learned(place) != learned) continue;
            const uint32_t letter = capital(given(place, plain).character);
            if (!is_capital_letter(letter) || taken[letter]) continue;
            letters[n] = uint8_t(letter);
            taken[letter] = true;
        }
    }
    keys_ = places_with_letters(US_KEYBOARD, letters);
}

std::optional<KeyForCharacter> LearnedLayout::key_for(char character) const {
    constexpr uint8_t ONLY_SUPPOSED = 16; ///< above all ranks of what is learned
    std::optional<KeyForCharacter> best;
    unsigned best_rank = UINT8_MAX;
    for (size_t n = 0; n < US_KEYBOARD.size(); ++n) {
        const auto place = uint8_t(n);
        if (!types_a_character(US_KEYBOARD[n])) continue;
        const auto learned = learned_.find(place);
        for (size_t level = 0; level < LEVELS; ++level) {
            const Given gives = given(place, level);
            if (gives.character != uint8_t(character)) continue;
            const bool shift = level & shifted, third = level & alt_gr;
            const bool known = learned != learned_.end() && learned->second[level].character;
            const unsigned rank =
                key_rank(is_on_some_keyboards(US_KEYBOARD[n]), gives.dead, shift, third) +
                (known ? 0U : ONLY_SUPPOSED);
            if (rank >= best_rank) continue;
            best_rank = rank;
            best = {keys_[n], uint8_t((shift ? MODIFIER_SHIFT : 0) |
                                      (third ? MODIFIER_CONTROL | MODIFIER_ALT : 0))};
        }
    }
    return best;
}

std::string LearnedLayout::label(uint8_t key) const {
    for (size_t n = 0; n < keys_.size(); ++n) {
        const uint8_t us = US_KEYBOARD[n];
        if (keys_[n] != key || !types_a_character(us) || is_on_some_keyboards(us)) continue;
        const uint32_t character = given(uint8_t(n), plain).character;
        return character ? utf8_of(capital(character)) : std::string();
    }
    return {};
}
