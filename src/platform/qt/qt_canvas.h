#pragma once
#include "platform/geometry.h"
#include "platform/qt/qt_events.h"
#include "platform/window.h"

#include <QImage>
#include <QRawFont>
#include <QWidget>

#include <functional>
#include <string>
#include <utility>

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

    /// The text behind the picture, for screen readers.
    struct Readable {
        QString text;
        int cursor = ReadableText::NO_CURSOR;
    };
    void set_readable(std::function<ReadableText()> text) { readable_ = std::move(text); }
    Readable readable() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void drawn(const QRect& area);
    void paint_stretched(const QRect& dirty);
    void tell_readers();

    QtEvents& events_;
    QImage drawing_;
    QRawFont font_; ///< of fixed pitch
    Size cell_;
    const QImage* stretched_ = nullptr;
    QRect target_;
    std::function<ReadableText()> readable_; ///< null: there is none
    Readable told_;                          ///< to screen readers
};
