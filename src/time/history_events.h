#pragma once
/// All events of a history, frame by frame: packed in segments of some hundred frames, the last
/// ones as they came.

#include "core/machine_events.h"

#include <cstdint>
#include <string>
#include <vector>

class HistoryEvents {
public:
    /// The last complete frame. Frame 0 has no events.
    int64_t last() const { return open_.before + open_.frames(); }
    /// Appends an event; each frame_end completes a frame.
    void append(const machine_event& event);
    /// Appends a frame that no events lead to: another state has been loaded. What came behind the
    /// last complete frame is forgotten.
    void append_break();
    /// Forgets what came after this frame and the first `done` events of the next one.
    void cut(int64_t frame, size_t done);
    /// Packs what has come to the length of a segment. To be called between frames.
    void pack();
    /// The events from the end of one frame to the end of another: number `first` of the log and
    /// those behind. Returns an empty text, or what is wrong.
    std::string between(int64_t from, int64_t to, machine_log& log, size_t& first);
    /// Appends those behind the last complete frame.
    void append_rest(machine_log& log) const;
    /// Whether it stands for a frame that no events lead to.
    static bool is_break(const machine_event& event);
    /// The first frame from `from` on from which events lead to `to`: between them no other state
    /// was loaded.
    int64_t unbroken(int64_t from, int64_t to);
    uint64_t bytes() const { return bytes_ + open_.events.size() * sizeof(machine_event); }

private:
    struct Segment {
        int64_t before = 0; ///< the frame that its events follow
        uint32_t frames = 0;
        uint32_t size = 0; ///< bytes that it unpacks to
        std::vector<uint8_t> packed;
    };
    /// Events that are not packed. `ends` has how many there are up to the end of each frame.
    struct Plain {
        int64_t before = 0;
        std::vector<machine_event> events = {};
        std::vector<size_t> ends = {};
        int64_t frames() const { return int64_t(ends.size()); }
        size_t end_of(int64_t frame) const {
            return frame <= before ? 0 : ends[size_t(frame - before - 1)];
        }
        void append(const machine_event& event);
    };

    static std::string unpack(const Segment& segment, Plain& to);
    /// The plain events of the segment that has the frame after this one; null when it is damaged.
    const Plain* holder(int64_t frame, std::string& trouble);

    std::vector<Segment> segments_;
    Plain open_;
    Plain unpacked_; ///< the segment that was looked at last
    uint64_t bytes_ = 0;
};
