#pragma once
/// Frame driver: runs the machine by one video frame at a time, or by one instruction of a frame.

#include <cstdint>

/// Cycles by which the last frame overshot, 0 or negative; only the instruction engine carries it.
extern int32_t leftover;
/// The cycle-based beam engine instead of the instruction engine.
extern bool g_bCycleBasedEngine;

/// Cycles of one frame of the active configuration.
int32_t frame_budget();
/// Frames per second of the active configuration.
uint32_t frames_per_second();
/// Runs one emulated frame, or completes the one that has been left in the middle. 0 when it is
/// left at the breakpoint now, and the host wants the machine to stand there.
int machine_run();
/// Runs one instruction as part of a frame, whatever stands at it. 1 when it ended the frame.
int machine_step();
