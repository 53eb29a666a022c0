#pragma once
/// What the services of the page's host share. The layer counts in the page's own pixels, CSS's.

#include "platform/events.h"
#include "platform/geometry.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <utility>

struct WebContext {
    EventSink* sink = nullptr;
    std::deque<Event> queue;
    double ratio = 1; ///< pixels of the screen in one of the page's
    Size client;      ///< of the main window: what the page has below the menu
    bool shown = false;

    int pixels(int points) const { return int(std::lround(points * ratio)); }
    void post(Event event) { queue.push_back(std::move(event)); }
    void post(Event::Kind kind, int value = 0) { post(Event{.kind = kind, .value = value}); }
    /// Unless such a message waits already.
    void post_once(Event::Kind kind) {
        const auto same = [kind](const Event& event) { return event.kind == kind; };
        if (std::none_of(queue.begin(), queue.end(), same)) post(kind);
    }
};

/// There is one page.
WebContext& web_context();
