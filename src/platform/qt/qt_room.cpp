#include "platform/qt/qt_room.h"

#include <QEvent>
#include <QGridLayout>
#include <QScreen>
#include <QScrollBar>
#include <QStyle>

#include <algorithm>
#include <memory>
#include <utility>

QSize room_on_screen(const QWidget& window) {
    const QSize title(0, window.style()->pixelMetric(QStyle::PM_TitleBarHeight));
    const QSize frame = window.frameSize() - window.size(); // none before it has been shown
    return window.screen()->availableSize() - frame.expandedTo(title);
}

void fit_on_screen(QWidget& window) {
    window.ensurePolished();
    window.resize(window.size().boundedTo(room_on_screen(window)));
}

QRect moved_into(const QRect& window, const QRect& room) {
    const auto nearest = [](int wanted, int least, int most) {
        return std::clamp(wanted, least, std::max(least, most));
    };
    return {nearest(window.left(), room.left(), room.right() + 1 - window.width()),
            nearest(window.top(), room.top(), room.bottom() + 1 - window.height()), window.width(),
            window.height()};
}

QtFittingArea::QtFittingArea(QWidget* parent, std::function<QSize()> room)
    : QScrollArea(parent), room_(std::move(room)) {
    setFrameShape(NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus); // what is in it has the focus
    viewport()->setAutoFillBackground(false);
}

QSize QtFittingArea::wanted() const {
    if (!widget()) return {};
    const QLayout* layout = widget()->layout();
    return layout ? layout->totalSizeHint() : widget()->sizeHint();
}

QSize QtFittingArea::sizeHint() const {
    const QSize room = room_();
    QSize size = wanted();
    const bool low = size.height() > room.height();
    if (low) size.rwidth() += verticalScrollBar()->sizeHint().width();
    if (size.width() > room.width()) size.rheight() += horizontalScrollBar()->sizeHint().height();
    return size.boundedTo(room);
}

bool QtFittingArea::eventFilter(QObject* watched, QEvent* event) {
    if (watched == widget() && event->type() == QEvent::LayoutRequest) updateGeometry();
    return QScrollArea::eventFilter(watched, event);
}

QtButtonRows::QtButtonRows(QWidget* parent) : QWidget(parent) {
    auto* grid = std::make_unique<QGridLayout>(this).release();
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setColumnStretch(0, 1);
}

void QtButtonRows::add(QWidget& button) {
    static_cast<QGridLayout*>(layout())->addWidget(&button, 0, int(buttons_.size()) + 1);
    buttons_.push_back(&button);
}

void QtButtonRows::fit(int width) {
    auto* grid = static_cast<QGridLayout*>(layout());
    const int count = int(buttons_.size());
    for (int rows = 1; rows <= count; ++rows) {
        const int columns = (count + rows - 1) / rows;
        int place = (columns - count % columns) % columns; // the last row is full
        for (QWidget* button : buttons_) {
            grid->removeWidget(button);
            grid->addWidget(button, place / columns, place % columns + 1);
            ++place;
        }
        grid->invalidate();
        if (grid->sizeHint().width() <= width) return;
    }
}
