#include "platform/win32/win32_overlay.h"

#include <algorithm>

namespace {

constexpr int LINES_OF_AREA = 34;      ///< that would fill it
constexpr uint32_t GROUND_ALPHA = 176; ///< of black, which the picture is seen through
constexpr uint32_t WHOLE = 255;
constexpr uint32_t OPAQUE_BLACK = 0xFF000000;

/// White covers what is behind it, black lets it through, and all between in between.
uint32_t seen_through(uint32_t pixel, uint32_t behind) {
    uint32_t brightest = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        brightest = std::max(brightest, pixel >> shift & 0xFF);
    }
    const uint32_t rest = WHOLE - std::max(brightest, GROUND_ALPHA);
    uint32_t mixed = OPAQUE_BLACK;
    for (int shift = 0; shift < 24; shift += 8) {
        mixed |= ((pixel >> shift & 0xFF) + (behind >> shift & 0xFF) * rest / WHOLE) << shift;
    }
    return mixed;
}

} // namespace

const Win32CellFont& Win32Overlay::font() {
    large_font_.choose(context_.ratio, room_height_ / LINES_OF_AREA);
    return large_font_;
}

void Win32Overlay::place_in(Size room_pixels, Size room) {
    room_height_ = room.height;
    const int row = cell_size().height;
    const int height = std::min(rows_ * row + row, room.height);
    place({0, 0, room_pixels.width, std::min(context_.pixels(height), room_pixels.height)},
          {room.width, height});
}

void Win32Overlay::set_message(const std::string& /*text*/, int rows) {
    rows_ = rows;
    if (grown_) grown_();
}

void Win32Overlay::show_over(Win32Canvas& behind, HDC target, const Rectangle& part) {
    Win32Canvas& own = drawing();
    const Rectangle inside = behind.clipped(own.clipped(part));
    if (is_empty(inside)) return;
    mixture_.resize(own.size());
    own.flush();
    behind.flush();
    mixture_.flush();
    for (int y = inside.top; y < inside.bottom; ++y) {
        std::transform(own.row(y) + inside.left, own.row(y) + inside.right,
                       behind.row(y) + inside.left, mixture_.row(y) + inside.left, seen_through);
    }
    mixture_.show(target, area().left, area().top, inside);
}
