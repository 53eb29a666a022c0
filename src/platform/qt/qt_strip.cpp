#include "platform/qt/qt_strip.h"

#include "platform/qt/qt_canvas.h"
#include "platform/qt/qt_pixels.h"

#include <QPainter>

QtStrip::Widget::Widget(QtStrip& strip, QtCanvas& canvas) : QWidget(&canvas), strip_(strip) {
    setAttribute(Qt::WA_NoMousePropagation);
    hide();
}

void QtStrip::Widget::paintEvent(QPaintEvent*) {
    // On a screen of another scale all has to be drawn again.
    if (strip_.drawing_.size() != strip_.pixels()) strip_.events_.paint(strip_.id_);
    QPainter painter(this);
    strip_.paint(painter);
}

QtStrip::QtStrip(PaneId id, const CellFont& font, QtCanvas& canvas, QtEvents& events)
    : QtDrawing(font), canvas_(canvas), widget_(*this, canvas), id_(id), events_(events) {}

void QtStrip::paint(QPainter& painter) { painter.drawImage(0, 0, drawing()); }

void QtStrip::lay_out() { widget_.setGeometry(place()); }

Size QtStrip::size() {
    lay_out();
    return {widget_.width(), widget_.height()};
}

void QtStrip::show(bool on) {
    lay_out();
    widget_.setVisible(on);
    if (on) widget_.raise();
}

QSize QtStrip::pixels() const {
    return (QSizeF(widget_.size()) * widget_.devicePixelRatioF()).toSize();
}

/// A strip of another size starts black.
QImage& QtStrip::drawing() {
    if (drawing_.size() != pixels()) drawing_ = plain_picture(pixels(), Qt::black);
    drawing_.setDevicePixelRatio(widget_.devicePixelRatioF());
    return drawing_;
}
