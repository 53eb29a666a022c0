#pragma once
/// Runs the live machine through what has happened, from the end of a frame on, to any place inside
/// of a frame. Nothing leaves the machine meanwhile.

#include "core/machine_events.h"
#include "time/history_events.h"

#include <cstdint>
#include <string>

enum class history_end : uint8_t {
    frame,  ///< at the end of a frame
    stands, ///< inside of one: something was hit, or the instructions have been run
    record, ///< the record ends here: this is the present
    broken, ///< the next frame begins with another state, to which no events lead
    failed  ///< see trouble()
};

/// By which loop watched runs are run: z80_run_watched, as soon as somebody looks for a moment. A
/// program that never does has not to be larger for it.
extern int32_t (*history_watched_loop)(int32_t budget);

class HistoryRun {
public:
    /// The live machine is at the end of the frame, and `picture` is the last that has shown one.
    void begin(int64_t frame, int64_t picture);

    /// To the end of the frame; with `watched` to what z80_watch hits, if that comes before. What
    /// the last instruction of the frame has hit is noted, too.
    history_end run_frame(HistoryEvents& events, bool watched);
    /// So many instructions, at most to the end of the frame; with 0 what was done to the machine
    /// at this place. What the last one hits is noted when `watched`.
    history_end run_steps(HistoryEvents& events, int instructions, bool watched);

    int64_t frame() const { return frame_; } ///< the last complete one
    /// Events of the frame behind it that are done.
    size_t done() const { return at_.next - frame_begin_; }
    int64_t picture() const { return picture_; } ///< last frame up to `frame` that has shown one
    /// The beam's counter of pictures at the end of `frame`.
    uint32_t pictures_shown() const { return pictures_shown_; }
    const std::string& trouble() const { return at_.trouble; }
    /// Called for each picture of the beam, when it is complete in the frame buffer.
    void (*show)(int) = [](int) {};

private:
    bool read_on(HistoryEvents& events);
    bool engine_changes() const;
    history_end end_of(HistoryEvents& events, machine_replay_end end);

    machine_log log_;
    machine_replay_position at_;
    size_t frame_begin_ = 0; ///< number of the first event behind `frame_`
    int64_t frame_ = 0;
    int64_t read_to_ = 0; ///< the frame whose end the log reaches; -1 begins to read
    int64_t picture_ = 0;
    uint32_t pictures_shown_ = 0;
};
