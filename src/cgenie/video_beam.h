#pragma once
/// The beam engine: the CRT controller's counters, one character clock at a time, interleaved with
/// the processor instruction by instruction, so that a change of memory, register or mode shows
/// where the beam stands. One character clock is two processor cycles.

#include <cstdint>

/// Runs processor and beam for one frame's budget of processor cycles. Frames are presented when
/// the vertical sync ends, independent of the budget. Returns what is left of it: more than 0 only
/// where the run has stopped at the armed breakpoint, and can be taken up from.
int32_t video_run_cycles(int32_t cycles);
/// One instruction of such a run.
int32_t video_step(int32_t cycles);
/// Runs the beam alone for `clocks` character clocks.
void video_do_cycles(uint32_t clocks);
/// Forgets the vertical centring.
void video_beam_reset_centring();
