#pragma once
#include "platform/geometry.h"
#include "platform/qt/qt_events.h"

#include <QImage>
#include <QRawFont>
#include <QWidget>

#include <string>

/// The client area. Shows either what was drawn into it, kept in a picture of one pixel per logical
/// pixel, or another picture stretched over it: whatever was asked for last.
class QtCanvas final : public QWidget {
public:
    explicit QtCanvas(QtEvents& events);

    void copy_bitmap(const BitmapView& picture, int x, int y);
    void fill(const Rectangle& area, Colour colour);
    Size cell_size() const { return cell_; }
    /// ASCII text on the grid of cells that begins at (x, y).
    void write(int x, int y, const std::string& text, Colour colour, Colour background);
    /// Shows `picture` in `target`, black around it. It must stay until the next drawing.
    void stretch(const QImage& picture, const QRect& target);
    void end_stretch();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void drawn(const QRect& area);
    void paint_stretched(const QRect& dirty);

    QtEvents& events_;
    QImage drawing_;
    QRawFont font_; ///< of fixed pitch
    Size cell_;
    const QImage* stretched_ = nullptr;
    QRect target_;
};
