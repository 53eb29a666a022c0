#include "platform/qt/qt_canvas.h"

#include "platform/qt/qt_accessible.h"
#include "platform/qt/qt_pixels.h"

#include <QAccessible>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QGlyphRun>
#include <QPaintEvent>
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

} // namespace

QtCanvas::QtCanvas(QtEvents& events) : events_(events) {
    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    const QFontMetrics metrics(fixed);
    font_ = QRawFont::fromFont(fixed);
    cell_ = {widest_character(metrics), std::max(metrics.height(), 1)};
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
}

void QtCanvas::copy_bitmap(const BitmapView& picture, int x, int y) {
    copy_bitmap_to(drawing_, picture, x, y);
    drawn({x, y, picture.width, picture.height});
}

void QtCanvas::fill(const Rectangle& area, Colour colour) {
    fill_area(drawing_, area, colour);
    drawn({area.left, area.top, area.width(), area.height()});
}

void QtCanvas::write(int x, int y, const std::string& text, Colour colour, Colour background) {
    const double baseline = std::round(y + font_.ascent());
    QString characters;
    QList<QPointF> places;
    int column = 0;
    for (const char c : text) {
        if (c == '\t') {
            column += TAB_COLUMNS - column % TAB_COLUMNS;
            continue;
        }
        characters += QLatin1Char(c);
        places += QPointF(x + column++ * cell_.width, baseline);
    }
    const Rectangle area{x, y, x + column * cell_.width, y + cell_.height};
    fill_area(drawing_, area, background);
    QGlyphRun run;
    run.setRawFont(font_);
    run.setGlyphIndexes(font_.glyphIndexesForString(characters));
    run.setPositions(places);
    QPainter painter(&drawing_);
    painter.setPen(QColor::fromRgb(colour));
    painter.drawGlyphRun(QPointF(), run);
    painter.end();
    drawn({x, y, area.width(), area.height()});
}

void QtCanvas::drawn(const QRect& area) {
    // One step of interpolation reaches into the neighbouring pixels.
    if (std::exchange(stretched_, nullptr)) {
        update();
    } else {
        update(area.adjusted(-1, -1, 1, 1));
    }
}

void QtCanvas::stretch(const QImage& picture, const QRect& target) {
    const bool same_place = stretched_ && target_ == target;
    stretched_ = &picture;
    target_ = target;
    update(same_place ? target : rect());
}

void QtCanvas::end_stretch() {
    if (std::exchange(stretched_, nullptr)) update();
}

QtCanvas::Readable QtCanvas::readable() const {
    if (!readable_) return {};
    const ReadableText now = readable_();
    return {QString::fromLatin1(now.text), now.cursor};
}

/// Tells screen readers what has changed since the last time.
void QtCanvas::tell_readers() {
    if (!QAccessible::isActive()) return;
    const Readable before = std::exchange(told_, readable());
    if (told_.text != before.text) {
        const auto& [place, removed, inserted] = text_change(before.text, told_.text);
        QAccessibleTextUpdateEvent event(this, int(place), removed, inserted);
        event.setCursorPosition(told_.cursor);
        QAccessible::updateAccessibility(&event);
    }
    if (told_.cursor != before.cursor) {
        QAccessibleTextCursorEvent event(this, told_.cursor);
        QAccessible::updateAccessibility(&event);
    }
}

void QtCanvas::paintEvent(QPaintEvent* event) {
    tell_readers();
    if (stretched_) {
        paint_stretched(event->rect());
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, !is_whole(devicePixelRatioF()));
    painter.drawImage(0, 0, drawing_);
}

void QtCanvas::paint_stretched(const QRect& dirty) {
    QPainter painter(this);
    for (const QRect& border : QRegion(dirty).subtracted(target_)) {
        painter.fillRect(border, Qt::black);
    }
    painter.setRenderHint(
        QPainter::SmoothPixmapTransform,
        !keeps_pixels_equal(stretched_->size(), target_.size(), devicePixelRatioF()));
    painter.drawImage(target_, *stretched_);
}

void QtCanvas::resizeEvent(QResizeEvent*) {
    drawing_ = plain_picture(size(), Qt::black);
    events_.post_once(Event::Kind::paint);
}
