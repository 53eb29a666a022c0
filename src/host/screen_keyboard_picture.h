#pragma once
/// The picture of the machine's keyboard: where its keys are and how they look.

#include "host/drawing.h"
#include "platform/geometry.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

/// A key, or a button on the keyboard's edge. Places are in quarters of a key's width.
struct ScreenKey {
    enum class Kind : uint8_t {
        key,          ///< of the machine's matrix
        space,        ///< likewise, without a legend
        reset,        ///< beside the matrix
        by_character, ///< of the switch between the mappings
        by_position
    };

    int left = 0, top = 0, width = 0;
    uint8_t row = 0, column = 0;
    const char* legend = "";
    const char* shifted = "";
    uint8_t code = 0;         ///< that the key gives; 0 when MOD SEL does not change it
    uint8_t shifted_code = 0; ///< with SHIFT; 0 when it is the same
    Kind kind = Kind::key;

    unsigned position() const { return row * 8U + column; }
    bool is_in_matrix() const { return kind <= Kind::space; }
};

/// All keys, row by row.
std::span<const ScreenKey> screen_keys();
/// Of the whole keyboard, in quarters of a key.
constexpr Size SCREEN_KEYBOARD = {68, 24};

/// How a key looks at the moment.
struct KeyLook {
    enum class Light : uint8_t { off, pressed, next, locked };
    /// Which of its characters the key gives now.
    enum class Gives : uint8_t { plain, shifted, graphics, shifted_graphics };

    Light light = Light::off;
    Gives gives = Gives::plain;
    std::string host;                      ///< the host's key that presses it
    std::array<uint8_t, 8> graphics = {};  ///< patterns of what it gives with MOD SEL
    std::array<uint8_t, 8> graphics2 = {}; ///< and with SHIFT
    bool operator==(const KeyLook&) const = default;
};

/// In words, for those who do not see the picture.
std::string spoken_name(const ScreenKey& key);

/// The code of the character that a key gives with MOD SEL, or nothing.
std::optional<uint8_t> graphics_code(const ScreenKey& key, bool shifted);

/// The rectangle of the keyboard in a picture: as large as fits, in the middle.
Area keyboard_area(Size picture);
/// The key at a place of the picture, or null.
const ScreenKey* key_at(Size picture, double x, double y);
/// Of a key in the picture.
Area area_of(const ScreenKey& key, Size picture);

/// The keyboard without its keys, over the whole picture.
void draw_keyboard_case(Drawing& drawing);
/// Draws a key over what was there.
void draw_key(Drawing& drawing, const ScreenKey& key, const KeyLook& look);
