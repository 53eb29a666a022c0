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

#include "wall/state_record.h"

#include <cstdint>

/// The counters of the controller, and where the beam stands.
struct beam_counters {
    int64_t time;   ///< processor cycle of the last catch-up
    double lp_accu; ///< low-pass average of the lines that a frame lacks
    /// Where in the frame storage the next eight pixels go: always a multiple of eight, which the
    /// storage is itself. A line starts at 379 + 144 at most: a frame lacks 289 lines at most, and
    /// half of them go above the picture. From there the beam only moves on, and goes back at the
    /// end of the storage, so that it never leaves it.
    uint32_t beam;
    int32_t vert_adj_average_lines;   ///< black lines above a short frame, which centre it
    int32_t video_update_line = -1;   ///< the line under the beam, from 0 after a frame's end
    uint32_t matrix_address;          ///< offset in the video RAM, 14 bits
    uint32_t matrix_latch;            ///< offset of the row's first cell
    uint32_t horizontal_sync_counter; ///< 0 while there is no sync
    uint32_t vertical_sync_counter;
    uint32_t odd_cycle; ///< processor cycle that is half a character clock
    uint8_t column;
    uint8_t row;            ///< 0-127
    uint8_t scan_line;      ///< within the row, 0-31
    uint8_t adjust_counter; ///< 0-31
    uint8_t blanking;       ///< bit 0 vertical, bit 1 horizontal
    uint8_t border = 1;     ///< the same
    uint8_t follows;        ///< the processor runs, and the beam behind it
    uint8_t unused;
};
extern beam_counters beam_state;
extern const state_record beam_record;

/// Runs processor and beam for one frame's budget of processor cycles. Frames are presented when
/// the vertical sync ends, independent of the budget. Returns what is left of it: more than 0 only
/// where the run has stopped at the armed breakpoint or a hit, and can be taken up from.
int32_t video_run_cycles(int32_t cycles);
/// One instruction of such a run.
int32_t video_step(int32_t cycles);
/// Runs the beam alone for `clocks` character clocks.
void video_do_cycles(uint32_t clocks);

inline constexpr auto& video_beam_follows = beam_state.follows;
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
