#include "time/history_search.h"

#include "core/frame_driver.h"
#include "z80/z80.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int64_t LONGEST_PART_SECONDS = 16;

} // namespace

// ---- forwards ----------------------------------------------------------------------------------

void HistorySweep::begin(const history_moment& end, bool arrives, const HistoryLook* look,
                         std::function<bool(const HistoryHit&)> found) {
    end_ = end;
    arrives_ = arrives;
    look_ = look;
    found_ = std::move(found);
    stopped_ = false;
    last_ = history_end::stands;
}

/// Whether there is something to be run.
bool HistorySweep::goes_on() const {
    return !stopped_ && last_ != history_end::failed && last_ != history_end::record;
}

void HistorySweep::take(bool frame_ended) {
    const int64_t frame = history_position() - (frame_ended ? 1 : 0);
    if (z80_watch.hit_count) {
        if (const auto hit = look_->take_hits()) {
            const bool arrived = hit->kind == watch_kind::execute || hit->kind == watch_kind::cycle;
            const history_moment place = {frame, hit->cycle, hit->pc};
            stopped_ = found_({arrived ? history_moment_now() : place, *hit});
        }
    }
    if (!frame_ended || !look_->take_frame()) return;
    const watch_hit hit = {
        .kind = watch_kind::cycle, .pc = z80_state.pc, .cycle = z80_state.t_count};
    stopped_ |= found_({history_moment_now(), hit});
}

bool HistorySweep::run_frame(int64_t until) {
    z80_watch.until = std::min(look_->next_cycle(), until);
    last_ = history_run_frame(true);
    take(last_ == history_end::frame);
    return goes_on();
}

/// Traps take no time: the end may be some instructions behind its cycle.
bool HistorySweep::run_steps() {
    const auto is_before = [this] {
        return z80_state.t_count == end_.cycle && z80_state.pc != end_.pc;
    };
    while (goes_on() && history_position() == end_.frame && is_before()) {
        if (z80_watch_arrives()) take(false);
        if (!goes_on()) return false;
        last_ = history_run_steps(1, true);
        take(last_ == history_end::frame);
    }
    const bool is_there = !stopped_ && !has_failed();
    if (arrives_ && is_there && z80_watch_arrives()) take(false);
    return false;
}

bool HistorySweep::run_piece() {
    if (!goes_on()) return false;
    const int64_t frame = history_position();
    if (frame < end_.frame) return run_frame(WATCH_NO_CYCLE);
    if (frame == end_.frame) last_ = history_run_steps(0, false);
    if (!goes_on()) return run_steps();
    if (frame == end_.frame && z80_state.t_count < end_.cycle) return run_frame(end_.cycle);
    return run_steps();
}

// ---- backwards ---------------------------------------------------------------------------------

void HistorySearch::begin(const history_moment& end, HistoryLook look, bool counts) {
    look_ = std::move(look);
    whole_ = end.frame;
    end_ = end;
    newest_ = true;
    length_ = frames_per_second();
    runs_ = false;
    counting_ = counts_twice_ = counts;
    found_.reset();
    trouble_.clear();
}

double HistorySearch::progress() const {
    return whole_ > 0 ? double(whole_ - end_.frame) / double(whole_) : 0;
}

bool HistorySearch::run_piece() {
    if (!trouble_.empty()) return false;
    if (!runs_) return begin_part();
    if (sweep_.run_piece()) return true;
    if (!sweep_.has_failed()) return end_part();
    trouble_ = history_trouble();
    return false;
}

bool HistorySearch::begin_part() {
    trouble_ = history_go_back(std::max<int64_t>(end_.frame - length_, 0));
    if (!trouble_.empty()) return false;
    history_run_steps(0, false);
    begin_ = history_moment_now();
    // What PC has come to here belongs to the part before, which knows where it came from.
    if (begin_.frame > 0) z80_watch.last_pc = z80_state.pc;
    runs_ = true;
    part_begins(counting_);
    sweep_.begin(end_, !newest_, &look_, [this](const HistoryHit& hit) {
        if (!counting_) found_ = hit;
        return false;
    });
    return true;
}

bool HistorySearch::end_part() {
    part_ends(counting_);
    runs_ = false;
    if (std::exchange(counting_, false)) return true; // and again
    if (found_ || begin_.frame == 0) return false;
    counting_ = counts_twice_;
    const int64_t longest = LONGEST_PART_SECONDS * int64_t(frames_per_second());
    if (!std::exchange(newest_, false)) length_ = std::min(length_ * 2, longest);
    end_ = begin_;
    return true;
}
