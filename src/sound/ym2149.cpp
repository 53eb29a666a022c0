#include "sound/ym2149.h"

#include "sound/sound_core.h"
#include "sound/ym2149_generators.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>

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

constexpr uint32_t ALL_OFF = 0x3F; ///< mixer
constexpr uint8_t USE_ENVELOPE = 0x10;
constexpr uint8_t SHAPE_ATTACK = 0x04;
constexpr uint8_t KEEP_SHAPE = 0xFF;

constexpr uint32_t ONE = 0x100;
/// What a period of 0 counts as: a tone period as 1, the others as a half.
constexpr uint32_t SHORTEST_TONE = ONE;
constexpr uint32_t SHORTEST_NOISE = ONE / 2;
constexpr uint32_t SHORTEST_ENVELOPE = ONE / 2;

/// Bits that a read of each register returns.
constexpr std::array<uint8_t, 16> read_mask = {0xFF, 0x0F, 0xFF, 0x0F, 0xFF, 0x0F, 0x1F, 0xFF,
                                               0x1F, 0x1F, 0x1F, 0xFF, 0xFF, 0x0F, 0xFF, 0xFF};

constexpr state_field ay_fields[] = {
    {"channel", sizeof(ay_state::channel)},
    {"noise_period", sizeof(ay_state::noise_period)},
    {"noise_counter", sizeof(ay_state::noise_counter)},
    {"noise_output", sizeof(ay_state::noise_output)},
    {"mixer", sizeof(ay_state::mixer)},
    {"envelope_period", sizeof(ay_state::envelope_period)},
    {"envelope_counter", sizeof(ay_state::envelope_counter)},
    {"direction", sizeof(ay_state::direction)},
    {"base", sizeof(ay_state::base)},
    {"shape", sizeof(ay_state::shape)},
    {"selected", sizeof(ay_state::selected)},
    {"input_latch", sizeof(ay_state::input_latch)},
    {"registers", sizeof(ay_state::registers)},
    {"cycles_per_sample", sizeof(ay_state::cycles_per_sample)},
    {"envelopecycles_per_sample", sizeof(ay_state::envelopecycles_per_sample)},
    {"shift_reg", sizeof(ay_state::shift_reg)},
    {"clean_sound", sizeof(ay_state::clean_sound)},
    {"clean_runs", sizeof(ay_state::clean_runs)},
    {"unused", sizeof(ay_state::unused)},
    {"clean_level", sizeof(ay_state::clean_level)},
    {"clean_line", sizeof(ay_state::clean_line)},
};

/// Per sample, rounded to nearest.
constexpr uint32_t chip_cycles(uint32_t clock_hz, uint32_t rate) {
    return (clock_hz + rate / 2) / rate;
}

constexpr uint32_t LONGEST_TONE = 0xFFF00;
constexpr uint32_t LONGEST_NOISE = 0x1F00;
constexpr uint32_t LONGEST_ENVELOPE = 0xFFFF00;
constexpr uint32_t FASTEST_CHIP = 100'000'000; ///< Hz
constexpr int32_t HIGHEST_LEVEL = int32_t(CHANNELS * (amplitude.back() >> MIX_SHIFT));

bool is_possible(const tone_channel& channel) {
    return channel.period <= LONGEST_TONE && channel.volume <= 0x0F &&
           (channel.envelope_mode & ~USE_ENVELOPE) == 0 && channel.output <= 1;
}

bool is_between(uint32_t value, uint32_t low, uint32_t high) {
    return value >= low && value <= high;
}

const char* fault(const ay_state& chip) {
    return first_fault(
        {{"channel", std::ranges::all_of(chip.channel, is_possible)},
         {"noise_period", is_between(chip.noise_period, SHORTEST_NOISE, LONGEST_NOISE)},
         {"noise_counter", chip.noise_counter <= LONGEST_NOISE},
         {"noise_output", chip.noise_output <= 1},
         {"mixer", chip.mixer <= ALL_OFF},
         {"envelope_period", is_between(chip.envelope_period, SHORTEST_ENVELOPE, LONGEST_ENVELOPE)},
         {"direction", chip.direction >= -1 && chip.direction <= 1},
         {"base", chip.base >= 0 && chip.base <= TOP_LEVEL},
         {"shape", chip.shape <= 0x0F},
         // Without cycles, time would stand still.
         {"cycles_per_sample",
          is_between(chip.cycles_per_sample, 1, chip_cycles(FASTEST_CHIP, SOUND_RATE) * 32)},
         {"envelopecycles_per_sample",
          is_between(chip.envelopecycles_per_sample, 1, chip_cycles(FASTEST_CHIP, SOUND_RATE))},
         {"clean_sound", is_bool(chip.clean_sound)},
         {"clean_runs", is_bool(chip.clean_runs)},
         {"clean_level", chip.clean_level >= 0 && chip.clean_level <= HIGHEST_LEVEL},
         {"clean_line", steps_come_to(chip.clean_line, chip.clean_level)}});
}

// Wires.
std::array<uint8_t (*)(), 2> read_callback = {};
std::array<void (*)(uint8_t), 2> write_callback = {};
bool ym_onetime_init_done = false;
sound_source ym2149 = {"YM2149", nullptr, ym2149_calc_output, ym2149_reset};

// ---- rendering ---------------------------------------------------------------------------------

constexpr uint32_t BLOCK = FRAGMENT_SAMPLES;
using Block = std::array<uint32_t, BLOCK>;
Block envelope_level; ///< scratch: amplitude of each sample
Block noise;          ///< scratch: 0 or all ones

void render_envelope(uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        count_envelope();
        envelope_level[i] = envelope_amplitude();
    }
}

void render_noise(uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        ay.noise_counter += ay.cycles_per_sample;
        shift_noise(ay.noise_counter / ay.noise_period);
        ay.noise_counter %= ay.noise_period;
        noise[i] = 0 - ay.noise_output;
    }
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
        if (const auto callback = write_callback[reg - REG_PORT_A]) callback(value);
        break;
    default: break;
    }
}

bool is_output(uint32_t port) { return (ay.registers[REG_MIXER] >> (6 + port) & 1) != 0; }

} // namespace

ay_state ay;
const state_record ay_record = {"ay", &ay, sizeof ay, ay_fields, fault_of<ay_state, fault>};

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
    ay.cycles_per_sample = (clock_hz * 32 + rate / 2) / rate;
    ay.envelopecycles_per_sample = chip_cycles(clock_hz, rate);
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
    ay.input_latch[port] = read_callback[port] ? read_callback[port]() : 0xFF;
    return ay.input_latch[port];
}

uint8_t ym2149_peek_reg(uint32_t reg) { return ay.registers[reg % 16]; }

void ym2149_set_port_write_callback(uint32_t port, void (*callback)(uint8_t value)) {
    write_callback[port % 2] = callback;
}

void ym2149_set_port_read_callback(uint32_t port, uint8_t (*callback)()) {
    read_callback[port % 2] = callback;
}

void ym2149_calc_output(uint16_t* buffer, uint32_t count) {
    while (count) {
        const uint32_t part = std::min(count, BLOCK);
        if (ym2149_clean) {
            ym2149_render_clean(buffer, part);
        } else {
            render_block(buffer, part);
            ay.clean_runs = false;
        }
        buffer += part;
        count -= part;
    }
}
