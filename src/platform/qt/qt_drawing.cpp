#include "platform/qt/qt_drawing.h"

void QtDrawing::copy_bitmap(const BitmapView& picture, int x, int y) {
    canvas_.copy_bitmap(picture, x, y);
}

void QtDrawing::fill_rectangle(const Rectangle& area, Colour colour) { canvas_.fill(area, colour); }

void QtDrawing::text(int x, int y, const std::string& text, Colour colour, Colour background) {
    canvas_.write(x, y, text, colour, background);
}

void QtDrawing::line(int x, int y, int length, Colour colour) {
    canvas_.fill({x, y, x + length, y + 1}, colour);
}
