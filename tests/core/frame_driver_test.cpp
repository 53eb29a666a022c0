#include "core/frame_driver.h"

#include "cgenie/crtc.h"
#include "cgenie/memory/memory.h"
#include "core/machine.h"
#include "core/pacing/pacing.h"
#include "core/pacing/speed.h"
#include "platform/headless/headless.h"
#include "support/fake_host.h"
#include "support/paced_frames.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

namespace {
constexpr int64_t MS = 1'000'000; ///< in the clock's nanoseconds
constexpr int64_t LOOP = 14;      ///< JR -2 in RAM: 12 cycles and a wait for each of two bytes

/// The first multiple of `step` at or after `value`.
int64_t next_multiple(int64_t value, int64_t step) { return (value + step - 1) / step * step; }

class FrameDriver : public testing::Test {
protected:
    void SetUp() override { start(60); }

    /// Power-on in front of a display of that refresh rate; the processor loops in RAM.
    void start(uint32_t refresh) {
        HeadlessOptions options;
        options.look_ns = 0; // time passes only in step and in sleep
        options.refresh_rate = refresh;
        host.emplace(options);
        install_platform(*host);
        fake_host = {};
        z80_state = {};
        memory_set_startup_pattern(0);
        machine_init();
        memory[0x4000] = 0x18;
        memory[0x4001] = 0xFE;
        z80_state.pc = 0x4000;
        leftover = 0;
        g_bCycleBasedEngine = false;
        g_Timer = true;
        g_bRecordingVideo = 0;
        event_shutdown_timout = event_screenshot_timout = EVENT_DISARMED;
        init_timers();
    }

    /// Frames of which each takes the host `ns`.
    void step(int frames, int64_t ns) {
        for (int frame = 0; frame < frames; ++frame) {
            host->advance_ns(ns);
            run_paced_frame();
        }
    }

