#include "sound/ym2149.h"

#include "sound/beeper.h"
#include "sound/scripted_driver.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {
constexpr uint32_t CLOCK = 2216750;
/// One sample is 2 chip clocks: a tone toggles every 4 periods, a ramp lasts 128.
constexpr uint32_t SLOW_CLOCK = 96000;

/// Levels of the converter.
constexpr uint32_t LEVELS[32] = {0,     0,     190,   286,   375,   470,   560,   664,
                                 866,   1130,  1515,  1803,  2253,  2848,  3351,  3862,
                                 4844,  6058,  7290,  8559,  10474, 12878, 15297, 17787,
                                 21500, 26172, 30866, 35676, 42664, 50986, 58842, 65535};
constexpr uint16_t FULL = 7355; // 58842 / 8
constexpr double TWO_PI = 6.283185307179586;

class Ym2149 : public testing::Test {
protected:
    static void power_on(uint32_t clock) {
        z80_state = {}; // time stands still: no sample but the test's own
        ym2149_init(clock);
        ym2149_set_port_read_callback(1, nullptr);
        for (uint32_t port : {0, 1}) ym2149_set_port_write_callback(port, nullptr);
    }
    static void write(std::initializer_list<std::pair<uint32_t, uint32_t>> registers) {
        for (const auto& [reg, value] : registers) ym2149_write_register(reg, uint8_t(value));
    }
    static std::vector<uint16_t> samples(uint32_t count) {
        std::vector<uint16_t> result(count);
        ym2149_calc_output(result.data(), count);
        return result;
    }
    static uint32_t changes(const std::vector<uint16_t>& stream) {
        uint32_t count = 0;
        for (size_t i = 1; i < stream.size(); ++i) count += stream[i] != stream[i - 1];
        return count;
    }
    static uint8_t read(uint8_t reg) {
        ym2149_register_select(reg);
        return ym2149_read();
    }
    void TearDown() override {
        ay = {};
        power_on(CLOCK);
    }
};

TEST_F(Ym2149, TonePitchIsClockOver16Periods) {
    for (uint32_t channel = 0; channel < 3; ++channel) {
        for (const uint32_t period : {6U, 7U, 25U, 254U, 255U, 256U, 1040U, 4095U}) {
            power_on(CLOCK);
            write({{2 * channel + 1, 0xF0 | period >> 8}, {2 * channel, period & 0xFF}});
            write({{2 * channel + 1, 0xF0 | period >> 8}}); // keeps the fine byte
            write({{7, 0x3F ^ (1 << channel)}, {8 + channel, 15}});
            const double expected = 10.0 * CLOCK / (8 * period); // toggles in ten seconds
            EXPECT_NEAR(changes(samples(480000)), expected, 1 + expected * 2e-4)
                << channel << ", period " << period;
        }
    }
    for (const uint32_t period : {0U, 1U, 5U}) { // faster than the samples: every one
        power_on(CLOCK);
        write({{0, period}, {1, 0}, {7, 0x3E}, {8, 15}});
        EXPECT_EQ(changes(samples(4801)), 4800U) << period;
    }
    power_on(SLOW_CLOCK); // a fine 0 becomes 1 and stays so under the coarse byte: 257
    write({{0, 0}, {1, 1}, {7, 0x3E}, {8, 15}});
    EXPECT_EQ(changes(samples(257 * 4 * 50 + 1)), 50U);
    for (const uint32_t period : {0U, 1U, 2U, 3U, 4095U}) {
        power_on(SLOW_CLOCK);
        write({{0, period & 0xFF}, {1, period >> 8}, {7, 0x3E}, {8, 15}});
        const auto stream = samples(60000);
        const uint32_t half = 4 * (period ? period : 1);
        for (uint32_t i = 0; i < stream.size(); ++i) {
            ASSERT_EQ(stream[i], (i + 1) / half % 2 ? FULL : 0) << period << ", " << i;
        }
    }
}

