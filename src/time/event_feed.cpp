#include "time/event_feed.h"

#include <utility>
#include <vector>

namespace {

struct Reader {
    int number = 0;
    EventReader events;
    StateReader another_state;
};

struct {
    std::vector<Reader> readers;
    machine_log log;
    std::vector<machine_event> spare; ///< empty, with room for the events of a frame
    int numbers = 0;
} feed;

/// Events that come while a reader looks at these stay for the next time.
void hand_out() {
    if (feed.log.events.empty()) return;
    std::vector<machine_event> events = std::exchange(feed.log.events, std::move(feed.spare));
    for (const Reader& reader : feed.readers) reader.events(events);
    events.clear();
    feed.spare = std::move(events);
}

} // namespace

int event_feed_add(EventReader events, StateReader another_state) {
    event_feed_frame();
    if (feed.readers.empty()) machine_keep_log(&feed.log);
    feed.readers.push_back({++feed.numbers, std::move(events), std::move(another_state)});
    return feed.numbers;
}

void event_feed_remove(int reader) {
    event_feed_frame();
    std::erase_if(feed.readers, [reader](const Reader& one) { return one.number == reader; });
    if (!feed.readers.empty()) return;
    machine_keep_log(nullptr);
    feed.log.events.clear();
}

void event_feed_frame() {
    machine_log_moment();
    hand_out();
}

void event_feed_past(int reader) {
    const std::vector<machine_event> events = std::exchange(feed.log.events, {});
    for (const Reader& one : feed.readers) {
        if (one.number == reader && !events.empty()) one.events(events);
    }
}

void event_feed_another_state() {
    hand_out();
    for (const Reader& reader : feed.readers) {
        if (reader.another_state) reader.another_state();
    }
}
