#pragma once
/// The beam engine: the CRT controller's counters, one character clock at a time, beside the
/// processor, so that a change of memory, register or mode shows where the beam stands at the
/// beginning of the instruction that makes it. One character clock is two processor cycles.
///
/// The beam lags behind the running processor. It catches up when a frame's budget is used, and
/// when the bus announces a change of something that it has passed meanwhile.

#include <cstdint>

/// Runs processor and beam for one frame's budget of processor cycles. Frames are presented when
/// the vertical sync ends, independent of the budget. Returns what is left of it: more than 0 only
/// where the run has stopped at the armed breakpoint, and can be taken up from.
int32_t video_run_cycles(int32_t cycles);
/// One instruction of such a run.
int32_t video_step(int32_t cycles);
/// Runs the beam alone for `clocks` character clocks.
void video_do_cycles(uint32_t clocks);
/// Before the processor writes to the video RAM, colour RAM or character RAM.
void video_beam_before_write(uint32_t address);
/// Before an output to the CRT controller or the port FF latch.
void video_beam_before_output();
/// Writes to RAM below this address are announced: the end of the video RAM while the beam follows
/// the processor, else 0.
extern uint32_t video_beam_watched_end;
/// Forgets the vertical centring.
void video_beam_reset_centring();
