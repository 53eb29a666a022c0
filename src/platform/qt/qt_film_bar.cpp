#include "platform/qt/qt_film_bar.h"

#include "platform/qt/qt_canvas.h"

#include <QAccessible>
#include <QStyle>

#include <algorithm>

namespace {
constexpr int MARGIN = 4;
} // namespace

QtFilmBar::QtFilmBar(QtCanvas& canvas, QtEvents& events)
    : QtStrip(PaneId::film_bar, canvas.font(), canvas, events) {
    widget_.setAttribute(Qt::WA_OpaquePaintEvent);
    widget_.setCursor(Qt::ArrowCursor); // also where the window hides it
}

QRect QtFilmBar::place() {
    const int text = canvas_.font().cell.height;
    const int slider = widget_.style()->pixelMetric(QStyle::PM_SliderThickness);
    const Size room = canvas_.room();
    const int lines = std::min(text + std::max(text, slider) + 3 * MARGIN, room.height);
    return {0, room.height - lines, room.width, lines};
}

void QtFilmBar::set_reading(const SliderReading& reading) {
    if (reading_ == reading) return;
    reading_ = reading;
    if (!QAccessible::isActive()) return;
    QAccessibleValueChangeEvent event(&widget_, reading.value);
    QAccessible::updateAccessibility(&event);
}
