#include "time/history_moments.h"

#include "core/frame_driver.h"
#include "core/machine_mute.h"
#include "time/event_feed.h"
#include "time/history_record.h"
#include "z80/z80.h"
#include "z80/z80_watch.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace {

namespace parts = history_parts;

std::string last_trouble;

history_end failed(std::string trouble) {
    last_trouble = std::move(trouble);
    return history_end::failed;
}

/// The present is parked, once.
void leave() {
    parts::History& now = *parts::history;
    now.live ? event_feed_frame() : event_feed_past(now.reader);
    if (now.live) parts::leave_present();
    now.pending.clear();
}

/// Where the host has to follow another companion from the next frame on, such as to read another
/// tape, it follows it with the machine that had it.
void follow_next_frame() {
    parts::History& now = *parts::history;
    const HistoryState& state = *now.states.at(now.place.frame() + 1);
    if (state.frame <= now.place.frame() || state.companion == now.followed) return;
    machine_state here;
    machine_save(here);
    parts::load_and_follow(state);
    const MachineMute mute;
    machine_load(here);
}

/// The state that the next frame begins with.
history_end cross_break() {
    parts::History& now = *parts::history;
    const int64_t next = now.place.frame() + 1;
    const HistoryState& state = *now.states.at(next);
    if (state.frame != next) return failed("a state is missing");
    std::string trouble = parts::load_and_follow(state);
    if (!trouble.empty()) return failed(std::move(trouble));
    now.place.begin(state.frame, state.picture);
    z80_watch.last_pc = WATCH_NOWHERE;
    return history_end::frame;
}

history_end complete(history_end end) {
    if (end == history_end::broken) return cross_break();
    if (end == history_end::failed) return failed(parts::history->place.trouble());
    return end;
}

/// While it lives only the cycle is looked out for.
class OnlyCycle {
public:
    explicit OnlyCycle(int64_t cycle) : before_(std::make_unique<z80_watch_record>(z80_watch)) {
        z80_watch = {};
        z80_watch.until = cycle;
    }
    ~OnlyCycle() { z80_watch = *before_; }
    OnlyCycle(const OnlyCycle&) = delete;
    OnlyCycle& operator=(const OnlyCycle&) = delete;

private:
    std::unique_ptr<z80_watch_record> before_;
};

} // namespace

std::string history_go_back(int64_t frame) {
    if (!history_is_kept()) return "no history is kept";
    history_watched_loop = z80_run_watched;
    leave();
    const HistoryState* const state = parts::history->states.at(frame);
    if (!state) return "the history does not reach so far";
    std::string trouble = parts::load_and_follow(*state);
    if (!trouble.empty()) return trouble;
    parts::history->place.begin(state->frame, state->picture);
    z80_watch.last_pc = WATCH_NOWHERE;
    return {};
}

int64_t history_frame_before_cycle(int64_t cycle) {
    if (!history_is_kept()) return 0;
    const auto& states = parts::history->states.all();
    const auto last = std::find_if(states.rbegin(), states.rend(),
                                   [cycle](const auto& state) { return state.cycle <= cycle; });
    return last == states.rend() ? 0 : last->frame;
}

history_end history_run_frame(bool watched) {
    follow_next_frame();
    return complete(parts::history->place.run_frame(parts::history->events, watched));
}

history_end history_run_steps(int instructions, bool watched) {
    follow_next_frame();
    return complete(parts::history->place.run_steps(parts::history->events, instructions, watched));
}

history_end history_run_to_cycle(int64_t cycle) {
    if (z80_state.t_count < cycle) {
        const OnlyCycle until(cycle);
        const history_end end = history_run_frame(true);
        if (end != history_end::stands) return end;
    }
    return history_run_steps(0, false);
}

history_end history_run_to(const history_moment& moment) {
    history_end end = history_run_to_cycle(moment.cycle);
    while (end == history_end::stands && z80_state.t_count == moment.cycle &&
           z80_state.pc != moment.pc) {
        end = history_run_steps(1, false);
    }
    return end;
}

const std::string& history_trouble() { return last_trouble; }

void history_park(history_place& to) {
    machine_save(to.machine);
    to.run = parts::history->place;
}

void history_take_up(const history_place& from) {
    const MachineMute mute;
    machine_load(from.machine);
    parts::history->place = from.run;
    z80_watch.last_pc = WATCH_NOWHERE;
}

void history_show_place() {
    parts::History& now = *parts::history;
    now.picture_then = now.place.picture();
    now.pictures_shown_then = now.place.pictures_shown();
    parts::show_frame_buffer();
}

void history_show_present() {
    if (history_is_live()) return;
    parts::take_up_present();
    parts::show_frame_buffer();
}

history_moment history_moment_now() {
    return {history_position(), z80_state.t_count, z80_state.pc};
}

std::string history_show_moment(const history_moment& moment) {
    if (history_is_live() && moment == history_moment_now()) return {};
    std::string trouble = history_go_back(moment.frame);
    history_end end = history_end::frame;
    while (trouble.empty() && history_position() < moment.frame && end == history_end::frame) {
        end = history_run_frame(false);
    }
    if (trouble.empty() && end == history_end::frame) end = history_run_to(moment);
    if (end == history_end::failed) trouble = history_trouble();
    if (trouble.empty() && !(history_moment_now() == moment)) trouble = "there is no such moment";
    if (!trouble.empty() || end == history_end::record) {
        history_show_present();
    } else {
        history_show_place();
    }
    return trouble;
}

std::string history_trace(int64_t frame, const std::function<void()>& look) {
    if (!history_is_kept()) return "no history is kept";
    parts::History& now = *parts::history;
    now.live ? event_feed_frame() : event_feed_past(now.reader);
    const history_moment end = history_moment_now();
    machine_state here;
    machine_save(here);
    const HistoryState& state = *now.states.at(frame);
    HistoryRun place;
    std::string trouble = parts::load(state);
    history_end ran = trouble.empty() ? history_end::frame : history_end::failed;
    place.begin(state.frame, state.picture);
    while (ran == history_end::frame && place.frame() < frame) {
        ran = place.run_frame(now.events, false);
    }
    if (ran == history_end::frame) ran = place.run_steps(now.events, 0, false);
    const auto is_there = [&] {
        return place.frame() == end.frame && z80_state.t_count == end.cycle &&
               z80_state.pc == end.pc;
    };
    while ((ran == history_end::stands || ran == history_end::frame) && !is_there()) {
        look();
        ran = place.run_steps(now.events, 1, false);
        if (ran == history_end::frame) ran = place.run_steps(now.events, 0, false);
    }
    if (trouble.empty() && !is_there()) trouble = "the way to this moment is not known";
    const MachineMute mute;
    machine_load(here);
    return trouble;
}
