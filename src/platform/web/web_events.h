#pragma once
/// The messages of the page's one thread. Its script calls shell_turn and has the loop.

#include "platform/events.h"
#include "platform/web/web_context.h"

class WebEvents final : public Events {
public:
    explicit WebEvents(WebContext& context) : context_(context) {}
    void set_sink(EventSink& sink) override { context_.sink = &sink; }
    Event poll() override;
    void wait(int64_t /*microseconds*/) override {}
    void post_quit(int exit_code) override { context_.post(Event::Kind::quit, exit_code); }
    void post(const Event& event) override { context_.post(event); }

private:
    WebContext& context_;
};
