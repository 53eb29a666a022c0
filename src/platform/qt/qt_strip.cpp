#include "platform/qt/qt_strip.h"

#include "platform/qt/qt_canvas.h"

#include <QPainter>

QtStrip::Widget::Widget(QtStrip& strip, QtCanvas& canvas) : QWidget(&canvas), strip_(strip) {
    setAttribute(Qt::WA_NoMousePropagation);
    hide();
}

void QtStrip::Widget::paintEvent(QPaintEvent*) {
    strip_.draw_if_lost();
    QPainter painter(this);
    strip_.paint(painter);
}

QtStrip::QtStrip(PaneId id, const CellFont& font, QtCanvas& canvas, QtEvents& events)
    : QtWidgetPane(id, font, events), canvas_(canvas), widget_(*this, canvas) {}

void QtStrip::paint(QPainter& painter) { painter.drawImage(0, 0, drawing()); }

void QtStrip::lay_out() { widget_.setGeometry(place()); }

Size QtStrip::size() {
    lay_out();
    return QtWidgetPane::size();
}

void QtStrip::show(bool on) {
    lay_out();
    widget_.setVisible(on);
    if (on) widget_.raise();
}
