#include "platform/win32/win32_canvas.h"

#include <algorithm>

namespace {
constexpr uint32_t OPAQUE_BLACK = 0xFF000000;
} // namespace

Win32Canvas::~Win32Canvas() { release(); }

void Win32Canvas::release() {
    if (dc_) {
        SelectObject(dc_, before_);
        DeleteDC(dc_);
    }
    if (bitmap_) DeleteObject(bitmap_);
    dc_ = nullptr;
    bitmap_ = nullptr;
    pixels_ = nullptr;
    size_ = {};
}

bool Win32Canvas::resize(Size size) {
    size = {std::max(size.width, 0), std::max(size.height, 0)};
    if (size == size_) return false;
    release();
    if (size.width == 0 || size.height == 0) return true;
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = size.width;
    info.bmiHeader.biHeight = -size.height; // rows top-down
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* pixels = nullptr;
    dc_ = CreateCompatibleDC(nullptr);
    bitmap_ = CreateDIBSection(dc_, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
    if (!dc_ || !bitmap_) {
        release();
        return true;
    }
    before_ = SelectObject(dc_, bitmap_);
    pixels_ = static_cast<uint32_t*>(pixels);
    size_ = size;
    fill({0, 0, size.width, size.height}, 0);
    return true;
}

/// GDI keeps calls back and carries them out together.
void Win32Canvas::flush() const { GdiFlush(); }

Rectangle Win32Canvas::clipped(const Rectangle& area) const {
    return intersection(area, {0, 0, size_.width, size_.height});
}

void Win32Canvas::fill(const Rectangle& area, Colour colour) {
    const Rectangle inside = clipped(area);
    if (is_empty(inside)) return;
    flush();
    for (int y = inside.top; y < inside.bottom; ++y) {
        std::fill_n(row(y) + inside.left, inside.width(), colour | OPAQUE_BLACK);
    }
}

void Win32Canvas::show(HDC target, int x, int y, const Rectangle& part) const {
    const Rectangle inside = clipped(part);
    if (is_empty(inside)) return;
    BitBlt(target, x + inside.left, y + inside.top, inside.width(), inside.height(), dc_,
           inside.left, inside.top, SRCCOPY);
}

Rectangle intersection(const Rectangle& one, const Rectangle& other) {
    return {std::max(one.left, other.left), std::max(one.top, other.top),
            std::min(one.right, other.right), std::min(one.bottom, other.bottom)};
}
