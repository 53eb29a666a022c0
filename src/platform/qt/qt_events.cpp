#include "platform/qt/qt_events.h"

#include <QApplication>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

#include <algorithm>
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

void QtEvents::pump(QEventLoop::ProcessEventsFlags flags) {
    if (std::exchange(found_empty_, false) && idle_hook_) idle_hook_();
    if (!queue_.empty()) return;
    QCoreApplication::processEvents(flags);
    leave_idle_menu_bar();
    set_menu_open(menu_is_pulled_down() || focused_menu_bar());
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
