#pragma once
/// Ways through the history for those who look for a moment of it, piece by piece. The live machine
/// is the one that moves: from the first of these calls on until history_show_place or
/// history_show_present nobody else may run it, and nothing of it is shown.

#include "core/machine_state.h"
#include "time/history.h"
#include "time/history_run.h"

#include <cstdint>
#include <functional>
#include <string>

/// The machine becomes what it was at the last frame at or before `frame` of which there is a
/// state. An empty text, or what is wrong.
std::string history_go_back(int64_t frame);
/// The frame of the last state at which this cycle had not come yet; 0 when there is none.
int64_t history_frame_before_cycle(int64_t cycle);
/// Forwards through what happened, as HistoryRun has it; other states that were loaded then are
/// loaded again. At history_end::record the machine is where it left the present.
history_end history_run_frame(bool watched);
history_end history_run_steps(int instructions, bool watched);
/// At most a frame: to the first instruction at the cycle or later, with what was done there; or to
/// the end of the frame.
history_end history_run_to_cycle(int64_t cycle);
/// The same to a moment of the frame that has begun, if the machine comes there: traps take no
/// time, so the cycle alone is not enough.
history_end history_run_to(const history_moment& moment);
/// Why the last one has failed.
const std::string& history_trouble();

/// A machine of the past that is parked to go on from there later, as long as what came before it
/// is not forgotten.
struct history_place {
    machine_state machine;
    HistoryRun run;
};
void history_park(history_place& to);
void history_take_up(const history_place& from);

/// The machine stays here, and is shown. A place at which the record ends is the present.
void history_show_place();
/// As history_show with the last frame, but the picture is as the machine has it.
void history_show_present();

/// As history_visit: runs the machine from the end of that frame to where it is now, and calls
/// `look` before each instruction. No other state may have been loaded since.
std::string history_trace(int64_t frame, const std::function<void()>& look);