/// The noise register feeds back NOT (bit 16 xor bit 13) and puts out bit 15, so every bit is the
/// inverted sum of the ones 17 and 14 steps before.
TEST_F(Ym2149, NoiseSequenceAndStepRate) {
    power_on(192000); // with period 0 one step a sample
    write({{6, 0}, {7, 0x37}, {8, 15}});
    std::vector<bool> bits;
    for (const uint16_t sample : samples(18)) bits.push_back(sample != 0);
    bits.erase(bits.begin()); // the first sample counts from the reset's full period: 3 steps
    const auto bit = [&](size_t n) {
        while (bits.size() <= n) {
            bits.push_back(bits[bits.size() - 17] == bits[bits.size() - 14]);
        }
        return bool(bits[n]);
    };
    size_t step = 17; // steps taken since the first bit kept
    for (const uint32_t clock : {CLOCK, SLOW_CLOCK, 8388607U}) {
        for (const uint32_t period : {0U, 1U, 2U, 16U, 31U}) {
            power_on(clock);
            write({{6, 0xE0 | period}, {7, 0x37}, {8, 15}});
            const uint64_t per_sample = std::lround(clock * 32.0 / 48000);
            const uint64_t length = period ? 256 * period : 128;
            const auto stream = samples(20000);
            for (size_t i = 0; i < stream.size(); ++i) {
                const size_t steps = (256 + (i + 1) * per_sample) / length;
                ASSERT_EQ(stream[i] != 0, steps && bit(step + steps - 1))
                    << clock << ", period " << period << ", sample " << i;
            }
            const double in_all = double((256 + stream.size() * per_sample) / length);
            const double expected = clock * (20000 / 48000.0) / (8 * (period ? period : 0.5));
            EXPECT_NEAR(in_all, expected, 2 + expected * 2e-3);
            step += size_t(in_all);
        }
    }
    // Unheard, it runs on.
    write({{8, 0}});
    const auto unheard = samples(7777);
    write({{8, 15}});
    const uint64_t per_sample = std::lround(8388607 * 32.0 / 48000);
    const size_t before = (256 + 20000 * per_sample) / (31 * 256);
    const size_t after = (256 + 27778 * per_sample) / (31 * 256);
    EXPECT_EQ(samples(1)[0] != 0, bit(step + after - before - 1));
    EXPECT_EQ(changes(unheard), 0U);
}

/// Each character is one ramp: rising, falling, silent or at maximum.
TEST_F(Ym2149, EnvelopeShapes) {
    constexpr const char* curves[16] = {
        "\\0000",     "\\0000", "\\0000",   "\\0000", "/0000", "/0000", "/0000",   "/0000",
        "\\\\\\\\\\", "\\0000", "\\/\\/\\", "\\1111", "/////", "/1111", "/\\/\\/", "/0000"};
    for (const uint32_t period : {1U, 0U, 5U, 0x0123U}) {
        const uint32_t length = period ? 256 * period : 128; // chip clocks
        for (uint32_t shape = 0; shape < 16; ++shape) {
            power_on(SLOW_CLOCK);
            write({{11, period & 0xFF}, {12, period >> 8}, {8, 0x1F}, {13, 0xE0 | shape}});
            const auto stream = samples(length / 2 * 5 - 1);
            for (uint32_t i = 0; i < stream.size(); ++i) {
                const uint32_t clocks = 2 * (i + 1);
                const uint32_t climbed = 31 * (clocks % length) / length;
                const char ramp = curves[shape][clocks / length];
                const uint32_t level = ramp == '/'    ? climbed
                                       : ramp == '\\' ? 31 - climbed
                                       : ramp == '1'  ? 31
                                                      : 0;
                ASSERT_EQ(stream[i], LEVELS[level] / 8)
                    << "shape " << shape << ", period " << period << ", sample " << i;
            }
        }
    }
}

TEST_F(Ym2149, EnvelopeRestartsFromItsFraction) {
    power_on(SLOW_CLOCK);
    write({{11, 4}, {8, 0x10}, {13, 12}});
    samples(250);      // 500 of 1024 clocks
    write({{13, 12}}); // 244 stay
    EXPECT_EQ(samples(1)[0], LEVELS[31 * 246 / 1024] / 8);
    samples(27);
    write({{13, 0xFF}}); // changes nothing at 300 clocks
    EXPECT_EQ(samples(1)[0], LEVELS[31 * 302 / 1024] / 8);
    EXPECT_EQ(read(13), 0x0F);
    write({{13, 8}});
    EXPECT_EQ(samples(1)[0], LEVELS[31 - 31 * 48 / 1024] / 8);
}

TEST_F(Ym2149, MixerAndVolumes) {
    power_on(SLOW_CLOCK);
    for (uint32_t volume = 0; volume < 16; ++volume) {
        write({{8, volume}, {9, 0xE0 | volume}, {10, volume}});
        EXPECT_EQ(samples(1)[0], LEVELS[2 * volume] / 8 * 3) << volume;
    }
    write({{8, 0}, {9, 0}});
    EXPECT_EQ(samples(1)[0], FULL);
    write({{8, 0x10}, {9, 0x10}, {10, 0x10}, {13, 13}});
    samples(200);
    EXPECT_EQ(samples(1)[0], 24573) << "three channels at level 31";

    // Tone and noise together: the tone is heard where the noise is high. Period 31 of the noise is
    // 124 samples, of the tone 4.
    power_on(SLOW_CLOCK);
    write({{0, 1}, {6, 31}, {7, 0x36}, {8, 15}, {9, 0}});
    const auto both = samples(124 * 200);
    uint32_t high = 0, low = 0;
    for (size_t i = 124; i + 4 < both.size(); i += 4) {
        (both[i] != both[i + 4] ? high : low) += 1;
    }
    EXPECT_GT(high, 1000U);
    EXPECT_GT(low, 1000U);
}

