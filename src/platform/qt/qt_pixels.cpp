#include "platform/qt/qt_pixels.h"

#include "platform/bitmap_reader.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr QRgb OPAQUE = 0xFF000000;

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
    const BitmapReader reader(picture);
    for (int line = area.top(); line <= area.bottom(); ++line) {
        reader.read(line - y, area.left() - x, area.width(), pixels_at(target, area.left(), line));
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
