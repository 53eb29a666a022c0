#pragma once
/// AY-3-8910 / YM2149 sound generator, with the 32 envelope steps of the YM2149.
///
/// Three tone generators, one noise generator, one envelope, a mixer, and two 8-bit ports. In chip
/// clocks: a tone output toggles every 8 x period, so the pitch is clock / (16 x period); the noise
/// register shifts every 8 x period; one envelope ramp of 31 steps lasts 256 x period.
///
/// The chip is rendered at 48000 samples a second without filtering: a tone toggles at most once a
/// sample, and a generator is heard in the state it has at the sample. What the tones have above
/// 24 kHz is folded into the range that is heard: an energy of -21 dB of the tone at 440 Hz, and
/// of -7 dB at 8.7 kHz. Levels are unsigned; the sound core removes the offset.
///
/// Clean sound renders the same generators with band-limited steps, and what remains of the folding
/// is no more than the rounding of a sample. Pitches, levels and the state of the generators are
/// the same, and one can take over from the other at any time; every change is heard 15.5 samples
/// later, a third of a millisecond. A tone above 24 kHz is then a constant half of its level, and
/// noise loses what was folded: the shorter its period, the softer it is.
///
/// Registers keep what was written; a read masks the bits that the chip does not have. Registers
/// 14 and 15 are the two ports; bits 6 and 7 of register 7 make them outputs.

#include "sound/band_limited_steps.h"
#include "wall/state_record.h"

#include <array>
#include <cstdint>

constexpr uint32_t CHANNELS = 3;

/// Periods and counters have eight fraction bits.
struct tone_channel {
    uint32_t period = 0;
    uint8_t volume = 0;
    uint8_t envelope_mode = 0;
    std::array<uint8_t, 2> unused = {};
    uint32_t counter = 0;
    uint32_t output = 0; ///< the flip-flop
};

struct ay_state {
    std::array<tone_channel, CHANNELS> channel;
    uint32_t noise_period = 0x100;
    uint32_t noise_counter = 0x100;
    uint32_t noise_output = 0;
    uint32_t mixer = 0x3F; ///< bit n: no tone on channel n, bit n + 3: no noise
    uint32_t envelope_period = 0x100;
    uint32_t envelope_counter = 0;
    int32_t direction = 1; ///< of the envelope
    int32_t base = 0;      ///< its level
    uint8_t shape = 0;
    uint8_t selected = 0;
    std::array<uint8_t, 2> input_latch = {};
    std::array<uint8_t, 16> registers = {};

    uint32_t cycles_per_sample = 0;         ///< tone and noise, in 1/32 chip clock
    uint32_t envelopecycles_per_sample = 0; ///< in chip clocks
    uint32_t shift_reg = 0xFFFF;            ///< noise; only bits 13, 15 and 16 matter

    bool clean_sound = false;
    bool clean_runs = false; ///< clean_line goes on from the last sample
    std::array<uint8_t, 2> unused = {};
    int32_t clean_level = 0; ///< of the mix, after the last step
    step_line clean_line;
};
extern ay_state ay;
extern const state_record ay_record;

/// Clean sound, from the next sample on.
inline bool& ym2149_clean = ay.clean_sound;

/// Sets the chip's clock in Hz and resets it; disconnects the port A input. From the first call on
/// the chip is one of the sound core's sources.
void ym2149_init(uint32_t clock_hz);
/// Adds the chip to the sound core, once.
void ym2149_onetime_init();
/// Clock in Hz, up to 8388607, and samples per second.
void ym2149_set_clock(uint32_t clock_hz, uint32_t rate);
/// Silences the generators, selects register 0 and clears the port latches. The register file, the
/// noise register and the callbacks stay.
void ym2149_reset();
/// Selects the register that the next data access reaches.
void ym2149_register_select(uint8_t value);
/// Writes the selected register.
void ym2149_write(uint8_t value);
/// Writes register `reg`. Takes effect at the processor's present cycle. `reg` above 15 changes
/// only the register file, at `reg` modulo 16.
void ym2149_write_register(uint32_t reg, uint8_t value);
/// The selected register; a port in input mode without a callback reads FF.
uint8_t ym2149_read();
/// The byte last written to register `reg` modulo 16, without side effect.
uint8_t ym2149_peek_reg(uint32_t reg);

/// Port 0 is A, 1 is B; none disconnects.
void ym2149_set_port_write_callback(uint32_t port, void (*callback)(uint8_t value));
void ym2149_set_port_read_callback(uint32_t port, uint8_t (*callback)());

/// Renders the next `count` samples, 0 to 24573; with clean sound they overshoot, and are signed.
void ym2149_calc_output(uint16_t* buffer, uint32_t count);
