#pragma once
/// The beam engine: the CRT controller's counters, one character clock at a time, beside the
/// processor, so that a change of memory, register or mode shows where the beam stands at the
/// beginning of the instruction that makes it. One character clock is two processor cycles.
///
/// To step the beam after every instruction would be slow. It lags behind instead, and catches up
/// where that makes a difference to what it shows:
///
///       last catch-up        instruction_start       t_count
///   ----------+----------------------+------------------+----------> T-states
///    shown    | the lag: memory and  | this instruction
///             | registers are still  | so far, about to
///             | what they were then  | change one of them
///             +----- catch up ------>+
///
///   who, in the order of a run     when                           does what
///   video_run_cycles, video_step   before the first instruction   follows from t_count on
///   z80_run_noting_starts          before every instruction       sets instruction_start
///   bus: video_beam_before_write   before a byte of video, colour catches up to it, if the lag
///                                  or character RAM changes       may show the byte
///   bus: video_beam_before_output  before a register of the CRTC  catches up to it
///                                  or the port FF latch changes
///   video_run_cycles, video_step   after the last instruction     catches up to t_count, and
///                                                                 follows no longer
///
/// Between runs there is no lag: a loader or a snapshot changes memory without announcing it.

#include <cstdint>

/// Runs processor and beam for one frame's budget of processor cycles. Frames are presented when
/// the vertical sync ends, independent of the budget. Returns what is left of it: more than 0 only
/// where the run has stopped at the armed breakpoint, and can be taken up from.
int32_t video_run_cycles(int32_t cycles);
/// One instruction of such a run.
int32_t video_step(int32_t cycles);
/// Runs the beam alone for `clocks` character clocks.
void video_do_cycles(uint32_t clocks);

extern bool video_beam_follows; ///< the processor runs, and the beam behind it
/// While it follows: catches up to the start of the present instruction.
void video_beam_catch_up();
/// The same if the lag may show the byte at `address`, else nothing.
void video_beam_catch_up_with(uint32_t address);

/// Before the processor changes the byte at `address`, 4000 to 7FFF or F000 to F7FF.
inline void video_beam_before_write(uint32_t address) {
    if (video_beam_follows) video_beam_catch_up_with(address);
}
/// Before an output to the CRT controller or the port FF latch.
inline void video_beam_before_output() {
    if (video_beam_follows) video_beam_catch_up();
}

/// Forgets the vertical centring.
void video_beam_reset_centring();
