#pragma once
/// The debugger's ways through the past: backwards, forwards through what happened, and to any
/// moment of the history, in slices.
///
/// While work goes on the live machine is a tool of it: nobody else runs, shows or changes it.
/// Backwards, a moment is before the instruction that has hit something, so that going forward from
/// there hits it again.

#include "debugger/debugger.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

enum class PastWay : uint8_t {
    // ---- backwards ----
    back_step,
    back_over,     ///< before the CALL whose subroutine has just ended, else as back_step
    back_out,      ///< before the call of the present subroutine
    back_go,       ///< to the last hit of a breakpoint that stops
    back_to,       ///< to the last time PC was at `address`, or to a later hit
    back_to_write, ///< to the last write of the byte at `address`
    // ---- either ----
    to_frame, ///< the end of frame `at`
    to_cycle, ///< the first instruction at the cycle `at` or later
    to_present,
    // ---- forwards, only while the past is shown; each ends at the present ----
    step,
    step_over,
    step_out,
    go,
    run_to ///< `address`
};

struct PastGoal {
    PastWay way = PastWay::to_present;
    uint16_t address = 0;
    int64_t at = 0;
};

/// What is asked of the table of breakpoints. z80_watch is armed as for the live machine, `until`
/// excepted.
struct PastCalls {
    /// z80_watch has hits, and the machine is as it was then; frames are counted by
    /// history_moment_now. Counts them in the breakpoints as at any other time, but logs nothing.
    /// The first one that stops the machine, its condition included; nothing when none does.
    std::function<std::optional<DebugStop>()> take_hits;
    /// The same behind the end of a frame, for breakpoints of frames; may be empty.
    std::function<std::optional<DebugStop>()> take_frame = {};
    /// The next cycle at which a breakpoint of a cycle, frame or raster line has to be looked at;
    /// WATCH_NO_CYCLE without any.
    std::function<int64_t()> next_cycle;
    /// `hits` of all breakpoints in the order of the table, and back.
    std::function<std::vector<uint64_t>()> hits;
    std::function<void(const std::vector<uint64_t>&)> set_hits;
    /// Whether a condition depends on them.
    std::function<bool()> hits_matter;
};

/// Begins; what was being done is given up. The result may be there at once.
void past_start(const PastGoal& goal, const PastCalls& calls);
/// A slice of the work, at most about 20 ms. True while there is more.
bool past_turn();
bool past_is_working();
/// Of the work, 0 to 1.
std::optional<double> past_progress();
/// Once, when the work has ended: why the machine stands where it does.
std::optional<DebugStop> past_result();
/// Gives the work up: the machine is where it was before.
void past_cancel();
/// Whether the machine is one of the past.
bool past_is_shown();
/// The machine goes on from here: what came after is forgotten.
void past_branch();
/// The table of breakpoints or the machine has been changed: nothing that was found before is used
/// again.
void past_forget();
