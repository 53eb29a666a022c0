#pragma once
/// Frame driver: runs the machine by one video frame at a time, or by one instruction of a frame.

#include "wall/state_record.h"

#include <cstdint>

struct frame_record {
    /// Cycles by which the last frame overshot, 0 or negative; only the instruction engine carries
    /// it.
    int32_t leftover = 0;
    int32_t left = 0; ///< cycles of the frame that has begun
    uint8_t begun = 0;
    bool cycle_based = false;
    uint8_t unused[2] = {};
};
extern frame_record frame_state;
extern const state_record frame_state_record;

inline int32_t& leftover = frame_state.leftover;
/// The cycle-based beam engine instead of the instruction engine. Changed between frames only.
inline bool& g_bCycleBasedEngine = frame_state.cycle_based;

/// Cycles of one frame of the active configuration.
int32_t frame_budget();
/// Frames per second of the active configuration.
uint32_t frames_per_second();
/// How a run has ended.
enum machine_run_end : int {
    MACHINE_STANDS, ///< in a frame, at the breakpoint or a hit, or behind a step
    MACHINE_FRAME,  ///< at the end of a frame
    MACHINE_WAITS   ///< in the middle of a frame, for machine_host.save_question to be answered
};
/// Runs one emulated frame, or completes the one that has been left in the middle. MACHINE_STANDS
/// when it has come to the breakpoint, or has hit something (z80/z80_watch.h), and the host wants
/// the machine to stand there. Behind the last instruction of a frame it is MACHINE_FRAME: the
/// frame is then complete, and the host, which was asked, knows that the machine is to stand.
int machine_run();
/// Runs one instruction as part of a frame, also one with a breakpoint. Nobody is told what it
/// hits.
int machine_step();
