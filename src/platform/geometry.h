#pragma once
/// Plain geometry and colours, as the layer's calls take them.

#include <cstdint>

struct Size {
    int width = 0;
    int height = 0;
    bool operator==(const Size&) const = default;
};

/// Left and top belong to it, right and bottom do not.
struct Rectangle {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    bool operator==(const Rectangle&) const = default;
    int width() const { return right - left; }
    int height() const { return bottom - top; }
};

/// 00RRGGBB.
using Colour = uint32_t;

/// A picture as the canvas holds it: rows top-down without padding.
struct BitmapView {
    int width = 0;
    int height = 0;
    int bits = 0; ///< 1, 8 or 32 per pixel
    const uint8_t* pixels = nullptr;
    const uint8_t* palette = nullptr; ///< blue, green, red, 0 per entry; none at 32 bits
};
