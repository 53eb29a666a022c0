#pragma once
#include "platform/qt/qt_strip.h"

#include <string>

/// The overlay, over the top lines. It has a font of its own, which grows with the area.
class QtOverlay final : public QtStrip {
public:
    QtOverlay(QtCanvas& canvas, QtEvents& events);

    Size cell_size() override;
    void set_message(const std::string& text, int rows) override;

private:
    QRect place() override;
    void paint(QPainter& painter) override;

    CellFont font_;
    int font_pixels_ = 0; ///< 0: the desktop's size
    int rows_ = 1;
};
