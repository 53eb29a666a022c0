#include "platform/qt/qt_events.h"

#include <QApplication>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

bool menu_is_pulled_down() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }

/// The menu bar, while it has the keyboard.
QMenuBar* focused_menu_bar() { return qobject_cast<QMenuBar*>(QApplication::focusWidget()); }

/// When the user leaves the menus, Qt gives the keyboard back to the widget that had it. After a
/// menu that was opened from the menu bar this is the bar itself, which takes no key then.
void leave_idle_menu_bar() {
    const QMenuBar* bar = focused_menu_bar();
    if (!bar || bar->activeAction() || menu_is_pulled_down()) return;
    const auto* window = qobject_cast<QMainWindow*>(bar->window());
    if (window) window->centralWidget()->setFocus(Qt::MenuBarFocusReason);
}

} // namespace

QtEvents::QtEvents() {
    limit_.setSingleShot(true);
    limit_.setTimerType(Qt::PreciseTimer);
}

void QtEvents::pump(QEventLoop::ProcessEventsFlags flags) {
    if (pump_hook_) pump_hook_();
    if (!queue_.empty()) return;
    QCoreApplication::processEvents(flags);
    leave_idle_menu_bar();
    set_menu_open(menu_is_pulled_down() || focused_menu_bar());
}

Event QtEvents::poll() {
    if (queue_.empty()) pump(QEventLoop::AllEvents);
    if (queue_.empty()) return {};
    Event event = std::move(queue_.front());
    queue_.pop_front();
    return event;
}

void QtEvents::wait(int64_t microseconds) {
    if (!queue_.empty()) return;
    if (microseconds != NO_LIMIT) {
        limit_.start(
            std::chrono::ceil<std::chrono::milliseconds>(std::chrono::microseconds(microseconds)));
    }
    pump(QEventLoop::WaitForMoreEvents);
    limit_.stop();
}

void QtEvents::post_quit(int exit_code) { post(Event::Kind::quit, exit_code); }

void QtEvents::post(const Event& event) { queue_.push_back(event); }

void QtEvents::post(Event::Kind kind, int value) {
    Event event;
    event.kind = kind;
    event.value = value;
    post(event);
}

void QtEvents::post_once(Event::Kind kind) {
    const auto same = [kind](const Event& event) { return event.kind == kind; };
    if (std::ranges::none_of(queue_, same)) post(kind);
}

void QtEvents::set_menu_open(bool open) {
    if (std::exchange(menu_open_, open) == open) return;
    if (!sink_) return;
    open ? sink_->loop_begins() : sink_->loop_ends();
}

void QtEvents::menu_opens() {
    if (sink_) sink_->menu_opens();
}

void QtEvents::item_highlighted(int id) {
    if (sink_) sink_->item_highlighted(id);
}

void QtEvents::draw_status() {
    if (sink_) sink_->draw_status();
}

void QtEvents::paint(PaneId pane) {
    if (sink_) sink_->paint(pane);
}

void QtEvents::session_ends() {
    if (sink_) sink_->session_ends();
}

void QtEvents::set_pump_hook(std::function<void()> hook) { pump_hook_ = std::move(hook); }
