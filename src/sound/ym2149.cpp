#include "sound/ym2149.h"

#include "sound/band_limited_steps.h"
#include "sound/sound_core.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>
#include <bit>

bool ym2149_clean = false;

namespace {

enum : uint32_t {
    REG_NOISE = 6,
    REG_MIXER = 7,
    REG_VOLUME_A = 8,
    REG_ENVELOPE_FINE = 11,
    REG_ENVELOPE_COARSE = 12,
    REG_SHAPE = 13,
    REG_PORT_A = 14,
    REG_PORT_B = 15
};

constexpr uint32_t CHANNELS = 3;
constexpr uint32_t ALL_OFF = 0x3F; ///< mixer
constexpr uint8_t USE_ENVELOPE = 0x10;
constexpr uint8_t SHAPE_ATTACK = 0x04;
constexpr uint8_t KEEP_SHAPE = 0xFF;
constexpr int32_t TOP_LEVEL = 31;

/// Periods and counters have eight fraction bits.
constexpr uint32_t ONE = 0x100;
/// What a period of 0 counts as: a tone period as 1, the others as a half.
constexpr uint32_t SHORTEST_TONE = ONE;
constexpr uint32_t SHORTEST_NOISE = ONE / 2;
constexpr uint32_t SHORTEST_ENVELOPE = ONE / 2;

/// Bits that a read of each register returns.
constexpr std::array<uint8_t, 16> read_mask = {0xFF, 0x0F, 0xFF, 0x0F, 0xFF, 0x0F, 0x1F, 0xFF,
                                               0x1F, 0x1F, 0x1F, 0xFF, 0xFF, 0x0F, 0xFF, 0xFF};

/// Output of the converter as measured on the chip, about 1.5 dB a step. A fixed volume takes every
/// second entry, the envelope all of them.
constexpr std::array<uint32_t, 32> amplitude = {
    0,     0,     190,   286,   375,   470,   560,   664,   866,   1130,  1515,
    1803,  2253,  2848,  3351,  3862,  4844,  6058,  7290,  8559,  10474, 12878,
    15297, 17787, 21500, 26172, 30866, 35676, 42664, 50986, 58842, 65535};
constexpr uint32_t MIX_SHIFT = 3; ///< keeps the sum of three channels positive as a signed sample

struct tone_channel {
    uint32_t period = 0;
    uint8_t volume = 0;
    uint8_t envelope_mode = 0;
    uint32_t counter = 0;
    uint32_t output = 0; ///< the flip-flop
};

struct {
    std::array<tone_channel, CHANNELS> channel;
    uint32_t noise_period = ONE;
    uint32_t noise_counter = ONE;
    uint32_t noise_output = 0;
    uint32_t mixer = ALL_OFF; ///< bit n: no tone on channel n, bit n + 3: no noise
    uint32_t envelope_period = ONE;
    uint8_t shape = 0;
    uint32_t envelope_counter = 0;
    int32_t direction = 1;
    int32_t base = 0;
    uint8_t selected = 0;
    std::array<uint8_t, 16> registers = {};
    std::array<uint8_t, 2> input_latch = {};
    std::array<uint8_t (*)(), 2> read_callback = {};
    std::array<void (*)(uint8_t), 2> write_callback = {};
} ay;

uint32_t cycles_per_sample = 0;         ///< tone and noise, in 1/32 chip clock
uint32_t envelopecycles_per_sample = 0; ///< in chip clocks
bool ym_onetime_init_done = false;
uint32_t shift_reg = 0xFFFF; ///< noise; only bits 13, 15 and 16 matter

sound_source ym2149 = {"YM2149", nullptr, ym2149_calc_output, ym2149_reset};

// ---- generators --------------------------------------------------------------------------------
// Each renders a block, or, where nobody hears it, only moves on by that many samples.

constexpr uint32_t BLOCK = FRAGMENT_SAMPLES;
using Block = std::array<uint32_t, BLOCK>;
Block envelope_level; ///< amplitude of each sample
Block noise;          ///< 0 or all ones

void ym2149_select_envelope_shape() {
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

/// A counter below its period, at most one pass a sample: many samples are then one division.
bool is_settled(uint32_t counter, uint32_t period, uint32_t per_sample) {
    return counter < period && per_sample <= period;
}

void count_envelope() {
    ay.envelope_counter += envelopecycles_per_sample;
    if (int32_t(ay.envelope_counter) < int32_t(ay.envelope_period)) return;
    ay.envelope_counter -= ay.envelope_period;
    ym2149_select_envelope_shape();
}

uint32_t envelope_amplitude() {
    const auto slope = uint32_t(ay.direction * TOP_LEVEL);
    const int32_t level =
        int32_t(ay.envelope_counter * slope) / int32_t(ay.envelope_period) + ay.base;
    return amplitude[level & TOP_LEVEL];
}

void render_envelope(uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        count_envelope();
        envelope_level[i] = envelope_amplitude();
    }
}

bool is_envelope_settled() {
    return is_settled(ay.envelope_counter, ay.envelope_period, envelopecycles_per_sample);
}

void skip_envelope(uint32_t count) {
    const uint32_t end = ay.envelope_counter + count * envelopecycles_per_sample;
    if (is_envelope_settled()) {
        ay.envelope_counter = end % ay.envelope_period;
        for (uint32_t pass = end / ay.envelope_period; pass; --pass) ym2149_select_envelope_shape();
        return;
    }
    for (uint32_t i = 0; i < count; ++i) count_envelope();
}

/// The noise register taps bits 16 and 13, so up to 14 steps depend on old bits alone and are one
/// operation.
constexpr uint32_t STEPS_AT_ONCE = 14;

void shift_noise(uint32_t steps) {
    while (steps) {
        const uint32_t part = std::min(steps, STEPS_AT_ONCE);
        const uint32_t fed = ~((shift_reg >> (17 - part)) ^ (shift_reg >> (14 - part)));
        ay.noise_output = shift_reg >> (16 - part) & 1;
        shift_reg = shift_reg << part | (fed & ((1U << part) - 1));
        steps -= part;
    }
}

void render_noise(uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        ay.noise_counter += cycles_per_sample;
        shift_noise(ay.noise_counter / ay.noise_period);
        ay.noise_counter %= ay.noise_period;
        noise[i] = 0 - ay.noise_output;
    }
}

