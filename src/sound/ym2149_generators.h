#pragma once
/// The generators of ym2149, as both of its renderers step them: one sample at a time, or, while a
/// generator is not heard, all samples of a block at once.

#include "sound/ym2149.h"

#include <algorithm>
#include <array>
#include <cstdint>

constexpr int32_t TOP_LEVEL = 31;

/// Output of the converter as measured on the chip, about 1.5 dB a step. A fixed volume takes every
/// second entry, the envelope all of them.
constexpr std::array<uint32_t, 32> amplitude = {
    0,     0,     190,   286,   375,   470,   560,   664,   866,   1130,  1515,
    1803,  2253,  2848,  3351,  3862,  4844,  6058,  7290,  8559,  10474, 12878,
    15297, 17787, 21500, 26172, 30866, 35676, 42664, 50986, 58842, 65535};
constexpr uint32_t MIX_SHIFT = 3; ///< keeps the sum of three channels positive as a signed sample

inline void ym2149_select_envelope_shape() {
    switch (ay.shape) {
    case 8: // falling saw
        ay.direction = -1;
        ay.base = TOP_LEVEL;
        break;
    case 10:
    case 14: // triangles
        ay.direction = -ay.direction;
        ay.base = TOP_LEVEL - ay.base;
        break;
    case 11:
    case 13: // hold at maximum
        ay.direction = 0;
        ay.base = TOP_LEVEL;
        break;
    case 12: // rising saw
        ay.direction = 1;
        break;
    default: // hold silent
        ay.direction = 0;
        ay.base = 0;
        break;
    }
}

/// Whether the counter is below its period and reaches it at most once a sample. Many samples can
/// then be counted by one division.
inline bool is_settled(uint32_t counter, uint32_t period, uint32_t per_sample) {
    return counter < period && per_sample <= period;
}

inline void count_envelope() {
    ay.envelope_counter += ay.envelopecycles_per_sample;
    if (int32_t(ay.envelope_counter) < int32_t(ay.envelope_period)) return;
    ay.envelope_counter -= ay.envelope_period;
    ym2149_select_envelope_shape();
}

inline uint32_t envelope_amplitude() {
    const auto slope = uint32_t(ay.direction * TOP_LEVEL);
    const int32_t level =
        int32_t(ay.envelope_counter * slope) / int32_t(ay.envelope_period) + ay.base;
    return amplitude[level & TOP_LEVEL];
}

inline bool is_envelope_settled() {
    return is_settled(ay.envelope_counter, ay.envelope_period, ay.envelopecycles_per_sample);
}

inline void skip_envelope(uint32_t count) {
    const uint32_t end = ay.envelope_counter + count * ay.envelopecycles_per_sample;
    if (is_envelope_settled()) {
        ay.envelope_counter = end % ay.envelope_period;
        for (uint32_t pass = end / ay.envelope_period; pass; --pass) ym2149_select_envelope_shape();
        return;
    }
    for (uint32_t i = 0; i < count; ++i) count_envelope();
}

/// The noise register feeds back bits 16 and 13. Up to 14 steps thus depend on old bits only, and
/// can be done in one operation.
constexpr uint32_t STEPS_AT_ONCE = 14;

inline void shift_noise(uint32_t steps) {
    while (steps) {
        const uint32_t part = std::min(steps, STEPS_AT_ONCE);
        const uint32_t fed = ~((ay.shift_reg >> (17 - part)) ^ (ay.shift_reg >> (14 - part)));
        ay.noise_output = ay.shift_reg >> (16 - part) & 1;
        ay.shift_reg = ay.shift_reg << part | (fed & ((1U << part) - 1));
        steps -= part;
    }
}

inline void skip_noise(uint32_t count) {
    ay.noise_counter += count * ay.cycles_per_sample;
    shift_noise(ay.noise_counter / ay.noise_period);
    ay.noise_counter %= ay.noise_period;
}

inline void count_tone(tone_channel& channel) {
    channel.counter += ay.cycles_per_sample;
    if (channel.counter < channel.period) return;
    channel.counter -= channel.period;
    channel.output ^= 1;
}

inline void skip_tone(tone_channel& channel, uint32_t count) {
    const uint32_t advance = count * ay.cycles_per_sample;
    if (is_settled(channel.counter, channel.period, ay.cycles_per_sample)) {
        const uint32_t end = channel.counter + advance;
        channel.counter = end % channel.period;
        channel.output ^= end / channel.period & 1;
    } else if (channel.period <= ay.cycles_per_sample && channel.counter <= UINT32_MAX - advance) {
        channel.counter += advance - count * channel.period; // toggles on every sample
        channel.output ^= count & 1;
    } else {
        for (uint32_t i = 0; i < count; ++i) count_tone(channel);
    }
}

inline bool is_heard(const tone_channel& channel) {
    return channel.volume || channel.envelope_mode;
}

inline bool hears_noise(uint32_t number) {
    return is_heard(ay.channel[number]) && !(ay.mixer >> (number + CHANNELS) & 1);
}

inline bool is_envelope_heard() {
    return std::ranges::any_of(
        ay.channel, [](const tone_channel& channel) { return channel.envelope_mode != 0; });
}

inline bool is_noise_heard() { return hears_noise(0) || hears_noise(1) || hears_noise(2); }

/// Renders the next `count` samples, up to STEPS_BLOCK, with band-limited steps.
void ym2149_render_clean(uint16_t* buffer, uint32_t count);
