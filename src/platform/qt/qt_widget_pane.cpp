#include "platform/qt/qt_widget_pane.h"

#include "platform/qt/qt_pixels.h"

#include <QWidget>

Size QtWidgetPane::size() { return {widget_of().width(), widget_of().height()}; }

double QtWidgetPane::scale() { return widget_of().devicePixelRatioF(); }

QSize QtWidgetPane::pixels() { return (QSizeF(widget_of().size()) * scale()).toSize(); }

QImage& QtWidgetPane::drawing() {
    if (drawing_.size() != pixels()) drawing_ = plain_picture(pixels(), Qt::black);
    drawing_.setDevicePixelRatio(scale());
    return drawing_;
}

void QtWidgetPane::draw_if_lost() {
    if (drawing_.size() != pixels()) events_.paint(id_);
}

void QtWidgetPane::drawn(const QRect& area) { widget_of().update(area); }
