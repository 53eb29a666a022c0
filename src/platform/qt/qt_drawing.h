#pragma once
#include "platform/drawing.h"
#include "platform/qt/qt_canvas.h"

class QtDrawing final : public Drawing {
public:
    explicit QtDrawing(QtCanvas& canvas) : canvas_(canvas) {}
    void copy_bitmap(const BitmapView& picture, int x, int y) override;
    void fill_rectangle(const Rectangle& area, Colour colour) override;
    Size cell_size() override { return canvas_.cell_size(); }
    void text(int x, int y, const std::string& text, Colour colour, Colour background) override;
    void line(int x, int y, int length, Colour colour) override;

private:
    QtCanvas& canvas_;
};
