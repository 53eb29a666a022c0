#pragma once
#include "platform/geometry.h"
#include "platform/win32/win32_windows.h"

#include <cstdint>

/// A picture in memory that both GDI and the program draw into: 32 bits per pixel, rows top-down.
class Win32Canvas {
public:
    Win32Canvas() = default;
    ~Win32Canvas();
    Win32Canvas(const Win32Canvas&) = delete;
    Win32Canvas& operator=(const Win32Canvas&) = delete;

    /// A picture of another size starts black. True when it has become another.
    bool resize(Size size);
    Size size() const { return size_; }
    HDC dc() const { return dc_; } ///< null while there are no pixels
    /// What GDI has drawn may be missing until flush() was called.
    uint32_t* row(int y) { return pixels_ + ptrdiff_t{y} * size_.width; }
    void flush() const;
    /// The part of the area that lies in the picture.
    Rectangle clipped(const Rectangle& area) const;
    void fill(const Rectangle& area, Colour colour);
    /// Copies a part to the same place of another context, counted from (x, y).
    void show(HDC target, int x, int y, const Rectangle& part) const;

private:
    void release();

    Size size_;
    HDC dc_ = nullptr;
    HBITMAP bitmap_ = nullptr;
    HGDIOBJ before_ = nullptr; ///< what the context came with
    uint32_t* pixels_ = nullptr;
};

/// Both in the same coordinates.
Rectangle intersection(const Rectangle& one, const Rectangle& other);
inline bool is_empty(const Rectangle& area) { return area.width() <= 0 || area.height() <= 0; }
inline COLORREF to_windows(Colour colour) {
    return RGB(colour >> 16 & 0xFF, colour >> 8 & 0xFF, colour & 0xFF);
}
inline RECT to_windows(const Rectangle& area) {
    return {area.left, area.top, area.right, area.bottom};
}
inline Rectangle from_windows(const RECT& area) {
    return {int(area.left), int(area.top), int(area.right), int(area.bottom)};
}
