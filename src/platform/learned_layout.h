#pragma once
/// A keyboard layout that no system tells: what its keys give is learned while they are typed. A
/// key that has not been used yet counts as that of a US keyboard. Places are Linux's scan codes.

#include "platform/key_places.h"

#include <array>
#include <map>
#include <optional>
#include <string>

class LearnedLayout {
public:
    /// With which modifiers a key is typed.
    enum Level : uint8_t { plain, shifted, alt_gr, shifted_alt_gr };
    static constexpr size_t LEVELS = 4;

    LearnedLayout();
    /// The key gives this character, a code point; a dead key gives that of its accent. What
    /// contradicts something that was learned is another layout, of which only this is known. True
    /// when the functions below answer differently from now on.
    bool learn(uint8_t place, Level level, uint32_t character, bool dead = false);

    uint8_t host_key(uint8_t place) const { return keys_[place]; }
    /// As in HostKeyboard.
    std::optional<KeyForCharacter> key_for(char character) const;
    /// As in HostKeyboard.
    std::string label(uint8_t key) const;

private:
    struct Given {
        uint32_t character = 0; ///< a code point; 0: not known
        bool dead = false;
    };
    using Levels = std::array<Given, LEVELS>;

    Given given(uint8_t place, size_t level) const;
    void find_letters();

    std::map<uint8_t, Levels> learned_; ///< by place
    KeyPlaces keys_;
};
