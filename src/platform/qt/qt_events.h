#pragma once
#include "platform/events.h"

#include <QEventLoop>
#include <QTimer>

#include <deque>
#include <functional>

/// The program's own queue of messages. Qt is asked for events only when the queue is empty.
class QtEvents final : public Events {
public:
    QtEvents();

    void set_sink(EventSink& sink) override { sink_ = &sink; }
    Event poll() override;
    void wait(int64_t microseconds) override;
    void post_quit(int exit_code) override;
    void post(const Event& event) override;

    void post(Event::Kind kind, int value = 0);
    /// Appends a message, unless one of the kind waits already.
    void post_once(Event::Kind kind);
    /// Reports a menu's opening or closing, when that is a change.
    void set_menu_open(bool open);
    void menu_opens();
    void item_highlighted(int id);
    void draw_status();
    void paint(PaneId pane);
    void session_ends();
    /// Called before Qt is asked.
    void set_pump_hook(std::function<void()> hook);

private:
    void pump(QEventLoop::ProcessEventsFlags flags);

    std::deque<Event> queue_;
    EventSink* sink_ = nullptr;
    std::function<void()> pump_hook_;
    QTimer limit_; ///< of a wait; it only wakes Qt up
    bool menu_open_ = false;
};
