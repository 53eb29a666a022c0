#include "platform/qt/qt_keyboard_window.h"

#include "platform/qt/qt_canvas.h"
#include "platform/qt/qt_pixels.h"
#include "platform/qt/qt_room.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace {

constexpr int SIZED = 250;       ///< ms without another size
constexpr int LEAST_WIDTH = 340; ///< floating

uint8_t left_button(Qt::MouseButtons buttons) {
    return buttons & Qt::LeftButton ? uint8_t(BUTTON_LEFT) : uint8_t(0);
}

} // namespace

// ---- the widget --------------------------------------------------------------------------------

QtKeyboardPane::Widget::Widget(QtKeyboardPane& pane, QtEvents& events)
    : pane_(pane), events_(events) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoMousePropagation);
    setAttribute(Qt::WA_AcceptTouchEvents);
    setCursor(Qt::ArrowCursor); // also where the window hides it
    setFocusPolicy(Qt::NoFocus);
    setAccessibleName(QStringLiteral("Colour Genie keyboard"));
    hide();
}

bool QtKeyboardPane::Widget::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        tell_mouse(*static_cast<QMouseEvent*>(event), Pointer::Act::press);
        return true;
    case QEvent::MouseButtonRelease:
        tell_mouse(*static_cast<QMouseEvent*>(event), Pointer::Act::release);
        return true;
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
        tell_fingers(*static_cast<QTouchEvent*>(event));
        event->accept(); // or Qt would make mouse events of it
        return true;
    case QEvent::TouchCancel: take_fingers_away(); return true;
    default: break;
    }
    return QWidget::event(event);
}

void QtKeyboardPane::Widget::tell(Pointer pointer, QPointF place) {
    pointer.pane = PaneId::keyboard;
    pointer.x = int(std::floor(place.x()));
    pointer.y = int(std::floor(place.y()));
    Event message;
    message.kind = Event::Kind::pointer;
    message.pointer = pointer;
    events_.post(message);
}

void QtKeyboardPane::Widget::tell_mouse(const QMouseEvent& event, Pointer::Act act) {
    if (event.button() != Qt::LeftButton) return;
    tell({.act = act, .button = BUTTON_LEFT, .buttons = left_button(event.buttons())},
         event.position());
}

void QtKeyboardPane::Widget::tell_finger(int finger, Pointer::Act act, QPointF place) {
    const bool pressed = act == Pointer::Act::press;
    tell({.act = act,
          .button = BUTTON_LEFT,
          .buttons = pressed ? uint8_t(BUTTON_LEFT) : uint8_t(0),
          .touch = true,
          .finger = finger},
         place);
}

void QtKeyboardPane::Widget::tell_fingers(const QTouchEvent& event) {
    for (const QEventPoint& point : event.points()) {
        const int finger = point.id() + 1;
        if (point.state() == QEventPoint::Pressed) {
            fingers_.insert(finger);
            tell_finger(finger, Pointer::Act::press, point.position());
        } else if (point.state() == QEventPoint::Released) {
            fingers_.erase(finger);
            tell_finger(finger, Pointer::Act::release, point.position());
        }
    }
}

/// The desktop has taken the touch for a gesture of its own: nothing stays pressed, and no button
/// acts.
void QtKeyboardPane::Widget::take_fingers_away() {
    for (const int finger : std::exchange(fingers_, {})) {
        tell_finger(finger, Pointer::Act::release, {-1, -1});
    }
}

void QtKeyboardPane::Widget::click(const PaneButton& button) {
    const Rectangle& area = button.area;
    const QPointF middle((area.left + area.right) / 2.0, (area.top + area.bottom) / 2.0);
    tell({.act = Pointer::Act::press, .button = BUTTON_LEFT, .buttons = BUTTON_LEFT}, middle);
    tell({.act = Pointer::Act::release, .button = BUTTON_LEFT}, middle);
}

void QtKeyboardPane::Widget::paintEvent(QPaintEvent*) {
    pane_.draw_if_lost();
    QPainter(this).drawImage(0, 0, pane_.drawing());
}

void QtKeyboardPane::Widget::resizeEvent(QResizeEvent*) { events_.paint(PaneId::keyboard); }

// ---- the floating window -----------------------------------------------------------------------

QtKeyboardPane::Frame::Frame(QtCanvas& canvas, QtEvents& events)
    : QWidget(canvas.window(), Qt::Tool | Qt::WindowDoesNotAcceptFocus), canvas_(canvas),
      events_(events) {
    setAttribute(Qt::WA_ShowWithoutActivating);
    setWindowTitle(QStringLiteral("Colour Genie keyboard"));
    sized_.setSingleShot(true);
    sized_.setInterval(SIZED);
    QObject::connect(&sized_, &QTimer::timeout, [this] { restore_proportion(); });
}

