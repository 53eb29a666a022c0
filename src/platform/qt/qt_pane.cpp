#include "platform/qt/qt_pane.h"

#include "platform/qt/qt_canvas.h"
#include "platform/qt/qt_pixels.h"
#include "platform/qt/qt_text.h"

#include <QFontDatabase>
#include <QFontMetrics>
#include <QGlyphRun>
#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

bool is_whole(double factor) { return std::abs(factor - std::round(factor)) < 1e-6; }

/// Rows that are stretched at a time: few enough to stay in the processor's cache.
constexpr int BAND = 16;
constexpr QRect EVERYTHING(0, 0, QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);

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

QRect QtStretch::set(const BitmapView& picture, const Rectangle& target, const Scaling& how,
                     double ratio) {
    std::swap(picture_, before_);
    const QSize size(picture.width, picture.height);
    if (picture_.size() != size) picture_ = QImage(size, QImage::Format_RGB32);
    copy_bitmap_to(picture_, picture, 0, 0);
    const bool same_place = target == target_ && how == how_ && before_.size() == size;
    target_ = target;
    how_ = how;
    if (!same_place) return EVERYTHING;
    const auto [first, end] = rows_that_differ(picture_, before_);
    if (first == end) return {};
    // A row is mixed with its neighbours, and rounding may move it.
    const Rectangle area = area_on_screen(ratio);
    const double row = double(area.height()) / picture.height / ratio;
    const int top = int(area.top / ratio + (first - 1) * row) - 1;
    const int bottom = int(area.top / ratio + (end + 1) * row) + 2;
    return {target.left - 1, top, target.width() + 2, bottom - top};
}

Rectangle QtStretch::area_on_screen(double ratio) const {
    return stretched_area(in_device_pixels(target_, ratio), {picture_.width(), picture_.height()},
                          how_.whole);
}

void QtStretch::paint(QPainter& painter, const QRect& dirty, double ratio, const QImage* drawn) {
    // From here on in pixels of the screen, from the first one of the pane.
    const QTransform to_device = painter.deviceTransform();
    const QPoint origin = to_device.map(QPointF()).toPoint();
    painter.setWorldTransform(QTransform::fromTranslate(origin.x(), origin.y()) *
                              to_device.inverted());
    const Rectangle outer = in_device_pixels(
        {dirty.left() - 1, dirty.top() - 1, dirty.right() + 2, dirty.bottom() + 2}, ratio);
    const QRect all(outer.left, outer.top, outer.width(), outer.height());
    const Rectangle at = area_on_screen(ratio);
    const QRect area(at.left, at.top, at.width(), at.height());
    for (const QRect& border : QRegion(all).subtracted(area)) {
        painter.fillRect(border, Qt::black);
    }
    const QRect rows = area & all;
    if (rows.isEmpty() || picture_.isNull()) return;
    if (drawn) return painter.drawImage(rows, *drawn, rows.translated(-area.topLeft()));
    scaler_.prepare({picture_.width(), picture_.height()}, {at.width(), at.height()}, how_.smooth);
    scaler_.begin(reinterpret_cast<const uint32_t*>(picture_.constBits()));
    const QSize band(at.width(), BAND);
    if (band_.size() != band) band_ = QImage(band, QImage::Format_RGB32);
    for (int top = rows.top(); top <= rows.bottom(); top += BAND) {
        const int height = std::min(BAND, rows.bottom() + 1 - top);
        for (int row = 0; row < height; ++row) {
            scaler_.row(top - at.top + row, reinterpret_cast<uint32_t*>(band_.scanLine(row)));
        }
        painter.drawImage(at.left, top, band_, 0, 0, at.width(), height);
    }
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
    stretch.set(picture, target, how, image.devicePixelRatio());
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
    QRect changed = stretch_.set(picture, target, how, canvas_.devicePixelRatioF());
    const bool was_stretched = std::exchange(stretched_, true);
    if (has_tube()) changed = draw_tube(changed);
    if (&canvas_.front() != this) return;
    if (!was_stretched) {
        canvas_.update();
    } else if (!changed.isEmpty()) {
        canvas_.update(changed & canvas_.rect());
    }
}

void QtPane::end_stretch() {
    if (std::exchange(stretched_, false)) canvas_.update();
}

void QtPane::paint(const QRect& dirty) {
    QPainter painter(&canvas_);
    if (stretched_) {
        if (has_tube()) draw_tube({}); // nothing to do, unless the canvas is on another screen
        const QImage* drawn = has_tube() ? &canvas_.tube().drawn() : nullptr;
        return stretch_.paint(painter, dirty, canvas_.devicePixelRatioF(), drawn);
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform, !is_whole(canvas_.devicePixelRatioF()));
    painter.drawImage(0, 0, drawing());
}

bool QtPane::has_tube() const {
    return stretch_.how().tube != TubeLook::off && canvas_.tube().is_ready();
}

/// Returns the part of the canvas that changes, where `stretched` is what it would be without the
/// tube: light goes farther than the pixels it comes from.
QRect QtPane::draw_tube(const QRect& stretched) {
    const double ratio = canvas_.devicePixelRatioF();
    const Rectangle area = stretch_.area_on_screen(ratio);
    const TubeRows rows =
        canvas_.tube().draw(stretch_.picture(), {area.width(), area.height()}, stretch_.how());
    if (stretched == EVERYTHING || !canvas_.tube().is_ready()) return EVERYTHING;
    if (rows.first == rows.end) return {};
    const int top = int(std::floor((area.top + rows.first) / ratio));
    const int bottom = int(std::ceil((area.top + rows.end) / ratio));
    return {0, top, canvas_.width(), bottom - top};
}
