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

struct step_line {
    std::array<int32_t, 2048> changes = {}; ///< of each sample to come, in 1/32768
    uint32_t position = 0;                  ///< of the next sample in `changes`
    int32_t level = 0;                      ///< of the last sample, in 1/32768
};

/// Most samples of one `steps_take`.
constexpr uint32_t STEPS_BLOCK = 1024;
/// The times of a step have 16 fraction bits.
constexpr uint32_t STEPS_SAMPLE = 0x10000;

/// A line that has stood at `level` for ever.
void steps_start(step_line& line, int32_t level);
/// Adds a step by `change`, -32767 to 32767, at `time` after the last sample taken, at most
/// STEPS_BLOCK samples. The levels that the line comes to must stay within 0 to 32767.
void steps_add(step_line& line, uint32_t time, int32_t change);
/// The next `count` samples, as signed numbers: a step overshoots by up to a tenth, and several at
/// once by more. None is above `top`.
void steps_take(step_line& line, uint16_t* buffer, uint32_t count, int32_t top);
