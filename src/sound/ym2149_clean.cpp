// Clean sound: goes from one change of the level to the next, each at the exact time at which a
// counter reaches its period, also between two samples. Times are in the unit of the tones'
// counters, from the start of the block. At the end of a block every counter is where the plain
// renderer leaves it.

#include "sound/band_limited_steps.h"
#include "sound/ym2149_generators.h"

#include <bit>

namespace {

constexpr int32_t NEVER = INT32_MAX;
/// So that a signed sample has room for what the beeper adds.
constexpr int32_t HIGHEST_SAMPLE = 28671;
constexpr uint32_t TIME_SHIFT = 24; ///< fraction bits of the factor that turns a time into samples

/// What comes next in a block. A generator is settled while its counter is below its period. One
/// that is not (a program has just made the period shorter) is stepped on every sample.
struct clean_block {
    uint32_t count = 0;
    int32_t sample = 0; ///< length of a sample
    int32_t end = 0;
    uint32_t tones = 0;  ///< bit n: channel n is open as far as its tone goes,
    uint32_t halves = 0; ///< and by half, since the tone is too fast to be heard
    std::array<int32_t, CHANNELS> tone_due = {NEVER, NEVER, NEVER};
    std::array<int32_t, CHANNELS> tone_period = {}; ///< of a settled tone that is heard, else 0
    uint32_t unsettled_tones = 0;
    uint32_t noise_bit = 0;
    int32_t noise_due = NEVER;  ///< next change of the bit
    int32_t next_shift = NEVER; ///< next step of the register
    uint32_t envelope = 0;      ///< amplitude
    int32_t envelope_due = NEVER;
    bool envelope_settled = false;
    int32_t origin = 0;  ///< a time,
    int32_t phase = 0;   ///< the envelope's counter at that time, less the ramps since,
    int32_t climbed = 0; ///< and the steps of the present ramp
    std::array<int32_t, 1 << CHANNELS> sums = {}; ///< of the levels, for each set of open channels
};

void sum_levels(clean_block& block) {
    const auto level = [&](uint32_t number) {
        const tone_channel& channel = ay.channel[number];
        const uint32_t height =
            channel.envelope_mode ? block.envelope : amplitude[2 * channel.volume];
        return int32_t(height >> (MIX_SHIFT + (block.halves >> number & 1)));
    };
    const int32_t a = level(0), b = level(1), c = level(2);
    block.sums = {0, a, b, a + b, c, a + c, b + c, a + b + c};
}

int32_t level_of(const clean_block& block) {
    const uint32_t open = block.noise_bit ? 7 : ay.mixer >> CHANNELS;
    return block.sums[block.tones & open];
}

/// Finds the next change of the tone, from the time `from`, at which its counter is up to date.
void follow_tone(clean_block& block, uint32_t number, int32_t from) {
    const tone_channel& channel = ay.channel[number];
    const bool settled = is_settled(channel.counter, channel.period, ay.cycles_per_sample);
    block.tone_period[number] = settled ? int32_t(channel.period) : 0;
    block.tone_due[number] =
        from + (settled ? int32_t(channel.period - channel.counter) : block.sample);
    block.unsettled_tones &= ~(1U << number);
    block.unsettled_tones |= uint32_t(!settled) << number;
}

void start_tone(clean_block& block, uint32_t number) {
    tone_channel& channel = ay.channel[number];
    const uint32_t tone_off = ay.mixer >> number & 1;
    const uint32_t too_fast = channel.period <= ay.cycles_per_sample && !tone_off;
    block.tones |= (channel.output | tone_off | too_fast) << number;
    block.halves |= too_fast << number;
    if (tone_off || too_fast || !is_heard(channel)) return skip_tone(channel, block.count);
    follow_tone(block, number, 0);
}

/// Toggles the settled tone if it is due. Without a branch, which the host could not predict.
void step_tone(clean_block& block, uint32_t number, int32_t now) {
    const uint32_t due = block.tone_due[number] <= now;
    block.tones ^= due << number;
    block.tone_due[number] += int32_t(0 - due) & block.tone_period[number];
}

void watch_unsettled_tones(clean_block& block, int32_t now) {
    for (uint32_t number = 0; number < CHANNELS; ++number) {
        const bool unsettled = (block.unsettled_tones >> number & 1) != 0;
        if (!unsettled || block.tone_due[number] > now) continue;
        count_tone(ay.channel[number]);
        block.tones &= ~(1U << number);
        block.tones |= ay.channel[number].output << number;
        follow_tone(block, number, now);
    }
}

/// Steps the noise register to the next change of its output, or to the end of the block.
void find_noise_change(clean_block& block) {
    const auto period = int32_t(ay.noise_period);
    for (;;) {
        // The bits that come next, the first on top; 1 where one differs from the output.
        const uint32_t unlike = (ay.shift_reg ^ (0 - block.noise_bit)) << 16;
        const auto steps = std::min(uint32_t(std::countl_zero(unlike)) + 1, STEPS_AT_ONCE);
        const int32_t time = block.next_shift + int32_t(steps - 1) * period;
        if (time > block.end) break;
        shift_noise(steps);
        block.next_shift = time + period;
        block.noise_due = time;
        if (ay.noise_output != block.noise_bit) return;
    }
    block.noise_due = NEVER;
    if (block.next_shift > block.end) return;
    // The steps that are left change nothing that is heard.
    const int32_t steps = (block.end - block.next_shift) / period + 1;
    shift_noise(uint32_t(steps));
    block.next_shift += steps * period;
}

void start_noise(clean_block& block) {
    block.noise_bit = ay.noise_output;
    if (!is_noise_heard()) return skip_noise(block.count);
    block.next_shift = int32_t(ay.noise_period - ay.noise_counter); // may lie before the block
    find_noise_change(block);
}

void find_envelope_step(clean_block& block) {
    const int32_t way = (block.climbed + 1) * int32_t(ay.envelope_period) - TOP_LEVEL * block.phase;
    const double time = double(block.sample) / (TOP_LEVEL * double(ay.envelopecycles_per_sample));
    block.envelope_due = block.origin + int32_t(way * time);
}

/// Starts to follow the present ramp, at a sample at which the counter is below its period.
void follow_ramp(clean_block& block) {
    block.envelope_settled = true;
    block.phase = int32_t(ay.envelope_counter);
    block.climbed = block.phase * TOP_LEVEL / int32_t(ay.envelope_period);
    find_envelope_step(block);
}

void start_envelope(clean_block& block) {
    if (!is_envelope_heard()) return skip_envelope(block.count);
    block.envelope = envelope_amplitude();
    if (!is_envelope_settled()) {
        block.envelope_due = block.sample;
    } else if (ay.direction && ay.envelopecycles_per_sample) {
        follow_ramp(block);
    } else {
        skip_envelope(block.count);
    }
}

void step_envelope(clean_block& block) {
    if (block.envelope_settled) {
        if (++block.climbed == TOP_LEVEL) {
            block.climbed = 0;
            block.phase -= int32_t(ay.envelope_period);
            ym2149_select_envelope_shape();
        }
        block.envelope = amplitude[(ay.base + ay.direction * block.climbed) & TOP_LEVEL];
        find_envelope_step(block);
    } else {
        count_envelope();
        block.envelope = envelope_amplitude();
        block.origin = block.envelope_due;
        block.envelope_due += block.sample;
        if (is_envelope_settled()) follow_ramp(block);
    }
    sum_levels(block);
}

clean_block start_clean_block(uint32_t count) {
    clean_block block;
    block.count = count;
    block.sample = int32_t(ay.cycles_per_sample);
    block.end = int32_t(count * ay.cycles_per_sample);
    start_envelope(block);
    start_noise(block);
    for (uint32_t number = 0; number < CHANNELS; ++number) start_tone(block, number);
    sum_levels(block);
    return block;
}

int32_t next_change(const clean_block& block) {
    const auto [a, b, c] = block.tone_due;
    return std::min(std::min(std::min(a, b), c), std::min(block.noise_due, block.envelope_due));
}

void leave_counters(const clean_block& block) {
    for (uint32_t number = 0; number < CHANNELS; ++number) {
        if (!block.tone_period[number]) continue;
        tone_channel& channel = ay.channel[number];
        channel.output = block.tones >> number & 1;
        channel.counter = uint32_t(block.end - block.tone_due[number]) + channel.period;
    }
    if (block.next_shift != NEVER) {
        ay.noise_counter = uint32_t(block.end - block.next_shift) + ay.noise_period;
    }
    if (block.envelope_settled) {
        const uint32_t samples = block.count - uint32_t(block.origin / block.sample);
        ay.envelope_counter = uint32_t(block.phase) + samples * ay.envelopecycles_per_sample;
    }
}

} // namespace

