#pragma once
#include "platform/drawing.h"
#include "platform/qt/qt_canvas.h"

class QtDrawing final : public Drawing {
public:
    explicit QtDrawing(QtCanvas& canvas) : canvas_(canvas) {}
    void copy_bitmap(const BitmapView& picture, int x, int y) override;
    void fill_rectangle(const Rectangle& area, Colour colour) override;

private:
    QtCanvas& canvas_;
};
