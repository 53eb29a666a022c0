#pragma once
/// The messages of the program's one thread. Windows tells the window procedures, which only
/// queue what the program is to hear.

#include "platform/events.h"
#include "platform/win32/win32_context.h"

#include <memory>
#include <type_traits>

class Win32Events final : public Events {
public:
    explicit Win32Events(Win32Context& context);
    ~Win32Events() override;

    void set_sink(EventSink& sink) override { context_.sink = &sink; }
    Event poll() override;
    void wait(int64_t microseconds) override;
    void post_quit(int exit_code) override { context_.post(Event::Kind::quit, exit_code); }
    void post(const Event& event) override { context_.post(event); }

private:
    struct Closer {
        void operator()(HANDLE handle) const { CloseHandle(handle); }
    };

    void take_messages();
    bool dialog_takes(MSG& message) const;

    Win32Context& context_;
    std::unique_ptr<std::remove_pointer_t<HANDLE>, Closer> timer_;
    bool coarse_timer_ = false; ///< the system's ticks are made shorter while the program runs
};