void skip_noise(uint32_t count) {
    ay.noise_counter += count * cycles_per_sample;
    shift_noise(ay.noise_counter / ay.noise_period);
    ay.noise_counter %= ay.noise_period;
}

void count_tone(tone_channel& channel) {
    channel.counter += cycles_per_sample;
    if (channel.counter < channel.period) return;
    channel.counter -= channel.period;
    channel.output ^= 1;
}

template <class Level>
void add_tone(tone_channel& shared, uint32_t number, uint16_t* buffer, uint32_t count,
              Level level_at) {
    const uint32_t tone_off = ay.mixer >> number & 1;
    const uint32_t noise_off = 0 - (ay.mixer >> (number + CHANNELS) & 1);
    tone_channel channel = shared; // in registers
    for (uint32_t i = 0; i < count; ++i) {
        count_tone(channel);
        const uint32_t gate = (0 - (channel.output | tone_off)) & (noise[i] | noise_off);
        buffer[i] = uint16_t(buffer[i] + ((level_at(i) & gate) >> MIX_SHIFT));
    }
    shared = channel;
}

void skip_tone(tone_channel& channel, uint32_t count) {
    const uint32_t advance = count * cycles_per_sample;
    if (is_settled(channel.counter, channel.period, cycles_per_sample)) {
        const uint32_t end = channel.counter + advance;
        channel.counter = end % channel.period;
        channel.output ^= end / channel.period & 1;
    } else if (channel.period <= cycles_per_sample && channel.counter <= UINT32_MAX - advance) {
        channel.counter += advance - count * channel.period; // toggles on every sample
        channel.output ^= count & 1;
    } else {
        for (uint32_t i = 0; i < count; ++i) count_tone(channel);
    }
}

bool is_heard(const tone_channel& channel) { return channel.volume || channel.envelope_mode; }

bool hears_noise(uint32_t number) {
    return is_heard(ay.channel[number]) && !(ay.mixer >> (number + CHANNELS) & 1);
}

bool is_envelope_heard() {
    return std::ranges::any_of(
        ay.channel, [](const tone_channel& channel) { return channel.envelope_mode != 0; });
}

bool is_noise_heard() { return hears_noise(0) || hears_noise(1) || hears_noise(2); }

void render_block(uint16_t* buffer, uint32_t count) {
    is_envelope_heard() ? render_envelope(count) : skip_envelope(count);
    is_noise_heard() ? render_noise(count) : skip_noise(count);
    std::fill_n(buffer, count, uint16_t(0));
    for (uint32_t number = 0; number < CHANNELS; ++number) {
        tone_channel& channel = ay.channel[number];
        if (!is_heard(channel)) {
            skip_tone(channel, count);
        } else if (channel.envelope_mode) {
            add_tone(channel, number, buffer, count, [](uint32_t i) { return envelope_level[i]; });
        } else {
            const uint32_t level = amplitude[2 * channel.volume];
            add_tone(channel, number, buffer, count, [level](uint32_t) { return level; });
        }
    }
}

// ---- clean sound -------------------------------------------------------------------------------
// The same generators, followed from one change of the level to the next, at the time between two
// samples at which a counter reaches its period. Times are in the unit of the tones' counters and
// begin with the block. At the end of a block every counter is where the loops above leave it.