/// A window system may give it the keyboard all the same: the keys are the main window's.
bool QtKeyboardPane::Frame::event(QEvent* event) {
    const bool key = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
    return key ? QCoreApplication::sendEvent(&canvas_, event) : QWidget::event(event);
}

void QtKeyboardPane::Frame::closeEvent(QCloseEvent* event) {
    event->ignore(); // the shell hides it
    events_.post(Event::Kind::command, closed_);
}

void QtKeyboardPane::Frame::resizeEvent(QResizeEvent*) {
    for (QObject* child : children()) {
        if (auto* widget = qobject_cast<QWidget*>(child)) widget->setGeometry(rect());
    }
    sized_.start();
}

/// Where the window system refuses, as one that tiles does, there is room around the keyboard.
void QtKeyboardPane::Frame::restore_proportion() {
    if (isMaximized() || isFullScreen() || proportion_.isEmpty()) return;
    const int height = width() * proportion_.height() / proportion_.width();
    const bool fits = std::abs(height - this->height()) <= 1;
    const bool refused = std::exchange(corrected_, fits ? QSize() : size()) == size();
    if (!fits && !refused) resize(width(), height);
}

// ---- the pane ----------------------------------------------------------------------------------

QtKeyboardPane::QtKeyboardPane(QtCanvas& canvas, QtEvents& events)
    : QtWidgetPane(PaneId::keyboard, canvas.font(), events), canvas_(canvas), events_(events),
      widget_(*this, events) {}

void QtKeyboardPane::place(KeyboardPlace place, const Rectangle& wanted, int closed) {
    if (place == KeyboardPlace::docked) height_ = wanted.height();
    const bool stays = std::exchange(place_, place) == place;
    if (place == KeyboardPlace::floating) {
        if (stays) return;
        if (!frame_) frame_ = std::make_unique<Frame>(canvas_, events_);
        frame_->set_closed(closed);
        float_at(wanted);
        return;
    }
    if (frame_) frame_->hide();
    if (!stays) widget_.setParent(&canvas_);
    lay_out();
}

void QtKeyboardPane::float_at(const Rectangle& wanted) {
    frame_->keep({wanted.width(), wanted.height()});
    frame_->setMinimumSize(LEAST_WIDTH, LEAST_WIDTH * wanted.height() / wanted.width());
    widget_.setParent(frame_.get());
    const QRect available = canvas_.screen()->availableGeometry();
    const QSize size(std::min(wanted.width(), available.width()), wanted.height());
    if (wanted.left == 0 && wanted.top == 0) {
        // Below the middle of the screen, where it hides little of the picture.
        frame_->resize(size);
        frame_->move(available.center().x() - size.width() / 2,
                     available.bottom() - size.height() - available.height() / 20);
    } else {
        const QPoint corner = canvas_.screen()->geometry().topLeft();
        const QPoint place = QPoint(wanted.left, wanted.top) + corner;
        frame_->setGeometry(moved_into({place, size}, available));
    }
    widget_.setGeometry(frame_->rect());
    widget_.show();
    if (canvas_.window()->isVisible()) frame_->show();
}

Rectangle QtKeyboardPane::rectangle() const {
    if (place_ != KeyboardPlace::floating || !frame_) return {};
    const QRect at = frame_->geometry().translated(-canvas_.screen()->geometry().topLeft());
    return {at.left(), at.top(), at.left() + at.width(), at.top() + at.height()};
}

int QtKeyboardPane::docked_height() const {
    return place_ == KeyboardPlace::docked && !full_screen_ ? height_ : 0;
}

void QtKeyboardPane::lay_out() {
    if (place_ == KeyboardPlace::floating) return;
    const int height = docked_height();
    const Size room = canvas_.room();
    if (height > 0) widget_.setGeometry(0, room.height, room.width, height);
    widget_.setVisible(height > 0);
}

void QtKeyboardPane::set_full_screen(bool on) {
    full_screen_ = on;
    lay_out();
}

void QtKeyboardPane::show_window(bool on) {
    if (place_ == KeyboardPlace::floating && frame_) frame_->setVisible(on);
}

void QtKeyboardPane::stretch_bitmap(const BitmapView& picture, const Rectangle& target,
                                    const Scaling& how) {
    QImage& shown = drawing();
    if (shown.size() == QSize(picture.width, picture.height)) {
        copy_bitmap_to(shown, picture, 0, 0);
    } else { // drawn for another size, and soon drawn again
        QImage whole = plain_picture({picture.width, picture.height}, Qt::black);
        copy_bitmap_to(whole, picture, 0, 0);
        QPainter painter(&shown);
        painter.setRenderHint(QPainter::SmoothPixmapTransform, how.smooth);
        painter.drawImage(QRect(target.left, target.top, target.width(), target.height()), whole);
    }
    widget_.update();
}
