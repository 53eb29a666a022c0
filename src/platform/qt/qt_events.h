#pragma once
#include "platform/events.h"

#include <QEventLoop>

#include <deque>
#include <functional>

/// The program's own queue. Qt is asked for more only when it is empty. While a menu is open, poll
/// blocks, too: the program stands still.
class QtEvents final : public Events {
public:
    Event poll() override;
    Event wait() override;
    void post_quit(int exit_code) override;
    void post(const Event& event) override;

    void post(Event::Kind kind, int value = 0);
    /// Nothing when one of the kind waits already.
    void post_once(Event::Kind kind);
    /// Reports a menu's opening or closing, when that is a change.
    void set_menu_open(bool open);
    /// Called before Qt is asked again after the program has found the queue empty.
    void set_idle_hook(std::function<void()> hook);

private:
    void pump(QEventLoop::ProcessEventsFlags flags);
    Event take();

    std::deque<Event> queue_;
    std::function<void()> idle_hook_;
    bool menu_open_ = false;
    bool found_empty_ = false;
};
