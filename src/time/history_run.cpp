#include "time/history_run.h"

#include "cgenie/crtc.h"
#include "cgenie/video.h"
#include "core/frame_driver.h"
#include "core/machine_mute.h"
#include "wall/machine_host.h"
#include "z80/z80.h"
#include "z80/z80_watch.h"

#include <algorithm>

namespace {

constexpr int64_t FRAMES_AT_ONCE = 64; ///< that are read of the events

/// While it lives the breakpoint does not slow the processor down, and watches are looked out for
/// only when that is wanted.
class Quiet {
public:
    explicit Quiet(bool watched) {
        z80_state.breakpoint_enabled = 0;
        z80_watch.run = watched ? history_watched_loop : nullptr;
        if (watched) machine_host.watch_hit = [] { return 1; };
    }
    ~Quiet() {
        z80_state.breakpoint_enabled = enabled_;
        z80_watch.run = run_;
    }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;

private:
    const MachineMute mute_;
    int32_t enabled_ = z80_state.breakpoint_enabled;
    decltype(z80_watch.run) run_ = z80_watch.run;
};

} // namespace

int32_t (*history_watched_loop)(int32_t budget) = nullptr;

void HistoryRun::begin(int64_t frame, int64_t picture) {
    log_ = {};
    at_ = {};
    frame_begin_ = 0;
    frame_ = frame;
    read_to_ = -1;
    picture_ = picture;
    pictures_shown_ = crtc.frame_counter;
}

/// Reads the events of the next frames when there are no more. False when there are none.
bool HistoryRun::read_on(HistoryEvents& events) {
    const bool is_rest = read_to_ == events.last();
    if (at_.next < log_.events.size()) return true;
    if (read_to_ >= 0 && is_rest) return false;
    log_ = {};
    read_to_ = std::min(frame_ + FRAMES_AT_ONCE, events.last());
    at_.trouble = events.between(frame_, read_to_, log_, at_.next);
    if (read_to_ == events.last()) events.append_rest(log_);
    frame_begin_ = at_.next;
    return at_.trouble.empty() && at_.next < log_.events.size();
}

/// Whether the next frame begins with another engine.
bool HistoryRun::engine_changes() const {
    for (size_t n = at_.next; n < log_.events.size(); ++n) {
        if (log_.events[n].kind == event_kind::frame_end) return false;
        if (log_.events[n].kind == event_kind::engine) return true;
    }
    return false;
}

history_end HistoryRun::end_of(HistoryEvents& events, machine_replay_end end) {
    if (end == REPLAY_PARTED) return history_end::failed;
    if (end == REPLAY_STANDS) return history_end::stands;
    if (end == REPLAY_FRAME) {
        ++frame_;
        frame_begin_ = at_.next;
        if (!g_bCycleBasedEngine || crtc.frame_counter != pictures_shown_) picture_ = frame_;
        pictures_shown_ = crtc.frame_counter;
        // Part of the line engine's last picture stays in the beam's first one.
        if (read_on(events) && !g_bCycleBasedEngine && engine_changes()) video_render_frame();
        if (!trouble().empty()) return history_end::failed;
        return history_end::frame;
    }
    return frame_ == events.last() ? history_end::record : history_end::frame;
}

history_end HistoryRun::run_frame(HistoryEvents& events, bool watched) {
    const bool more = read_on(events);
    if (!trouble().empty()) return history_end::failed;
    if (!more) return history_end::record;
    if (HistoryEvents::is_break(log_.events[at_.next])) return history_end::broken;
    const Quiet quiet(watched);
    machine_host.frame = show;
    return end_of(events, machine_replay_frame(log_, at_));
}

history_end HistoryRun::run_steps(HistoryEvents& events, int instructions, bool watched) {
    const bool more = read_on(events);
    if (!trouble().empty()) return history_end::failed;
    if (!more) return history_end::record;
    if (HistoryEvents::is_break(log_.events[at_.next])) {
        return instructions == 0 ? history_end::stands : history_end::broken;
    }
    const Quiet quiet(watched);
    machine_host.frame = show;
    return end_of(events, machine_replay_steps(log_, at_, instructions));
}