constexpr int32_t NEVER = INT32_MAX;
/// Leaves the beeper its room in a signed sample.
constexpr int32_t HIGHEST_SAMPLE = 28671;
constexpr uint32_t TIME_SHIFT = 24; ///< exactness of a time in samples

struct {
    bool runs = false;
    step_line line;
    int32_t level = 0; ///< of the mix, after the last step
} clean;

/// What comes next in a block. A generator whose counter is beyond its period is looked at on
/// every sample, as above, until the counter has caught up: it is not settled.
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
    for (uint32_t number = 0; number < CHANNELS; ++number) {
        const tone_channel& channel = ay.channel[number];
        const uint32_t height =
            channel.envelope_mode ? block.envelope : amplitude[2 * channel.volume];
        const uint32_t shift = MIX_SHIFT + (block.halves >> number & 1);
        const uint32_t bit = 1U << number;
        for (uint32_t set = bit; set < 2 * bit; ++set) {
            block.sums[set] = block.sums[set - bit] + int32_t(height >> shift);
        }
    }
}

int32_t level_of(const clean_block& block) {
    const uint32_t open = block.noise_bit ? 7 : ay.mixer >> CHANNELS;
    return block.sums[block.tones & open];
}

/// From a time on at which the channel's counter is up to date.
void follow_tone(clean_block& block, uint32_t number, int32_t from) {
    const tone_channel& channel = ay.channel[number];
    const bool settled = is_settled(channel.counter, channel.period, cycles_per_sample);
    block.tone_period[number] = settled ? int32_t(channel.period) : 0;
    block.tone_due[number] =
        from + (settled ? int32_t(channel.period - channel.counter) : block.sample);
    block.unsettled_tones &= ~(1U << number);
    block.unsettled_tones |= uint32_t(!settled) << number;
}

void start_tone(clean_block& block, uint32_t number) {
    tone_channel& channel = ay.channel[number];
    const uint32_t tone_off = ay.mixer >> number & 1;
    const uint32_t too_fast = channel.period <= cycles_per_sample && !tone_off;
    block.tones |= (channel.output | tone_off | too_fast) << number;
    block.halves |= too_fast << number;
    if (tone_off || too_fast || !is_heard(channel)) return skip_tone(channel, block.count);
    follow_tone(block, number, 0);
}

/// Toggles a settled tone that is due; without a branch, since nobody can foresee which one is.
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

/// Steps the register up to the next change of its output, or to the end.
void find_noise_change(clean_block& block) {
    const auto period = int32_t(ay.noise_period);
    for (;;) {
        const uint32_t unlike = (shift_reg ^ (0 - block.noise_bit)) << 16; // what comes, on top
        const auto steps = std::min(uint32_t(std::countl_zero(unlike)) + 1, STEPS_AT_ONCE);
        const int32_t time = block.next_shift + int32_t(steps - 1) * period;
        if (time > block.end) break;
        shift_noise(steps);
        block.next_shift = time + period;
        block.noise_due = time;
        if (ay.noise_output != block.noise_bit) return;
    }
    block.noise_due = NEVER;
    if (block.next_shift > block.end) return; // else the rest of the steps change nothing
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
    const double time = double(block.sample) / (TOP_LEVEL * double(envelopecycles_per_sample));
    block.envelope_due = block.origin + int32_t(way * time);
}

/// From a sample on at which the counter is below its period.
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
    } else if (ay.direction && envelopecycles_per_sample) {
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
    block.sample = int32_t(cycles_per_sample);
    block.end = int32_t(count * cycles_per_sample);
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
        ay.envelope_counter = uint32_t(block.phase) + samples * envelopecycles_per_sample;
    }
}

void render_clean_block(uint16_t* buffer, uint32_t count) {
    clean_block block = start_clean_block(count);
    if (!clean.runs) steps_start(clean.line, clean.level = level_of(block));
    clean.runs = true;
    const uint64_t scale = (uint64_t(STEPS_SAMPLE) << TIME_SHIFT) / std::max(cycles_per_sample, 1U);
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
        if (level == clean.level) continue;
        steps_add(clean.line, uint32_t(uint64_t(now) * scale >> TIME_SHIFT), level - clean.level);
        clean.level = level;
    }
    leave_counters(block);
    steps_take(clean.line, buffer, count, HIGHEST_SAMPLE);
}

// ---- registers ---------------------------------------------------------------------------------

uint32_t or_shortest(uint32_t period, uint32_t shortest) { return period ? period : shortest; }

// A period of 0 is stored as 1, and that 1 stays when the other half is written: a program that
// writes a fine 0 first, then the coarse byte, plays one period more.
void set_tone_fine(tone_channel& channel, uint32_t value) {
    channel.period = or_shortest((channel.period & 0xF0000) | value << 8, SHORTEST_TONE);
}

