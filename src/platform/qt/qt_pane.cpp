#include "platform/qt/qt_pane.h"

#include "platform/qt/qt_canvas.h"
#include "platform/qt/qt_pixels.h"
#include "platform/qt/qt_text.h"

#include <QFontDatabase>
#include <QFontMetrics>
#include <QGlyphRun>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

bool is_whole(double factor) { return std::abs(factor - std::round(factor)) < 1e-6; }

/// Pixels that become equal blocks of device pixels stay sharp; all others are interpolated.
bool keeps_pixels_equal(QSize picture, QSize target, double device_pixels) {
    return is_whole(target.width() * device_pixels / picture.width()) &&
           is_whole(target.height() * device_pixels / picture.height());
}

constexpr int TAB_COLUMNS = 8;
constexpr int FIRST_PRINTABLE = ' ';
constexpr int LAST_PRINTABLE = '~';

/// The widest of the characters that are written; the font's own maximum may be that of a rare one.
int widest_character(const QFontMetrics& metrics) {
    int widest = 1;
    for (int c = FIRST_PRINTABLE; c <= LAST_PRINTABLE; ++c) {
        widest = std::max(widest, metrics.horizontalAdvance(QChar(c)));
    }
    return widest;
}

Rectangle in_device_pixels(const Rectangle& area, double ratio) {
    const auto scaled = [ratio](int place) { return int(std::lround(place * ratio)); };
    return {scaled(area.left), scaled(area.top), scaled(area.right), scaled(area.bottom)};
}

} // namespace

void QtStretch::set(const BitmapView& bitmap, const Rectangle& area, const Scaling& scaling) {
    const QSize size(bitmap.width, bitmap.height);
    if (picture.size() != size) picture = QImage(size, QImage::Format_RGB32);
    copy_bitmap_to(picture, bitmap, 0, 0);
    target = QRect(area.left, area.top, area.width(), area.height());
    how = scaling;
}

void QtStretch::paint(QPainter& painter, const QRect& dirty, double ratio) const {
    for (const QRect& border : QRegion(dirty).subtracted(target)) {
        painter.fillRect(border, Qt::black);
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform,
                          !keeps_pixels_equal(picture.size(), target.size(), ratio));
    painter.drawImage(target, picture);
}

CellFont::CellFont(int pixels) {
    QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    if (pixels > QFontInfo(fixed).pixelSize()) fixed.setPixelSize(pixels);
    const QFontMetrics metrics(fixed);
    font = QRawFont::fromFont(fixed);
    cell = {widest_character(metrics), std::max(metrics.height(), 1)};
}

void QtDrawing::copy_bitmap(const BitmapView& picture, int x, int y) {
    QImage& target = drawing();
    if (target.devicePixelRatio() == 1) {
        copy_bitmap_to(target, picture, x, y);
    } else {
        QImage part = plain_picture({picture.width, picture.height}, Qt::black);
        copy_bitmap_to(part, picture, 0, 0);
        QPainter(&target).drawImage(x, y, part);
    }
    drawn({x, y, picture.width, picture.height});
}

void QtDrawing::stretch_bitmap(const BitmapView& picture, const Rectangle& target,
                               const Scaling& how) {
    QImage& image = drawing();
    const QRect all(QPoint(), image.deviceIndependentSize().toSize());
    QtStretch stretch;
    stretch.set(picture, target, how);
    QPainter painter(&image);
    stretch.paint(painter, all, image.devicePixelRatio());
    painter.end();
    drawn(all);
}

void QtDrawing::fill_rectangle(const Rectangle& area, Colour colour) {
    QImage& target = drawing();
    fill_area(target, in_device_pixels(area, target.devicePixelRatio()), colour);
    drawn({area.left, area.top, area.width(), area.height()});
}

void QtDrawing::line(int x, int y, int length, Colour colour) {
    fill_rectangle({x, y, x + length, y + 1}, colour);
}

void QtDrawing::text(int x, int y, const std::string& text, Colour colour, Colour background) {
    const auto& [font, cell] = font_;
    const double baseline = std::round(y + font.ascent());
    QString characters;
    QList<QPointF> places;
    int column = 0;
    for (const QChar c : to_qt(text)) {
        if (c == '\t') {
            column += TAB_COLUMNS - column % TAB_COLUMNS;
            continue;
        }
        characters += c;
        places += QPointF(x + column++ * cell.width, baseline);
    }
    fill_rectangle({x, y, x + column * cell.width, y + cell.height}, background);
    QGlyphRun run;
    run.setRawFont(font);
    run.setGlyphIndexes(font.glyphIndexesForString(characters));
    run.setPositions(places);
    QPainter painter(&drawing());
    painter.setPen(QColor::fromRgb(colour));
    painter.drawGlyphRun(QPointF(), run);
    painter.end();
    drawn({x, y, column * cell.width, cell.height});
}

QtPane::QtPane(QtCanvas& canvas) : QtDrawing(canvas.font()), canvas_(canvas) {}

Size QtPane::size() { return canvas_.room(); }

void QtPane::show(bool on) {
    if (std::exchange(shown_, on) != on) canvas_.update();
}

/// A canvas of another size starts black.
QImage& QtPane::drawing() {
    if (drawing_.size() != canvas_.size()) drawing_ = plain_picture(canvas_.size(), Qt::black);
    return drawing_;
}

void QtPane::drawn(const QRect& area) {
    const bool all_changes = std::exchange(stretched_, false);
    if (&canvas_.front() != this) return;
    // One step of interpolation reaches into the neighbouring pixels.
    canvas_.update(all_changes ? canvas_.rect() : area.adjusted(-1, -1, 1, 1));
}

void QtPane::stretch_bitmap(const BitmapView& picture, const Rectangle& target,
                            const Scaling& how) {
    const QRect before = stretched_ && stretch_.how == how ? stretch_.target : QRect();
    stretch_.set(picture, target, how);
    stretched_ = true;
    if (&canvas_.front() != this) return;
    canvas_.update(before == stretch_.target ? stretch_.target : canvas_.rect());
}

void QtPane::end_stretch() {
    if (std::exchange(stretched_, false)) canvas_.update();
}

void QtPane::paint(const QRect& dirty) {
    QPainter painter(&canvas_);
    if (stretched_) return stretch_.paint(painter, dirty, canvas_.devicePixelRatioF());
    painter.setRenderHint(QPainter::SmoothPixmapTransform, !is_whole(canvas_.devicePixelRatioF()));
    painter.drawImage(0, 0, drawing());
}
