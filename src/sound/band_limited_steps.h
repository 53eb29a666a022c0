#pragma once
/// Band-limited steps: samples of a level that changes at any time, also between two samples,
/// without the frequencies above half the sample rate, which would be heard as others below it.
///
/// A step is the integral of a sinc under a Kaiser window, 31 samples from its beginning to its
/// end: at 48000 samples a second flat up to 16 kHz, and 80 dB down from 24 kHz on. Its middle
/// comes 15.5 samples after its time. Steps are added as integers whose sum is exactly the step, so
/// a level that stays is met exactly, however many steps there were before.

#include <array>
#include <cstdint>

/// Samples that a step changes.
constexpr uint32_t STEP_TAPS = 32;
/// Most samples of one block.
constexpr uint32_t STEPS_BLOCK = 1024;
/// The times of a step have 16 fraction bits.
constexpr uint32_t STEPS_SAMPLE = 0x10000;

/// What the steps so far still do to the samples to come.
struct step_line {
    std::array<int32_t, STEP_TAPS> changes = {}; ///< of each sample to come, in 1/32768
    int32_t level = 0;                           ///< of the last sample, in 1/32768
};

/// The next samples of a line, while steps are being added.
struct step_block {
    uint32_t count;
    std::array<int32_t, STEPS_BLOCK + STEP_TAPS> changes;
};

/// Starts a line that has been at `level` (0 to 32767) all the time.
void steps_start(step_line& line, int32_t level);
/// Whether the steps so far bring the line to `level`, as those of any line do.
bool steps_come_to(const step_line& line, int32_t level);
/// Begins a block of the line's next `count` samples, at most STEPS_BLOCK.
void steps_begin(const step_line& line, step_block& block, uint32_t count);
/// Adds a step by `change`, -32767 to 32767, at `time` within the block. The levels that the line
/// comes to must stay within 0 to 32767.
void steps_add(step_block& block, uint32_t time, int32_t change);
/// Finishes the block: writes its samples to `buffer` as signed numbers, and moves the line behind
/// them. They may be below 0 or above the levels: a step overshoots by up to a tenth, and several
/// at once by more. None is above `top`.
void steps_take(step_line& line, const step_block& block, uint16_t* buffer, int32_t top);
