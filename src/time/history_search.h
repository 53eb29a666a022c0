#pragma once
/// Looks through the past for what z80_watch is armed for, piece by piece: forwards from a place to
/// another one, and backwards for the last hit before a moment.

#include "time/history_moments.h"
#include "z80/z80_watch.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

/// What is asked on the way.
struct HistoryLook {
    /// z80_watch has hits, and the machine is as it was then. The hit if one of them counts.
    std::function<std::optional<watch_hit>()> take_hits;
    /// A frame has ended; whether that counts.
    std::function<bool()> take_frame = [] { return false; };
    /// The next cycle, after now, at which to look: WATCH_NO_CYCLE for none.
    std::function<int64_t()> next_cycle = [] { return WATCH_NO_CYCLE; };
};

/// A hit, and where the machine is shown for it.
struct HistoryHit {
    /// Where PC came to the address or the cycle; else before the instruction.
    history_moment place;
    watch_hit hit;
};

/// Forwards through what happened.
class HistorySweep {
public:
    /// From the place where the machine is to `end`; what PC comes to at the end counts only when
    /// `arrives`. `found` hears of each hit that counts, and says whether to stop there.
    void begin(const history_moment& end, bool arrives, const HistoryLook* look,
               std::function<bool(const HistoryHit&)> found);
    /// About a frame, or to a hit. True while there is more.
    bool run_piece();
    bool is_stopped() const { return stopped_; }
    bool has_failed() const { return last_ == history_end::failed; }
    /// Whether the end of the record has been reached.
    bool is_at_record() const { return last_ == history_end::record; }

private:
    bool run_frame(int64_t until);
    void take(bool frame_ended);
    bool goes_on() const;
    bool run_steps();

    const HistoryLook* look_ = nullptr;
    std::function<bool(const HistoryHit&)> found_;
    history_moment end_;
    bool arrives_ = false;
    bool stopped_ = false;
    history_end last_ = history_end::stands;
};

/// Backwards: the last second first, then ever longer parts before it, each run forwards.
class HistorySearch {
public:
    /// Before `end`, at which the machine is. The history has to be kept. With `counts` each part
    /// is run twice, the first time only so that hits can be counted.
    void begin(const history_moment& end, HistoryLook look, bool counts = false);
    /// As that of a sweep.
    bool run_piece();
    /// Called when a part is about to be run, and when it has been; `counts` at the first of two
    /// times.
    std::function<void(bool counts)> part_begins = [](bool) {};
    std::function<void(bool counts)> part_ends = [](bool) {};
    const std::optional<HistoryHit>& found() const { return found_; }
    /// The end of the part that it was found in.
    const history_moment& part_end() const { return end_; }
    const std::string& trouble() const { return trouble_; }
    /// What has been looked through, 0 to 1.
    double progress() const;

private:
    bool begin_part();
    bool end_part();

    HistoryLook look_;
    HistorySweep sweep_;
    int64_t whole_ = 0;  ///< frames to be looked through
    history_moment end_; ///< of the part
    bool newest_ = true;
    int64_t length_ = 0; ///< frames of the part
    history_moment begin_;
    bool runs_ = false; ///< a part has begun
    bool counting_ = false;
    bool counts_twice_ = false;
    std::optional<HistoryHit> found_;
    std::string trouble_;
};