TEST_F(Ym2149, UnheardGeneratorsKeepTime) {
    constexpr uint32_t PERIODS[] = {0, 1, 5, 6, 254, 4095};
    for (const uint32_t tone : PERIODS) {
        for (const uint32_t envelope : {0U, 1U, 77U}) {
            std::vector<uint16_t> streams[2];
            for (const uint8_t volume : {0x0F, 0x00}) {
                power_on(CLOCK);
                write({{0, tone & 0xFF}, {1, tone >> 8}, {11, envelope}, {13, 10}, {7, 0x3E}});
                write({{8, volume}, {9, volume ? 0x10 : 0}});
                samples(3333);
                write({{0, 40}, {1, 0}, {8, 0x10}, {9, 15}});
                streams[volume != 0] = samples(2000);
            }
            EXPECT_EQ(streams[0], streams[1]) << tone << ", " << envelope;
            EXPECT_GT(changes(streams[0]), 50U);
        }
    }
}

TEST_F(Ym2149, Ports) {
    static std::string written;
    power_on(CLOCK);
    ym2149_set_port_write_callback(2, [](uint8_t value) { written += char(value); });
    ym2149_set_port_write_callback(1, [](uint8_t value) { written += char(value + 1); });
    ym2149_set_port_read_callback(3, [] { return uint8_t(0x5A); });
    write({{7, 0x40}, {14, 'a'}, {15, 'b'}});
    EXPECT_EQ(written, "ac") << "whatever the direction";
    EXPECT_EQ(read(14), 'a');
    EXPECT_EQ(read(15), 0x5A);
    write({{7, 0x80}});
    EXPECT_EQ(read(14), 0xFF) << "input without a callback";
    EXPECT_EQ(read(15), 'b');
}

/// Every sample before the write has the old volume, every one from it on the new.
TEST_F(Ym2149, WriteTakesEffectAtItsSample) {
    for (int64_t offset = 0; offset < 43000; offset += 611) {
        power_on(CLOCK);
        beeper_reset();
        write({{8, 15}});
        start_scripted_core();
        sound_remove_filter();
        const int64_t start = sample_at(z80_state.t_count);
        z80_state.t_count += offset;
        const int64_t change = sample_at(z80_state.t_count) - start;
        ym2149_write_register(8, 7);
        advance(960 - change);
        ASSERT_EQ(scripted.fragments.size(), 1U);
        for (int64_t i = 0; i < 960; ++i) {
            ASSERT_EQ(scripted.fragments[0][size_t(i)], i < change ? FULL : LEVELS[14] / 8)
                << "cycle " << offset << ", sample " << i;
        }
    }
}

/// Tones, noise and envelope as the chip has them sampled 16 times as often, below 8 kHz. All
/// periods, and the 31 parts of the ramp, are whole numbers of those samples.
TEST_F(Ym2149, CleanSoundIsTheChipBetweenTheSamples) {
    constexpr uint32_t FINE_CLOCK = 1536000; ///< 1024 units of the counters in a sample
    constexpr uint32_t LENGTH = 3000;
    /// The level at `time` through a low-pass; sample n was at n x distance + first.
    const auto low_pass = [](const std::vector<uint16_t>& stream, double distance, double first,
                             double time) {
        double sum = 0;
        for (size_t n = 0; n < stream.size(); ++n) {
            const double x = TWO_PI * (double(n) * distance + first - time) / 6 + 1e-9;
            if (std::abs(x) >= 8 * TWO_PI) continue;
            sum += int16_t(stream[n]) * std::sin(x) / x * std::pow(std::cos(x / 32), 4);
        }
        return sum * distance / 3;
    };
    std::vector<uint16_t> streams[2];
    for (const bool clean : {false, true}) {
        ay = {};
        power_on(FINE_CLOCK);
        if (!clean) ym2149_set_clock(FINE_CLOCK, 16 * SOUND_RATE);
        ym2149_clean = clean;
        write({{0, 7}, {2, 1}, {4, 3}, {5, 1}, {6, 5}, {7, 0x18}, {8, 16}, {9, 15}, {10, 9}});
        write({{11, 31}, {13, 0x0A}}); // channel B has a tone that toggles four times a sample
        streams[clean] = samples(clean ? LENGTH : 16 * LENGTH);
    }
    for (double time = 100; time < LENGTH - 100; time += 7.3) {
        EXPECT_NEAR(low_pass(streams[1], 1, 1 - 15.5, time),
                    low_pass(streams[0], 1 / 16.0, 1.5 / 16, time), 2)
            << time;
    }
}

TEST_F(Ym2149, CleanSoundLeavesTheGeneratorsAsTheyWouldBe) {
    std::vector<uint16_t> streams[2];
    for (const bool clean : {false, true}) {
        ay = {};
        std::mt19937 random(1);
        for (const uint32_t clock : {CLOCK, SLOW_CLOCK, 8388607U, 50000U}) {
            power_on(clock);
            for (int n = 0; n < 3000; ++n) {
                write({{random() % 14, random() & (n & 1 ? 0xFF : 0x0F)}});
                ym2149_clean = clean && n % 3;
                const auto stream = samples(random() % (n % 7 ? 40 : 2000));
                if (n % 3) continue;
                streams[clean].insert(streams[clean].end(), stream.begin(), stream.end());
            }
        }
    }
    EXPECT_EQ(streams[0], streams[1]);
}
} // namespace
