#pragma once
#include "platform/geometry.h"

/// Drawing into the client area of the main window. What is drawn stays until it is drawn over.
struct Drawing {
    virtual ~Drawing() = default;
    /// Copies the picture 1:1, its top left corner at (x, y).
    virtual void copy_bitmap(const BitmapView& picture, int x, int y) = 0;
    virtual void fill_rectangle(const Rectangle& area, Colour colour) = 0;
};
