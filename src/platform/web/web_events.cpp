#include "platform/web/web_events.h"

#include <emscripten/emscripten.h>

#include <utility>

WebContext& web_context() {
    static WebContext context;
    return context;
}

Event WebEvents::poll() {
    if (context_.queue.empty()) return {};
    Event event = std::move(context_.queue.front());
    context_.queue.pop_front();
    return event;
}

extern "C" {

/// A message with a number: kind is an Event::Kind.
EMSCRIPTEN_KEEPALIVE void tarvelin_post(int kind, int value) {
    web_context().post(Event::Kind(kind), value);
}

EMSCRIPTEN_KEEPALIVE void tarvelin_session_ends() {
    if (web_context().sink) web_context().sink->session_ends();
}
}
