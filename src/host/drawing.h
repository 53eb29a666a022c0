#pragma once
/// A picture of 32 bits per pixel that smooth shapes are drawn into. Places are in pixels, and may
/// lie between two of them: an edge then covers its pixel in part.

#include "platform/geometry.h"

#include <cstdint>
#include <span>
#include <vector>

struct Point {
    double x = 0, y = 0;
};

/// Left and top belong to it, right and bottom do not.
struct Area {
    double left = 0, top = 0, right = 0, bottom = 0;
    double width() const { return right - left; }
    double height() const { return bottom - top; }
};

class Drawing {
public:
    /// Of one colour.
    Drawing(Size size, Colour ground);

    Size size() const { return size_; }
    /// For Pane::stretch_bitmap; valid as long as the drawing is.
    BitmapView view() const;
    Colour pixel(int x, int y) const { return pixels_[size_t(y) * size_t(size_.width) + x]; }

    /// A rectangle with round corners. Its colour changes from `top` to `bottom`.
    void fill(const Area& area, double radius, Colour top, Colour bottom);
    void fill(const Area& area, double radius, Colour colour) {
        fill(area, radius, colour, colour);
    }
    /// Lines with round ends, `width` wide, from each point of a pair to the other one. Where they
    /// cross, nothing is drawn twice.
    struct Line {
        Point from, to;
    };
    void draw(std::span<const Line> lines, double width, Colour colour);
    /// The lit pixels of a character of the machine, bit 7 leftmost, over the whole of `area`.
    void draw_pattern(std::span<const uint8_t, 8> rows, const Area& area, Colour colour);

private:
    void blend(int x, int y, double cover, Colour colour);
    Rectangle pixels_of(const Area& area) const;

    Size size_;
    std::vector<uint32_t> pixels_;
    std::vector<float> cover_; ///< of the lines being drawn
};