    static inline std::optional<HeadlessPlatform> host;
};

TEST_F(FrameDriver, BudgetIsClockByFrequencyAndOvershootIsCarried) {
    struct {
        uint32_t clock, frequency;
        int64_t budget;
    } const cases[] = {{2216750, 50, 44335},
                       {2215200, 50, 44304},
                       {2216750, 60, 36945},
                       {2216750, 150, 14778},
                       {100'000'000, 5, 20'000'000}};
    active_machine_cfg = CUSTOM_CONFIGURATION;
    for (const auto& c : cases) {
        machine_cfg[CUSTOM_CONFIGURATION].screen_frequency = c.frequency;
        machine_set_main_clock(c.clock);
        EXPECT_EQ(frame_budget(), c.budget);
        z80_state.t_count = leftover = 0;
        const int frames = c.budget < 50000 ? 60 : 1;
        const uint32_t vblanks = crtc.frame_counter;
        for (int64_t frame = 1; frame <= frames; ++frame) {
            machine_run();
            ASSERT_EQ(z80_state.t_count, next_multiple(frame * c.budget, LOOP)) << frame;
            ASSERT_EQ(leftover, frame * c.budget - z80_state.t_count) << frame;
        }
        EXPECT_EQ(crtc.frame_counter - vblanks, uint32_t(frames));
    }
}

TEST_F(FrameDriver, ScreenshotFiresOnceAtTheFirstFrameEndThatReachesIt) {
    struct {
        int64_t start, event; ///< cycles; frames end at start + 44338 and start + 88676
        int frame;
    } const cases[] = {{0, 0, 1},
                       {0, 44338, 1},
                       {0, 44339, 2},
                       {(1LL << 32) - 50000, (1LL << 32) + 10, 2},
                       {1LL << 40, (1LL << 40) + 88676, 2}};
    for (const auto& c : cases) {
        start(60);
        z80_state.t_count = c.start;
        event_screenshot_timout = c.event;
        for (int frame = 1; frame <= 5; ++frame) {
            do_some_frames(1);
            EXPECT_EQ(fake_host.screenshots, frame >= c.frame ? 1 : 0)
                << c.event << " frame " << frame;
        }
        EXPECT_EQ(event_screenshot_timout, EVENT_DISARMED);
        EXPECT_EQ(z80_state.t_count, c.start + next_multiple(5 * 44335, LOOP));
        EXPECT_FALSE(host->quit_posted());
    }
}

TEST_F(FrameDriver, ShutdownWinsOverTheScreenshot) {
    fake_host.lamp = 3;
    event_screenshot_timout = 44339;
    event_shutdown_timout = 44339;
    do_some_frames(1);
    EXPECT_FALSE(host->quit_posted());
    do_some_frames(1);
    EXPECT_EQ(fake_host.screenshots, 0);
    const Event event = host->events().poll();
    EXPECT_EQ(event.kind, Event::Kind::quit);
    EXPECT_EQ(event.value, 0);
    EXPECT_EQ(fake_host.lamp, -1) << "the frame is finished all the same";
}

TEST_F(FrameDriver, UnpacedFramesAreShownWhereThereIsACanvas) {
    do_some_frames(3);
    EXPECT_EQ(fake_host.screen_updates, 3);
    fake_host.canvas = false;
    do_some_frames(2);
    EXPECT_EQ(fake_host.screen_updates, 3);
    EXPECT_EQ(fake_host.frames_told, 5);
    EXPECT_EQ(z80_state.t_count, next_multiple(5 * 44335, LOOP));
    EXPECT_EQ(host->slept_ms(), 0);
}

TEST_F(FrameDriver, SpeedReport) {
    struct {
        const char* name;
        uint32_t clock, frequency, refresh;
        bool paced;
        int64_t frame_ns;
        int frames; ///< of the second report
        const char* text;
    } const cases[] = {
        // The second report comes at 4 s, however late the first was.
        {"standard", 2216750, 50, 60, true, 0, 202, "2.217 Mhz CPU at 100% (50 Hz video)"},
        {"host too slow", 2216750, 50, 60, true, 60 * MS, 67, "2.217 Mhz CPU at 33% (16 Hz video)"},
        {"unpaced", 2215200, 50, 60, false, 10 * MS, 400, "2.215 Mhz CPU at 200% (60 Hz video)"},
        {"60 Hz", 2216750, 60, 75, false, 16'666'667, 240, "2.217 Mhz CPU at 100% (60 Hz video)"},
        {"unknown display", 4'000'000, 50, 0, false, 5 * MS, 800,
         "4.000 Mhz CPU at 400% (100 Hz video)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        start(c.refresh);
        active_machine_cfg = CUSTOM_CONFIGURATION;
        machine_cfg[CUSTOM_CONFIGURATION].screen_frequency = c.frequency;
        machine_set_main_clock(c.clock);
        timer_recalibrate_fps(c.frequency);
        g_Timer = c.paced;
        step(c.frames - 1, c.frame_ns);
        fake_host.title.clear();
        step(1, c.frame_ns);
        EXPECT_EQ(fake_host.title, c.text);
        fake_host.title.clear();
        step(1, c.frame_ns);
        EXPECT_EQ(fake_host.title, "");
    }
}

TEST_F(FrameDriver, PicturesComeEveryTwentyMillisecondsWhateverTheDisplay) {
    for (const uint32_t refresh : {60U, 75U, 144U}) {
        start(refresh);
        std::vector<double> off; // from 20 ms, between two pictures
        double shown = 0;
        for (int64_t frame = 0; frame < 500; ++frame) {
            step(1, frame * 7919 % 19 * MS); // 0 to 18 ms of work, in no order
            const double now = double(host->clock().counter()) / MS;
            if (frame > 2) off.push_back(std::abs(now - shown - 20));
            shown = now;
        }
        std::ranges::sort(off);
        EXPECT_LE(off[off.size() * 95 / 100], 2) << refresh;
        EXPECT_GE(fake_host.screen_updates, 499) << refresh;
    }
}

TEST_F(FrameDriver, CaptureGetsEveryFrameAndTheBeamPresentsItsOwn) {
    g_Timer = false;
    g_bRecordingVideo = 2;
    step(50, MS);
    EXPECT_EQ(fake_host.screen_updates, 50);
    EXPECT_EQ(pacing.total_frames, 50);
    g_bCycleBasedEngine = true;
    step(50, MS);
    EXPECT_EQ(fake_host.screen_updates, 50);
    EXPECT_EQ(pacing.total_frames, 100);
}

TEST_F(FrameDriver, LateHostCatchesUpUnlessTheTimersAreReset) {
    step(10, 0);
    const int64_t before = host->slept_ms();
    EXPECT_EQ(before, 8 * 20 + 1);
    host->advance_ns(3000 * MS);
    step(150, 0); // 3 s of frames without a rest
    EXPECT_EQ(host->slept_ms(), before);
    step(2, 0);
    EXPECT_EQ(host->slept_ms(), before + 40);

    host->advance_ns(3000 * MS);
    reset_timer();
    step(3, 0);
    EXPECT_EQ(host->slept_ms(), before + 40 + 21) << "as after the start";
    EXPECT_EQ(pacing.total_frames, 2);
    EXPECT_EQ(pacing.ticks, 3);
}

TEST_F(FrameDriver, TurboAndSlowMotionAreNotMadeUpFor) {
    const struct {
        const char* name;
        bool key;
        uint32_t slow;
        int frames;          ///< of which each takes the host a millisecond
        int64_t slept;       ///< ms, from the second frame on
        int shown;           ///< pictures
        const char* percent; ///< in the title
    } cases[] = {{"turbo", true, 1, 1001, 0, 61, " 2000% (60 "},
                 {"half", false, 2, 101, 100 * 39, 101, " 50% (25 "},
                 {"a quarter", false, 4, 101, 100 * 79, 101, " 25% (12 "},
                 {"turbo in slow motion", true, 4, 1001, 0, 61, " 2000% (60 "}};
    step(100, MS);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        host->set_key(KEY_F7, c.key);
        speed_choices.slow = c.slow;
        step(1, MS); // the frame in which it begins
        const int64_t before = host->slept_ms();
        fake_host.screen_updates = 0;
        step(c.frames - 1, MS);
        EXPECT_NEAR(double(host->slept_ms() - before), double(c.slept), 80);
        EXPECT_NEAR(fake_host.screen_updates, c.shown, 2);
        EXPECT_NE(fake_host.title.find(c.percent), std::string::npos) << fake_host.title;
        host->release_all_keys();
        speed_choices.slow = 1;
        step(1, MS);
        const int64_t normal = host->slept_ms();
        step(100, MS);
        EXPECT_NEAR(double(host->slept_ms() - normal), 100 * 19, 20) << "and back at once";
        EXPECT_NE(fake_host.title.find(" 100% (50 "), std::string::npos) << fake_host.title;
    }
}

} // namespace
