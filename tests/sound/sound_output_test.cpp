// The ring and the steps that make it, on an audio device whose every step can fail.

#include "platform/headless/headless.h"
#include "sound/beeper.h"
#include "sound/output/sound_output.h"
#include "sound/output/sound_ring.h"
#include "support/fake_host.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <vector>

namespace {

class SoundOutputTest : public testing::Test {
protected:
    void SetUp() override {
        install_platform(host);
        fake_host.reports.clear();
    }
    void TearDown() override { sound_null_driver_init(); }

    HeadlessAudio& audio() { return host.audio(); }
    bool driver_is_ours() {
        sound_resume(); // through the active driver
        const int before = audio().stops;
        sound_pause();
        sound_resume();
        return audio().stops != before;
    }
    /// The ring's byte, as it counts up through the samples of write_ramp.
    uint8_t at(size_t offset) { return audio().ring[offset]; }

    HeadlessPlatform host{{}};
};

/// Samples whose bytes are 1, 2, 3...
std::array<uint16_t, FRAGMENT_SAMPLES> ramp() {
    std::array<uint16_t, FRAGMENT_SAMPLES> samples{};
    for (uint32_t n = 0; n < FRAGMENT_SAMPLES; ++n) {
        samples[n] = uint16_t(uint8_t(2 * n + 1) | uint8_t(2 * n + 2) << 8);
    }
    return samples;
}

TEST_F(SoundOutputTest, FirstStepThatFailsTellsAndKeepsTheNullDriver) {
    const struct {
        AudioStep step;
        const char* title;
        const char* text;
    } cases[] = {{AudioStep::library, "Fatal error!", "Missing DSOUND.DLL"},
                 {AudioStep::device, "Error", "DirectSoundCreate failed"},
                 {AudioStep::cooperative, "Error", "SetCooperativeLevel failed"},
                 {AudioStep::primary, "Error", "CreateSoundBuffer for primary buffer failed"},
                 {AudioStep::format, "Error", "SetFormat on primary bufer failed"},
                 {AudioStep::play, "Error", "Play primary buffer failed"}};
    audio().error_text = "no device";
    // Each case lets all later steps fail, too: the order shows.
    for (size_t first = std::size(cases); first-- > 0;) {
        const auto& c = cases[first];
        SCOPED_TRACE(c.text);
        audio().fail(c.step);
        fake_host.reports.clear();
        EXPECT_EQ(dsound_init(SOUND_RATE), 0);
        ASSERT_EQ(fake_host.reports.size(), 1U);
        EXPECT_EQ(fake_host.reports[0].title, c.title);
        EXPECT_EQ(fake_host.reports[0].text, c.text);
        EXPECT_EQ(fake_host.reports[0].reason, "no device");
        EXPECT_FALSE(c.step != AudioStep::play && driver_is_ours());
        EXPECT_EQ(audio().device, c.step > AudioStep::device) << "what was made stays";
        audio().fail(AudioStep::ring);
    }
}

TEST_F(SoundOutputTest, WithoutARingTheDriverTakesNothing) {
    audio().fail(AudioStep::ring);
    EXPECT_EQ(dsound_init(SOUND_RATE), 1);
    ASSERT_EQ(fake_host.reports.size(), 1U);
    EXPECT_EQ(fake_host.reports[0].text, "CreateSoundBuffer failed");
    EXPECT_TRUE(driver_is_ours());
    EXPECT_EQ(dsound_write(ramp().data(), 0, FRAGMENT_BYTES), 0);
    testing::internal::CaptureStderr();
    EXPECT_EQ(dsound_get_current_position(), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Warning: DSound secondary buffer is null.\n");
    dsound_reset();
    EXPECT_EQ(audio().restores, 0);
}

TEST_F(SoundOutputTest, LostDeviceComesBackWithAReset) {
    ASSERT_EQ(dsound_init(SOUND_RATE), 1);
    audio().lost = true;
    EXPECT_NE(dsound_write(ramp().data(), 0, FRAGMENT_BYTES), 0);
    EXPECT_EQ(dsound_get_current_position(), -1);
    EXPECT_EQ(at(0), 0);
    for (int n = 2; n < 50; ++n) dsound_write(ramp().data(), 0, FRAGMENT_BYTES);
    EXPECT_EQ(audio().restores, 0) << "a second is 50 fragments";
    dsound_write(ramp().data(), 0, FRAGMENT_BYTES);
    EXPECT_EQ(dsound_write(ramp().data(), 0, FRAGMENT_BYTES), 0) << "by itself";
    audio().lost = true;
    sound_reset();
    EXPECT_EQ(dsound_write(ramp().data(), 0, FRAGMENT_BYTES), 0);
    EXPECT_EQ(at(0), 1);

    audio().fail(AudioStep::unlock);
    EXPECT_NE(dsound_write(ramp().data(), 0, FRAGMENT_BYTES), 0);
}

TEST_F(SoundOutputTest, ReplacedAndClosedDriversLeaveNothingBehind) {
    ASSERT_EQ(dsound_init(SOUND_RATE), 1);
    EXPECT_EQ(dsound_init(SOUND_RATE), 1) << "again, while it is the active one";
    EXPECT_TRUE(audio().device);
    EXPECT_EQ(audio().ring.size(), 96000U);
    EXPECT_TRUE(driver_is_ours());
    sound_null_driver_init();
    EXPECT_FALSE(audio().device);
    EXPECT_TRUE(audio().ring.empty());
    EXPECT_FALSE(driver_is_ours());
}

/// What a device takes within a millisecond. It leaves silence behind.
std::vector<int16_t> next_millisecond(HeadlessPlatform& host) {
    std::vector<uint8_t>& ring = host.audio().ring;
    auto taken = uint32_t(host.audio().position());
    host.advance_ns(1'000'000);
    std::vector<int16_t> samples;
    for (const auto until = uint32_t(host.audio().position()); taken != until;
         taken = (taken + 2) % RING_BYTES) {
        samples.push_back(int16_t(ring[taken] | ring[taken + 1] << 8));
        ring[taken] = ring[taken + 1] = 0;
    }
    return samples;
}

/// Milliseconds from a change of the beeper, anywhere in a frame that is run at once, to the
/// device's taking the step.
double median_latency(HeadlessPlatform& host) {
    constexpr int64_t FRAME = 44335;
    std::vector<double> found;
    int64_t changed = 0; ///< ms
    int16_t last = 0;
    for (int64_t now = 0; now < 30'000; now += 20) {
        if (now > 10'000 && now % 240 == 0) {
            const int64_t before = now * 7919 % FRAME;
            sound_update(z80_state.t_count += before);
            beeper_set_level(now / 240 % 2);
            z80_state.t_count -= before;
            changed = now;
        }
        sound_flush(z80_state.t_count += FRAME);
        for (int64_t later = 1; later <= 20; ++later) {
            for (const int16_t sample : next_millisecond(host)) {
                if (std::abs(sample - last) > 2000) found.push_back(double(now + later - changed));
                last = sample;
            }
        }
    }
    std::ranges::sort(found);
    return found.empty() ? 0 : found[found.size() / 2];
}

TEST_F(SoundOutputTest, LatencyIsWhatIsSetAndGrowsAfterTwoGaps) {
    z80_init(2216750);
    beeper_init();
    audio().block = 480;
    for (const uint32_t set : {150U, 30U, 60U}) {
        EXPECT_EQ(dsound_set_latency(set), set);
        ASSERT_EQ(dsound_init(SOUND_RATE), 1);
        sound_init();
        EXPECT_NEAR(median_latency(host), set, set * 0.1);
    }
    ++audio().times_run_dry;
    EXPECT_NEAR(median_latency(host), 60, 6);
    EXPECT_TRUE(fake_host.reports.empty());
    ++audio().times_run_dry;
    EXPECT_NEAR(median_latency(host), 80, 8);
    ASSERT_EQ(fake_host.reports.size(), 1U);
    EXPECT_EQ(fake_host.reports[0].text, "Sound latency raised to 80 ms");
}

TEST_F(SoundOutputTest, FadesAwayAndBackWithoutAClick) {
    constexpr double LOUD = 8000, TONE = 440 * 2 * std::numbers::pi / SOUND_RATE;
    audio().block = 480;
    ASSERT_EQ(dsound_init(SOUND_RATE), 1);
    double phase = 0;
    int before = 0, largest_step = 0;
    /// Runs `frames` frames in each 20 ms. Returns the loudest sample behind the first `skip` ms.
    const auto play = [&](int ms, int frames, int skip) {
        int loudest = 0;
        for (int now = 0; now < ms; ++now) {
            for (int frame = now % 20 ? frames : 0; frame < frames; ++frame) {
                for (int n = machine_host.fragment_decision(1); n > 0; --n) {
                    std::array<uint16_t, FRAGMENT_SAMPLES> fragment;
                    for (auto& sample : fragment) {
                        sample = uint16_t(int16_t(LOUD * std::sin(phase += TONE)));
                    }
                    machine_host.fragment(fragment.data());
                }
            }
            for (const int sample : next_millisecond(host)) {
                largest_step = std::max(largest_step, std::abs(sample - before));
                before = sample;
                if (now >= skip) loudest = std::max(loudest, std::abs(sample));
            }
        }
        return loudest;
    };
    play(1000, 1, 0);
    largest_step = 0;
    const struct {
        FadeReason reason;
        int frames, ms; ///< meanwhile
    } cases[] = {{FadeReason::speed, 30, 700},
                 {FadeReason::held, 0, 400},
                 {FadeReason::speed, 30, 5},
                 {FadeReason::speed, 30, 1300},
                 {FadeReason::held, 0, 40}};
    for (const auto& c : cases) {
        EXPECT_NEAR(play(500, 1, 100), LOUD, 2) << "before " << c.ms;
        sound_fade(true, c.reason);
        EXPECT_EQ(play(c.ms, c.frames, 12), 0) << c.ms;
        sound_fade(true, FadeReason::held);
        sound_fade(false, c.reason);
        sound_fade(false, FadeReason::held);
    }
    EXPECT_NEAR(play(500, 1, 100), LOUD, 2);
    EXPECT_LE(largest_step, LOUD * TONE * 1.01 + 2) << "the tone's own steps";
}

} // namespace
