#include "time/history_events.h"

#include "time/deflate.h"
#include "time/event_code.h"
#include "z80/z80.h"

#include <algorithm>

namespace {

constexpr int64_t SEGMENT_FRAMES = 1000;
/// A frame that no events lead to ends with a moment that has this argument.
constexpr int32_t BREAK = 1;

bool ends_frame(const machine_event& event) {
    return event.kind == event_kind::frame_end || HistoryEvents::is_break(event);
}

} // namespace

void HistoryEvents::Plain::append(const machine_event& event) {
    events.push_back(event);
    if (ends_frame(event)) ends.push_back(events.size());
}

void HistoryEvents::append(const machine_event& event) {
    // Who looks back several times from one place notes it once.
    const machine_event* const last = open_.events.empty() ? nullptr : &open_.events.back();
    const bool is_noted = last && last->kind == event_kind::moment && last->kind == event.kind &&
                          last->cycle == event.cycle && last->pc == event.pc && !is_break(*last);
    if (!is_noted) open_.append(event);
}

bool HistoryEvents::is_break(const machine_event& event) {
    return event.kind == event_kind::moment && event.a == BREAK;
}

void HistoryEvents::append_break() {
    open_.events.resize(open_.end_of(last()));
    open_.append(
        {.kind = event_kind::moment, .a = BREAK, .cycle = z80_state.t_count, .pc = z80_state.pc});
}

void HistoryEvents::cut(int64_t frame, size_t done) {
    while (frame < open_.before) {
        const Segment& segment = segments_.back();
        open_ = {.before = segment.before};
        const bool is_needed = frame > segment.before || (frame == segment.before && done > 0);
        if (is_needed && !unpack(segment, open_).empty()) {
            frame = segment.before;
            done = 0;
        }
        bytes_ -= segment.packed.size() + sizeof(Segment);
        segments_.pop_back();
    }
    const size_t kept = open_.end_of(frame) + done;
    open_.ends.resize(size_t(frame - open_.before));
    open_.events.resize(std::min(kept, open_.events.size()));
    unpacked_ = {};
}

void HistoryEvents::pack() {
    if (open_.frames() < SEGMENT_FRAMES || open_.end_of(last()) != open_.events.size()) return;
    const std::vector<uint8_t> code = events_to_bytes(open_.events);
    segments_.push_back({.before = open_.before,
                         .frames = uint32_t(open_.frames()),
                         .size = uint32_t(code.size()),
                         .packed = deflated(code, DEFLATE_FAST)});
    bytes_ += segments_.back().packed.size() + sizeof(Segment);
    open_ = {.before = last()};
}

std::string HistoryEvents::unpack(const Segment& segment, Plain& to) {
    const auto code = inflated(segment.packed, segment.size);
    if (!code) return "the events are damaged";
    std::vector<machine_event> events;
    std::string trouble = events_from_bytes(*code, events);
    if (!trouble.empty()) return trouble;
    to = {.before = segment.before};
    for (const machine_event& event : events) to.append(event);
    return to.frames() == segment.frames ? "" : "events are missing";
}

const HistoryEvents::Plain* HistoryEvents::holder(int64_t frame, std::string& trouble) {
    if (frame >= open_.before) return &open_;
    const auto next = std::ranges::upper_bound(segments_, frame, {}, &Segment::before);
    const Segment& segment = *(next - 1);
    if (unpacked_.before != segment.before || unpacked_.events.empty()) {
        trouble = unpack(segment, unpacked_);
    }
    if (trouble.empty()) return &unpacked_;
    unpacked_ = {};
    return nullptr;
}

std::string HistoryEvents::between(int64_t from, int64_t to, machine_log& log, size_t& first) {
    std::string trouble;
    first = 0;
    for (int64_t at = from; at < to;) {
        const Plain* const plain = holder(at, trouble);
        if (!plain) return trouble;
        const int64_t end = std::min(to, plain->before + plain->frames());
        size_t begin = plain->end_of(at);
        // A replay looks at the event before the first one, too.
        if (at == from && begin > 0) {
            --begin;
            first = 1;
        }
        log.events.insert(log.events.end(), plain->events.begin() + ptrdiff_t(begin),
                          plain->events.begin() + ptrdiff_t(plain->end_of(end)));
        at = end;
    }
    return trouble;
}

void HistoryEvents::append_rest(machine_log& log) const {
    log.events.insert(log.events.end(), open_.events.begin() + ptrdiff_t(open_.end_of(last())),
                      open_.events.end());
}

int64_t HistoryEvents::unbroken(int64_t from, int64_t to) {
    std::string trouble;
    for (int64_t at = to; at > from; --at) {
        const Plain* const plain = holder(at - 1, trouble);
        if (!plain || plain->events[plain->end_of(at) - 1].kind != event_kind::frame_end) return at;
    }
    return from;
}
