#pragma once
/// The history of the live machine: every event, and a state now and then. Any moment of it is one
/// short run away, the same to the byte.
///
/// Frames are counted from the start of the history; frame 0 is the machine at its start. States
/// are kept about as far apart as ten milliseconds of running again take: by cycles of the machine,
/// and by the host's time when it runs faster than the original. While old frames run again,
/// nothing leaves the machine: what was written and printed then is not written again.
///
/// The past is only looked at until history_go_on is called, or a frame is run: that alone forgets
/// what came after.

#include "wall/shared_bytes.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

struct machine_event;

/// A place between two instructions, behind the end of the complete frame `frame`, with all done
/// that was done to the machine there. Several may be at the same cycle, since traps take no time.
struct history_moment {
    int64_t frame = 0;
    int64_t cycle = 0;
    uint16_t pc = 0;
    bool operator==(const history_moment&) const = default;
};

struct history_settings {
    /// Bytes that it may take. Beyond them states of the older time are dropped, so that it takes
    /// longer to come there; events are not.
    uint64_t limit = 200'000'000;
};

/// What the history asks and tells the program around it. Without one nothing is shown, and states
/// are spaced by the machine's cycles alone.
struct history_calls {
    int64_t (*nanoseconds)(); ///< of a clock of the host that never goes back
    /// What the host knows about the machine and the machine does not, such as the files of its
    /// disks. Kept with the frame from which on it holds.
    shared_bytes (*companion)();
    /// The present ends, since the past is going to be looked at, or begins again. What the present
    /// is about to write has to be written before, and nothing is written of the past.
    void (*present)(bool begins);
    /// The machine has become one of a frame with these companion bytes. What is done to it here
    /// stays only in the present, to which the call belongs when the history goes on.
    void (*follow)(const shared_bytes& companion);
    /// Another frame is in the machine, and its picture in the frame buffer: to be shown.
    void (*show)();
};
extern history_calls history_host;

/// Forgets what there was, and begins with the machine as it is.
void history_start(const history_settings& settings);
void history_set_limit(uint64_t bytes);
/// The past is forgotten; where it is being looked at, the machine stays as it is shown.
void history_stop();
bool history_is_kept();

/// To be called after each complete frame of the live machine. When the past was being looked at,
/// this frame follows the one that was shown. That the machine has become another one in some other
/// way, such as by a loaded state, is learned from the event feed; it counts as a frame, and what
/// was before stays in the history.
void history_frame_ran();
/// First and last frame. All between them can be shown.
int64_t history_first();
int64_t history_last();
/// The frame that the machine is at, or the last one, also when it has gone on from it by a part of
/// a frame.
int64_t history_position();
history_moment history_moment_now();
/// False while the past is being looked at.
bool history_is_live();

/// The machine becomes what it was at the end of that frame. With the last frame, or a later one,
/// it becomes what it was when it left the present. What was done to the machine while the past was
/// looked at is undone. Returns an empty text, or why the frame cannot be shown: then the present
/// is there.
std::string history_show(int64_t frame);
/// The same with a moment. The picture is that of the line engine, or what the beam has drawn; it
/// is not told when the present is the moment.
std::string history_show_moment(const history_moment& moment);
/// Plays on from here: what came after is forgotten. Inside of a frame, what has passed of it
/// stays.
void history_go_on();

/// Calls `look` with the machine as it was at the end of that frame, and then it is again as it is
/// now, the past or the present. Nobody is told or shown anything. Returns an empty text, or why it
/// cannot be had.
std::string history_visit(int64_t frame, const std::function<void()>& look);
/// The first frame from `from` on from which events alone lead to frame `to`: between them no other
/// state was loaded.
int64_t history_unbroken(int64_t from, int64_t to);
/// Appends the events from the end of one frame to the end of another. Returns an empty text, or
/// what is wrong.
std::string history_events(int64_t from, int64_t to, std::vector<machine_event>& events);

/// Bytes that the history takes, about.
uint64_t history_bytes();
/// States in it.
uint64_t history_states();
