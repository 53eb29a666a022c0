#include "platform/qt/qt_picture_button.h"

#include <QButtonGroup>
#include <QFile>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScrollArea>

#include <algorithm>

namespace {

constexpr int MARGIN = 8;     ///< around picture and text
constexpr int TEXT_SPACE = 5; ///< between picture and text
constexpr int TEXT_EDGE = 4;  ///< around the text
constexpr int LINES = 2;      ///< of text below one that is chosen, for which there is always room
constexpr int ROUNDING = 6;
constexpr int PICTURE_ROUNDING = 3;
constexpr int FAINT = 150;     ///< alpha of text that does not stand out
constexpr int EMPTY_TINT = 14; ///< alpha
constexpr int EDGE_TINT = 60;
constexpr int HOVER_TINT = 22;
constexpr int CHOSEN_TINT = 46;

QColor tinted(QColor colour, int alpha) {
    colour.setAlpha(alpha);
    return colour;
}

QPainterPath rounded(const QRectF& area, qreal radius) {
    QPainterPath path;
    path.addRoundedRect(area, radius, radius);
    return path;
}

} // namespace

QtPictureButton::QtPictureButton(QWidget* parent, QSize area, Use use)
    : QRadioButton(parent), whole_(area), area_(area) {
    setCheckable(use == Use::chosen);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(use == Use::chosen ? QSizePolicy::Fixed : QSizePolicy::Preferred,
                  QSizePolicy::Fixed);
}

/// The button's own text is what a screen reader says.
void QtPictureButton::set_caption(const QString& lines) {
    caption_ = lines;
    setToolTip({});
    setText(QString(lines).replace('&', "&&").replace('\n', ", "));
    update();
}

void QtPictureButton::set_picture(const FormPicture& picture) {
    picture_ = QImage(QFile::decodeName(picture.file.c_str()));
    const auto& [width, height, pixels, file] = picture;
    if (!pixels.empty() && pixels.size() == size_t(width) * size_t(height)) {
        picture_ = QImage(width, height, QImage::Format_RGB32);
        for (int y = 0; y < height; ++y) {
            const auto row = pixels.begin() + ptrdiff_t(y) * width;
            std::copy_n(row, width, reinterpret_cast<QRgb*>(picture_.scanLine(y)));
        }
    }
    update();
}

void QtPictureButton::set_scale(int percent) {
    area_ = whole_ * percent / 100;
    updateGeometry();
}

QFont QtPictureButton::heading_font() const {
    QFont heading = font();
    heading.setBold(isCheckable());
    return heading;
}

/// The title of one that is pressed is never cut.
QSize QtPictureButton::sizeHint() const {
    const QFontMetrics metrics(heading_font());
    const int text = (isCheckable() ? LINES : 1) * metrics.lineSpacing();
    const int wide = isCheckable() ? 0 : metrics.horizontalAdvance(caption_);
    return {std::max(area_.width(), wide) + 2 * MARGIN,
            area_.height() + text + TEXT_SPACE + 2 * MARGIN};
}

/// In the colours of the desktop, so that it fits light and dark ones.
void QtPictureButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor highlight = palette().color(QPalette::Highlight);
    const QColor words = palette().color(QPalette::WindowText);

    const QRectF frame = QRectF(rect()).adjusted(1, 1, -1, -1);
    if (is_marked() || underMouse()) {
        const bool strong = is_marked() || isDown();
        painter.fillPath(rounded(frame, ROUNDING),
                         tinted(highlight, strong ? CHOSEN_TINT : HOVER_TINT));
    }
    if (is_marked()) {
        painter.setPen(QPen(highlight, 2));
        painter.drawPath(rounded(frame, ROUNDING));
    }
    if (hasFocus() && isCheckable()) {
        painter.setPen(QPen(words, 1, Qt::DotLine));
        painter.drawPath(rounded(frame.adjusted(3, 3, -3, -3), PICTURE_ROUNDING));
    }

    const QRectF place(QPointF((width() - area_.width()) / 2.0, MARGIN), QSizeF(area_));
    const QPainterPath outline = rounded(place.adjusted(.5, .5, -.5, -.5), PICTURE_ROUNDING);
    if (picture_.isNull()) {
        painter.fillPath(outline, tinted(words, EMPTY_TINT));
    } else {
        painter.save();
        painter.setClipPath(outline);
        const QSize pixels = (QSizeF(area_) * devicePixelRatioF()).toSize();
        const QImage fitting =
            picture_.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        painter.drawImage(place, fitting);
        painter.restore();
    }
    painter.setPen(tinted(words, EDGE_TINT));
    painter.drawPath(outline);

    const QStringList lines = caption_.split('\n');
    QRect line_place(TEXT_EDGE, MARGIN + area_.height() + TEXT_SPACE, width() - 2 * TEXT_EDGE, 0);
    for (qsizetype n = 0; n < std::min<qsizetype>(lines.size(), LINES); ++n) {
        painter.setFont(n == 0 ? heading_font() : font());
        painter.setPen(n == 0 ? words : tinted(words, FAINT));
        line_place.setHeight(painter.fontMetrics().lineSpacing());
        const QString fitting =
            painter.fontMetrics().elidedText(lines[n], Qt::ElideMiddle, line_place.width());
        if (fitting != lines[n]) setToolTip(caption_);
        painter.drawText(line_place, Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextSingleLine,
                         fitting);
        line_place.translate(0, line_place.height());
    }
}

void QtPictureButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        return QRadioButton::keyPressEvent(event);
    }
    // Some desktops have Enter press a button like the space bar.
    if (on_activation) on_activation();
}

/// Tab comes back to this one, and it is in sight.
void QtPictureButton::focusInEvent(QFocusEvent* event) {
    QRadioButton::focusInEvent(event);
    if (isCheckable()) return;
    for (QAbstractButton* other : group()->buttons()) other->setFocusPolicy(Qt::ClickFocus);
    setFocusPolicy(Qt::StrongFocus);
    for (QWidget* around = parentWidget(); around; around = around->parentWidget()) {
        if (auto* area = qobject_cast<QScrollArea*>(around)) area->ensureWidgetVisible(this);
    }
}

void QtPictureButton::mouseDoubleClickEvent(QMouseEvent* event) {
    QRadioButton::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton && on_activation) on_activation();
}

void QtPictureButton::enterEvent(QEnterEvent* event) {
    QRadioButton::enterEvent(event);
    update();
}

void QtPictureButton::leaveEvent(QEvent* event) {
    QRadioButton::leaveEvent(event);
    update();
}
