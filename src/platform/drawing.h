#pragma once
#include "platform/geometry.h"

#include <string>

/// Drawing into the client area of the main window. What is drawn stays until it is drawn over.
struct Drawing {
    virtual ~Drawing() = default;
    /// Copies the picture 1:1, its top left corner at (x, y).
    virtual void copy_bitmap(const BitmapView& picture, int x, int y) = 0;
    virtual void fill_rectangle(const Rectangle& area, Colour colour) = 0;
    /// A character cell of the host's fixed-pitch font.
    virtual Size cell_size() = 0;
    /// Writes ASCII text, one character a cell, the first one's top left corner at (x, y). A tab
    /// leads to the next column that is a multiple of eight.
    virtual void text(int x, int y, const std::string& text, Colour colour, Colour background) = 0;
    /// A line one pixel high, `length` pixels from (x, y) to the right.
    virtual void line(int x, int y, int length, Colour colour) = 0;
};
