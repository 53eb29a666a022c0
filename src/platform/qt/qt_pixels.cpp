#include "platform/qt/qt_pixels.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

constexpr QRgb OPAQUE = 0xFF000000;

using PaletteColours = std::array<QRgb, 256>;

PaletteColours colours_of(const BitmapView& picture) {
    PaletteColours colours;
    colours.fill(OPAQUE);
    if (picture.bits > 8 || !picture.palette) return colours;
    for (int n = 0; n < 1 << picture.bits; ++n) {
        const uint8_t* entry = picture.palette + 4 * n;
        colours[size_t(n)] = qRgb(entry[2], entry[1], entry[0]);
    }
    return colours;
}

/// Converts `count` pixels of a row, from the pixel `first` on.
void convert_row(const BitmapView& picture, const PaletteColours& colours, const uint8_t* row,
                 int first, int count, QRgb* out) {
    if (picture.bits == 32) {
        std::memcpy(out, row + size_t(first) * 4, size_t(count) * 4);
        std::for_each(out, out + count, [](QRgb& pixel) { pixel |= OPAQUE; });
        return;
    }
    if (picture.bits == 8) {
        std::transform(row + first, row + first + count, out,
                       [&colours](uint8_t pixel) { return colours[pixel]; });
        return;
    }
    for (int n = first; n < first + count; ++n) {
        *out++ = colours[row[n / 8] >> (7 - n % 8) & 1];
    }
}

QRgb* pixels_at(QImage& picture, int x, int y) {
    return reinterpret_cast<QRgb*>(picture.scanLine(y)) + x;
}

QRect clipped(const QImage& picture, const Rectangle& area) {
    return QRect(area.left, area.top, area.width(), area.height()) & picture.rect();
}

} // namespace

void copy_bitmap_to(QImage& target, const BitmapView& picture, int x, int y) {
    const QRect area = QRect(x, y, picture.width, picture.height) & target.rect();
    if (area.isEmpty() || !picture.pixels) return;
    const PaletteColours colours = colours_of(picture);
    const size_t row_bytes = size_t(picture.width) * size_t(picture.bits) / 8;
    for (int line = area.top(); line <= area.bottom(); ++line) {
        convert_row(picture, colours, picture.pixels + size_t(line - y) * row_bytes,
                    area.left() - x, area.width(), pixels_at(target, area.left(), line));
    }
}

void fill_area(QImage& target, const Rectangle& area, Colour colour) {
    const QRect inside = clipped(target, area);
    for (int line = inside.top(); line <= inside.bottom(); ++line) {
        std::fill_n(pixels_at(target, inside.left(), line), inside.width(), colour | OPAQUE);
    }
}

bool area_has_colour(const QImage& picture, const Rectangle& area, Colour colour) {
    const QRect inside = clipped(picture, area);
    for (int line = inside.top(); line <= inside.bottom(); ++line) {
        const QRgb* row = reinterpret_cast<const QRgb*>(picture.constScanLine(line));
        const auto other = [colour](QRgb pixel) { return pixel != (colour | OPAQUE); };
        if (std::any_of(row + inside.left(), row + inside.right() + 1, other)) return false;
    }
    return true;
}

QImage plain_picture(QSize size, const QColor& colour) {
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(colour);
    return picture;
}

std::pair<int, int> rows_that_differ(const QImage& one, const QImage& other) {
    const auto differs = [&](int row) {
        return std::memcmp(one.constScanLine(row), other.constScanLine(row),
                           size_t(one.bytesPerLine())) != 0;
    };
    int first = 0;
    int end = one.height();
    while (first < end && !differs(first)) ++first;
    while (end > first && !differs(end - 1)) --end;
    return {first, end};
}
