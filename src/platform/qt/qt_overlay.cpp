#include "platform/qt/qt_overlay.h"

#include "platform/qt/qt_canvas.h"
#include "platform/qt/qt_text.h"

#include <QAccessible>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace {

constexpr int LINES_OF_AREA = 40; ///< that would fill it
constexpr int GROUND_ALPHA = 176; ///< of black, which the picture is seen through

/// White covers what is behind it, black lets it through, and all between in between.
QImage translucent(const QImage& drawing) {
    QImage shown = drawing.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < shown.height(); ++y) {
        auto* const row = reinterpret_cast<QRgb*>(shown.scanLine(y));
        for (int x = 0; x < shown.width(); ++x) {
            const QRgb pixel = row[x];
            const int brightest = std::max({qRed(pixel), qGreen(pixel), qBlue(pixel)});
            row[x] =
                qRgba(qRed(pixel), qGreen(pixel), qBlue(pixel), std::max(brightest, GROUND_ALPHA));
        }
    }
    return shown;
}

} // namespace

QtOverlay::QtOverlay(QtCanvas& canvas, QtEvents& events)
    : QtStrip(PaneId::overlay, font_, canvas, events) {
    widget_.setAttribute(Qt::WA_TransparentForMouseEvents);
}

Size QtOverlay::cell_size() {
    const int pixels = canvas_.room().height / LINES_OF_AREA;
    if (std::exchange(font_pixels_, pixels) != pixels) font_ = CellFont(pixels);
    return font_.cell;
}

QRect QtOverlay::place() {
    const int row = cell_size().height;
    const Size room = canvas_.room();
    return {0, 0, room.width, std::min(rows_ * row + row, room.height)};
}

void QtOverlay::set_message(const std::string& text, int rows) {
    rows_ = rows;
    lay_out();
    const QString message = to_qt(text);
    if (widget_.accessibleName() == message) return;
    widget_.setAccessibleName(message);
    QAccessibleEvent event(&widget_, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

void QtOverlay::paint(QPainter& painter) { painter.drawImage(0, 0, translucent(drawing())); }