void set_tone_coarse(tone_channel& channel, uint32_t value) {
    channel.period = or_shortest((channel.period & 0xFF00) | (value & 0x0F) << 16, SHORTEST_TONE);
}

void set_envelope_period(uint32_t period) {
    ay.envelope_period = or_shortest(period << 8, SHORTEST_ENVELOPE);
}

void set_shape(uint8_t value) {
    if (value == KEEP_SHAPE) return;
    ay.shape = value & 0x0F;
    const bool attack = (value & SHAPE_ATTACK) != 0;
    ay.base = attack ? 0 : TOP_LEVEL;
    ay.direction = attack ? 1 : -1;
    ay.envelope_counter &= ONE - 1;
}

void apply(uint32_t reg, uint8_t value) {
    const uint32_t envelope = ay.envelope_period >> 8;
    switch (reg) {
    case 0:
    case 2:
    case 4: set_tone_fine(ay.channel[reg / 2], value); break;
    case 1:
    case 3:
    case 5: set_tone_coarse(ay.channel[reg / 2], value); break;
    case REG_NOISE:
        ay.noise_period = or_shortest(uint32_t(value) << 8 & 0x1F00, SHORTEST_NOISE);
        break;
    case REG_MIXER: ay.mixer = value & ALL_OFF; break;
    case REG_VOLUME_A:
    case REG_VOLUME_A + 1:
    case REG_VOLUME_A + 2:
        ay.channel[reg - REG_VOLUME_A].volume = value & 0x0F;
        ay.channel[reg - REG_VOLUME_A].envelope_mode = value & USE_ENVELOPE;
        break;
    case REG_ENVELOPE_FINE: set_envelope_period((envelope & 0xFF00) | value); break;
    case REG_ENVELOPE_COARSE: set_envelope_period((envelope & 0x00FF) | value << 8); break;
    case REG_SHAPE: set_shape(value); break;
    case REG_PORT_A:
    case REG_PORT_B:
        if (const auto callback = ay.write_callback[reg - REG_PORT_A]) callback(value);
        break;
    default: break;
    }
}

bool is_output(uint32_t port) { return (ay.registers[REG_MIXER] >> (6 + port) & 1) != 0; }

} // namespace

void ym2149_init(uint32_t clock_hz) {
    ym2149_set_clock(clock_hz, SOUND_RATE);
    ym2149_onetime_init();
    ym2149_reset();
    ym2149_set_port_read_callback(0, nullptr);
}

void ym2149_onetime_init() {
    if (!ym_onetime_init_done) sound_add_source(&ym2149);
    ym_onetime_init_done = true;
}

void ym2149_set_clock(uint32_t clock_hz, uint32_t rate) {
    cycles_per_sample = (clock_hz * 32 + rate / 2) / rate;
    envelopecycles_per_sample = (clock_hz + rate / 2) / rate;
}

void ym2149_reset() {
    ay.channel = {};
    ay.noise_period = ay.noise_counter = ONE;
    ay.noise_output = 0;
    ay.mixer = ALL_OFF;
    ay.envelope_period = ONE;
    ay.shape = 0;
    ay.envelope_counter = 0;
    ay.direction = 1;
    ay.base = 0;
    ay.selected = 0;
    ay.input_latch = {};
}

void ym2149_register_select(uint8_t value) { ay.selected = value; }

void ym2149_write(uint8_t value) { ym2149_write_register(ay.selected, value); }

void ym2149_write_register(uint32_t reg, uint8_t value) {
    sound_update(z80_state.t_count);
    apply(reg, value);
    ay.registers[reg % 16] = value;
}

uint8_t ym2149_read() {
    const uint32_t reg = ay.selected;
    if (reg > 15) return ay.registers[reg % 16];
    if (reg < REG_PORT_A) return ay.registers[reg] & read_mask[reg];
    const uint32_t port = reg - REG_PORT_A;
    if (is_output(port)) return ay.registers[reg];
    ay.input_latch[port] = ay.read_callback[port] ? ay.read_callback[port]() : 0xFF;
    return ay.input_latch[port];
}

uint8_t ym2149_peek_reg(uint32_t reg) { return ay.registers[reg % 16]; }

void ym2149_set_port_write_callback(uint32_t port, void (*callback)(uint8_t value)) {
    ay.write_callback[port % 2] = callback;
}

void ym2149_set_port_read_callback(uint32_t port, uint8_t (*callback)()) {
    ay.read_callback[port % 2] = callback;
}

void ym2149_calc_output(uint16_t* buffer, uint32_t count) {
    while (count) {
        const uint32_t part = std::min(count, BLOCK);
        if (ym2149_clean) {
            render_clean_block(buffer, part);
        } else {
            render_block(buffer, part);
            clean.runs = false;
        }
        buffer += part;
        count -= part;
    }
}
