#include "platform/qt/qt_debugger_window.h"

#include "platform/qt/qt_accessible.h"
#include "platform/qt/qt_canvas.h"
#include "platform/qt/qt_room.h"
#include "platform/qt/qt_text.h"

#include <QAccessible>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>

#include <utility>

namespace {

constexpr QSize USUAL_SIZE(1000, 700);
constexpr QSize LEAST_SIZE(240, 120);

} // namespace

// ---- the window --------------------------------------------------------------------------------

QtDebuggerPane::Widget::Widget(QtDebuggerPane& pane, QtEvents& events)
    : pane_(pane), events_(events) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setMinimumSize(LEAST_SIZE);
    setWindowTitle(QStringLiteral("Tarvelin debugger"));
    setAccessibleName(windowTitle());
}

void QtDebuggerPane::Widget::paintEvent(QPaintEvent*) {
    pane_.draw_if_lost();
    QPainter(this).drawImage(0, 0, pane_.drawing());
}

void QtDebuggerPane::Widget::closeEvent(QCloseEvent* event) {
    event->ignore(); // the shell closes it
    events_.post(Event::Kind::command, closed_);
}

// ---- the pane ----------------------------------------------------------------------------------

QtDebuggerPane::QtDebuggerPane(QtCanvas& canvas, QtEvents& events)
    : QtWidgetPane(PaneId::debugger, canvas.font(), events), canvas_(canvas),
      widget_(*this, events) {}

void QtDebuggerPane::place(bool open, const Rectangle& wanted, int closed) {
    widget_.set_closed(closed);
    const bool stays = std::exchange(open_, open) == open;
    if (open && !stays) {
        if (wanted == Rectangle{}) {
            place_beside();
        } else {
            place_at(wanted);
        }
    }
    if (open) {
        if (canvas_.window()->isVisible()) come_forward();
    } else if (!stays) {
        if (widget_.isActiveWindow()) canvas_.window()->activateWindow();
        widget_.hide();
    }
}

void QtDebuggerPane::come_forward() {
    widget_.setWindowState(widget_.windowState() & ~Qt::WindowMinimized);
    widget_.show();
    widget_.raise();
    widget_.activateWindow();
    widget_.setFocus();
}

/// Where it covers the least of the main window.
void QtDebuggerPane::place_beside() {
    const QRect room = canvas_.screen()->availableGeometry();
    const QRect main = canvas_.window()->frameGeometry();
    const QSize size = USUAL_SIZE.boundedTo(room_on_screen(widget_));
    const int right = room.right() - main.right();
    const int left = main.left() - room.left();
    const int x = right >= left ? main.right() + 1 : main.left() - size.width();
    const QRect beside = moved_into(QRect(QPoint(x, main.top()), size), room);
    widget_.resize(beside.size());
    widget_.move(beside.topLeft()); // of the frame that the window manager puts around it
}

/// On whichever screen that is.
void QtDebuggerPane::place_at(const Rectangle& wanted) {
    const QRect at = QRect(wanted.left, wanted.top, wanted.width(), wanted.height())
                         .translated(canvas_.screen()->geometry().topLeft());
    const QScreen* screen = QGuiApplication::screenAt(at.center());
    const QRect room = (screen ? screen : canvas_.screen())->availableGeometry();
    widget_.setGeometry(moved_into({at.topLeft(), at.size().boundedTo(room.size())}, room));
}

Rectangle QtDebuggerPane::rectangle() const {
    if (!open_) return {};
    const QRect now = widget_.isMaximized() ? widget_.normalGeometry() : widget_.geometry();
    const QRect at = now.translated(-canvas_.screen()->geometry().topLeft());
    return {at.left(), at.top(), at.left() + at.width(), at.top() + at.height()};
}

void QtDebuggerPane::show_window(bool on) {
    if (!open_) return;
    if (on) return come_forward();
    widget_.hide();
}

/// Told as a whole and as what has changed of it: some readers know only one of the two.
void QtDebuggerPane::set_message(const std::string& text, int /*rows*/) {
    const QString before = std::exchange(text_, to_qt(text));
    if (text_ == before || !QAccessible::isActive()) return;
    QAccessibleEvent described(&widget_, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&described);
    const auto& [place, removed, inserted] = text_change(before, text_);
    QAccessibleTextUpdateEvent update(&widget_, int(place), removed, inserted);
    QAccessible::updateAccessibility(&update);
}
