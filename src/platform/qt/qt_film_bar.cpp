#include "platform/qt/qt_film_bar.h"

#include "platform/qt/qt_canvas.h"
#include "platform/qt/qt_pixels.h"

#include <QAccessible>
#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace {
constexpr int MARGIN = 4;
} // namespace

QtFilmBar::Widget::Widget(QtFilmBar& bar, QtCanvas& canvas) : QWidget(&canvas), bar_(bar) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoMousePropagation);
    setCursor(Qt::ArrowCursor); // also where the window hides it
    hide();
}

void QtFilmBar::Widget::paintEvent(QPaintEvent*) {
    // On a screen of another scale all has to be drawn again.
    if (bar_.drawing_.size() != bar_.pixels()) bar_.events_.paint(PaneId::film_bar);
    QPainter(this).drawImage(0, 0, bar_.drawing());
}

QtFilmBar::QtFilmBar(QtCanvas& canvas, QtEvents& events)
    : QtDrawing(canvas.font()), canvas_(canvas), events_(events), widget_(*this, canvas) {}

int QtFilmBar::height() const {
    const int text = canvas_.font().cell.height;
    const int slider = widget_.style()->pixelMetric(QStyle::PM_SliderThickness);
    return text + std::max(text, slider) + 3 * MARGIN;
}

void QtFilmBar::lay_out() {
    const Size room = canvas_.room();
    const int lines = std::min(height(), room.height);
    widget_.setGeometry(0, room.height - lines, room.width, lines);
}

Size QtFilmBar::size() {
    lay_out();
    return {widget_.width(), widget_.height()};
}

void QtFilmBar::show(bool on) {
    lay_out();
    widget_.setVisible(on);
    if (on) widget_.raise();
}

void QtFilmBar::set_reading(const SliderReading& reading) {
    if (reading_ == reading) return;
    reading_ = reading;
    if (!QAccessible::isActive()) return;
    QAccessibleValueChangeEvent event(&widget_, reading.value);
    QAccessible::updateAccessibility(&event);
}

QSize QtFilmBar::pixels() const {
    return (QSizeF(widget_.size()) * widget_.devicePixelRatioF()).toSize();
}

/// A bar of another size starts black.
QImage& QtFilmBar::drawing() {
    if (drawing_.size() != pixels()) drawing_ = plain_picture(pixels(), Qt::black);
    drawing_.setDevicePixelRatio(widget_.devicePixelRatioF());
    return drawing_;
}