void ym2149_render_clean(uint16_t* buffer, uint32_t count) {
    clean_block block = start_clean_block(count);
    if (!ay.clean_runs) steps_start(ay.clean_line, ay.clean_level = level_of(block));
    ay.clean_runs = true;
    step_block steps;
    steps_begin(ay.clean_line, steps, count);
    const uint64_t scale =
        (uint64_t(STEPS_SAMPLE) << TIME_SHIFT) / std::max(ay.cycles_per_sample, 1U);
    for (int32_t now = 0; now <= block.end; now = std::max(next_change(block), 0)) {
        if (block.envelope_due <= now) step_envelope(block);
        if (block.noise_due <= now) {
            block.noise_bit ^= 1;
            find_noise_change(block);
        }
        step_tone(block, 0, now);
        step_tone(block, 1, now);
        step_tone(block, 2, now);
        if (block.unsettled_tones) watch_unsettled_tones(block, now);
        const int32_t level = level_of(block);
        if (level == ay.clean_level) continue;
        steps_add(steps, uint32_t(uint64_t(now) * scale >> TIME_SHIFT), level - ay.clean_level);
        ay.clean_level = level;
    }
    leave_counters(block);
    steps_take(ay.clean_line, steps, buffer, HIGHEST_SAMPLE);
}
