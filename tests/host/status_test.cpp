#include "host/status.h"

#include "platform/headless/headless.h"
#include "wall/machine_host.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

class StatusTest : public testing::Test {
protected:
    StatusTest() { install_platform(host); }

    /// What the bar shows at a point; FFFFFFFF where nothing was drawn.
    Colour shown(int x, int y) {
        Colour colour = 0xFFFFFFFF;
        for (const auto& [area, drawn] : bar.fills) {
            const bool inside =
                x >= area.left && x < area.right && y >= area.top && y < area.bottom;
            if (inside) colour = drawn;
        }
        return colour;
    }

    HeadlessPlatform host{HeadlessOptions{}};
    HeadlessStatusBar& bar = host.status_bar();
};

TEST_F(StatusTest, TextsGoToTheirParts) {
    StatusBarText("lost"); // there is no bar
    EXPECT_EQ(StatusBarHeight(), 0);
    CreateStatusBar();
    EXPECT_EQ(bar.edges, (std::vector{80, 176, 224, -1}));
    EXPECT_EQ(bar.drawn, 1);
    for (const int part : {0, 1, 2, 3}) StatusBarPartText(part, "part %d", part);
    StatusBarText("%s", std::string(3000, 'x').c_str());
    const std::vector<std::string> texts = {"part 0", "", "part 2", std::string(3000, 'x')};
    EXPECT_EQ(bar.texts, texts);
    EXPECT_EQ(bar.tips, texts);
    CreateStatusBar(); // keeps the bar that exists
    EXPECT_EQ(bar.texts, texts);
    EXPECT_EQ(StatusBarHeight(), HEADLESS_STATUS_BAR);

    ui_set_window_title("(%s)", "Suspended");
    EXPECT_EQ(host.title(), "Tarvelin - (Suspended)");

    DestroyStatusBar();
    bar.creation_fails = true;
    testing::internal::CaptureStderr();
    CreateStatusBar();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Failed to create status bar.\n");
}

TEST_F(StatusTest, LampsShowTheActiveDrive) {
    constexpr int TOP = HEADLESS_STATUS_BAR - 14; // ten lines into the lowest 24
    CreateStatusBar();
    for (const int drive : {-1, 0, 1, 2, 3, 4}) {
        led_update(drive);
        for (int lamp = 0; lamp < 4; ++lamp) {
            SCOPED_TRACE(testing::Message() << "drive " << drive << ", lamp " << lamp);
            const int left = 90 + 20 * lamp;
            const Colour expected = lamp == drive ? 0xFF0000 : 0;
            EXPECT_EQ(shown(left, TOP), expected);
            EXPECT_EQ(shown(left + 12, TOP + 7), expected);
            EXPECT_EQ(shown(left - 1, TOP + 4), HEADLESS_SHADOW);
            EXPECT_EQ(shown(left + 6, TOP - 1), HEADLESS_SHADOW);
            EXPECT_EQ(shown(left + 13, TOP + 4), HEADLESS_HIGHLIGHT);
            EXPECT_EQ(shown(left + 6, TOP + 8), HEADLESS_HIGHLIGHT);
            EXPECT_EQ(shown(left + 16, TOP + 4), 0xFFFFFFFF);
        }
    }

    led_update(2);
    bar.fills.clear();
    led_update(2); // as in every frame
    EXPECT_TRUE(bar.fills.empty());
    led_redraw(0);
    EXPECT_EQ(shown(130, TOP), 0xFFFFFFFF);
    EXPECT_EQ(shown(129, TOP), HEADLESS_SHADOW);
    StatusBarRedraw();
    EXPECT_EQ(shown(130, TOP), 0xFF0000U);
    EXPECT_EQ(bar.redraws, 1);

    // A drive that writes has a mark in its lamp for a quarter of a second of frames.
    const auto marked_frames = [&](int drive) {
        int frames = 0;
        for (int n = 0; n < 30; ++n) {
            led_update(drive);
            frames += shown(136, TOP + 4) == 0xFFFFFF;
            EXPECT_EQ(shown(130, TOP), drive == 2 ? 0xFF0000U : 0U);
        }
        return frames;
    };
    mark_lamp(2);
    EXPECT_NEAR(marked_frames(2), 50 / 4, 1);
    mark_lamp(1);
    EXPECT_EQ(marked_frames(2) + marked_frames(-1), 0) << "the lamp of another drive is lit";

    // A dark lamp is told from a dark bar by its edge. Luminances by the formula of sRGB.
    for (const auto& [ground, luminance] : {std::pair{0x323232U, 0.0319}, {0x000000U, 0.0}}) {
        bar.background = ground;
        led_redraw(1);
        const double edge = std::pow(((shown(129, TOP) & 0xFF) / 255.0 + 0.055) / 1.055, 2.4);
        EXPECT_GE((edge + 0.05) / (luminance + 0.05), 3);
        EXPECT_LT((edge + 0.05) / (luminance + 0.05), 4) << "not louder than the lit lamps";
        EXPECT_EQ(shown(143, TOP), shown(129, TOP));
    }

    // A new bar starts dark, and the next frame lights the lamp again.
    DestroyStatusBar();
    CreateStatusBar();
    EXPECT_EQ(shown(130, TOP), 0U);
    led_update(2);
    EXPECT_EQ(shown(130, TOP), 0xFF0000U);
}

} // namespace
