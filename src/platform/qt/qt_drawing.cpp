#include "platform/qt/qt_drawing.h"

void QtDrawing::copy_bitmap(const BitmapView& picture, int x, int y) {
    canvas_.copy_bitmap(picture, x, y);
}

void QtDrawing::fill_rectangle(const Rectangle& area, Colour colour) { canvas_.fill(area, colour); }
