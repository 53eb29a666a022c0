#include "platform/qt/qt_events.h"

#include <QApplication>
#include <QMenu>
#include <QMenuBar>

#include <algorithm>
#include <utility>

namespace {

/// A menu is pulled down, or the menu bar has the keyboard.
bool menu_has_input() {
    return qobject_cast<QMenu*>(QApplication::activePopupWidget()) ||
           qobject_cast<QMenuBar*>(QApplication::focusWidget());
}

} // namespace

void QtEvents::pump(QEventLoop::ProcessEventsFlags flags) {
    if (std::exchange(found_empty_, false) && idle_hook_) idle_hook_();
    if (!queue_.empty()) return;
    QCoreApplication::processEvents(flags);
    set_menu_open(menu_has_input());
}

Event QtEvents::take() {
    Event event = std::move(queue_.front());
    queue_.pop_front();
    return event;
}

Event QtEvents::poll() {
    if (queue_.empty()) pump(QEventLoop::AllEvents);
    while (queue_.empty() && menu_open_) pump(QEventLoop::WaitForMoreEvents);
    if (!queue_.empty()) return take();
    found_empty_ = true;
    return {};
}

Event QtEvents::wait() {
    while (queue_.empty()) {
        found_empty_ = true;
        pump(QEventLoop::WaitForMoreEvents);
    }
    return take();
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
    post(open ? Event::Kind::menu_loop_enter : Event::Kind::menu_loop_exit);
}

void QtEvents::set_idle_hook(std::function<void()> hook) { idle_hook_ = std::move(hook); }
