#include "host/drawing.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int PATTERN_SIZE = 8; ///< pixels, of a character of the machine

/// Two of the colour's bytes at once; 256 parts make the whole.
Colour between(Colour from, Colour to, double part) {
    constexpr uint32_t RED_AND_BLUE = 0xFF00FF, GREEN = 0x00FF00, WHOLE = 256;
    const auto of_to = uint32_t(std::lround(part * WHOLE)), of_from = WHOLE - of_to;
    const auto mixed = [=](uint32_t bytes) {
        return ((from & bytes) * uint64_t(of_from) + (to & bytes) * uint64_t(of_to)) / WHOLE &
               bytes;
    };
    return uint32_t(mixed(RED_AND_BLUE) | mixed(GREEN));
}

/// Distance of places from a line.
class Distance {
public:
    explicit Distance(const Drawing::Line& line)
        : from_(line.from), along_{line.to.x - line.from.x, line.to.y - line.from.y} {
        const double square = along_.x * along_.x + along_.y * along_.y;
        per_square_ = square > 0 ? 1 / square : 0;
    }
    double operator()(double x, double y) const {
        x -= from_.x;
        y -= from_.y;
        const double part = std::clamp((x * along_.x + y * along_.y) * per_square_, 0.0, 1.0);
        x -= part * along_.x;
        y -= part * along_.y;
        return std::sqrt(x * x + y * y);
    }

private:
    Point from_, along_;
    double per_square_;
};

/// How much of the pixel that begins at `pixel` lies between the two edges.
double overlap(double low, double high, int pixel) {
    return std::clamp(std::min(high, pixel + 1.0) - std::max(low, double(pixel)), 0.0, 1.0);
}

} // namespace

Drawing::Drawing(Size size, Colour ground)
    : size_(size), pixels_(size_t(size.width) * size_t(size.height), ground) {}

BitmapView Drawing::view() const {
    return {size_.width, size_.height, 32, reinterpret_cast<const uint8_t*>(pixels_.data()),
            nullptr};
}

void Drawing::blend(int x, int y, double cover, Colour colour) {
    uint32_t& pixel = pixels_[size_t(y) * size_t(size_.width) + size_t(x)];
    pixel = cover >= 1 ? colour : between(pixel, colour, cover);
}

/// All pixels that the area touches, inside the picture.
Rectangle Drawing::pixels_of(const Area& area) const {
    const auto inside = [](double place, int end) {
        return int(std::clamp(place, 0.0, double(end)));
    };
    return {inside(std::floor(area.left), size_.width), inside(std::floor(area.top), size_.height),
            inside(std::ceil(area.right), size_.width),
            inside(std::ceil(area.bottom), size_.height)};
}

void Drawing::fill(const Area& area, double radius, Colour top, Colour bottom) {
    const Rectangle pixels = pixels_of(area);
    for (int y = pixels.top; y < pixels.bottom; ++y) {
        const double part = std::clamp((y + 0.5 - area.top) / area.height(), 0.0, 1.0);
        const Colour colour = top == bottom ? top : between(top, bottom, part);
        const double in_y = std::min(y + 0.5 - area.top, area.bottom - y - 0.5);
        for (int x = pixels.left; x < pixels.right; ++x) {
            const double in_x = std::min(x + 0.5 - area.left, area.right - x - 0.5);
            double cover = 1;
            if (in_x < radius && in_y < radius) {
                cover = radius - std::hypot(radius - in_x, radius - in_y) + 0.5;
            } else if (in_x < 0.5 || in_y < 0.5) {
                cover = overlap(area.left, area.right, x) * overlap(area.top, area.bottom, y);
            }
            if (cover > 0) blend(x, y, cover, colour);
        }
    }
}

void Drawing::draw(std::span<const Line> lines, double width, Colour colour) {
    if (lines.empty()) return;
    const double reach = width / 2 + 0.5;
    const auto around = [reach](const Line& line) {
        const auto [left, right] = std::minmax(line.from.x, line.to.x);
        const auto [top, bottom] = std::minmax(line.from.y, line.to.y);
        return Area{left - reach, top - reach, right + reach, bottom + reach};
    };
    Area all = around(lines.front());
    for (const Line& line : lines) {
        const Area one = around(line);
        all = {std::min(all.left, one.left), std::min(all.top, one.top),
               std::max(all.right, one.right), std::max(all.bottom, one.bottom)};
    }
    const Rectangle pixels = pixels_of(all);
    const int row = pixels.width();
    if (row <= 0 || pixels.height() <= 0) return;
    cover_.assign(size_t(row) * size_t(pixels.height()), 0);
    for (const Line& line : lines) {
        const Rectangle near = pixels_of(around(line));
        const Distance distance(line);
        for (int y = near.top; y < near.bottom; ++y) {
            float* covers = cover_.data() + size_t(y - pixels.top) * size_t(row);
            for (int x = near.left; x < near.right; ++x) {
                float& cover = covers[x - pixels.left];
                if (cover < 1) {
                    cover = std::max(cover, float(reach - distance(x + 0.5, y + 0.5)));
                }
            }
        }
    }
    for (int y = pixels.top; y < pixels.bottom; ++y) {
        for (int x = pixels.left; x < pixels.right; ++x) {
            const float cover =
                cover_[size_t(y - pixels.top) * size_t(row) + size_t(x - pixels.left)];
            if (cover > 0) blend(x, y, cover, colour);
        }
    }
}

void Drawing::draw_pattern(std::span<const uint8_t, 8> rows, const Area& area, Colour colour) {
    const double wide = area.width() / PATTERN_SIZE, high = area.height() / PATTERN_SIZE;
    const Rectangle pixels = pixels_of(area);
    for (int y = pixels.top; y < pixels.bottom; ++y) {
        for (int x = pixels.left; x < pixels.right; ++x) {
            double cover = 0;
            const int first_row = std::max(int((y - area.top) / high), 0);
            const int first = std::max(int((x - area.left) / wide), 0);
            for (int row = first_row; row < PATTERN_SIZE; ++row) {
                const double top = area.top + row * high;
                if (top >= y + 1) break;
                const double part = overlap(top, top + high, y);
                for (int column = first; column < PATTERN_SIZE; ++column) {
                    const double left = area.left + column * wide;
                    if (left >= x + 1) break;
                    if (rows[size_t(row)] & 0x80 >> column) {
                        cover += part * overlap(left, left + wide, x);
                    }
                }
            }
            if (cover > 0) blend(x, y, std::min(cover, 1.0), colour);
        }
    }
}
