#include "host/display.h"
#include "host/messages.h"

#include "cgenie/video.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "host/canvas.h"
#include "host/shell.h"
#include "host/status.h"
#include "platform/headless/headless.h"
#include "support/program_options.h"
#include "wall/machine_host.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr int BAR = HEADLESS_STATUS_BAR;

class DisplayTest : public testing::Test {
protected:
    DisplayTest() {
        install_platform(host);
        CreateStatusBar();
        set_screen_params(false, 8);
    }
    ~DisplayTest() override {
        if (g_bFullScreen) toggle_full_screen();
        reset_program_options();
        dib_destroy(canvas);
    }

    HeadlessPlatform host{HeadlessOptions{}};
    HeadlessWindow& window = host.window();
    HeadlessSurface& surface = host.surface();
    HeadlessPane& drawing = host.pane(PaneId::picture);
};

TEST_F(DisplayTest, PictureIsFittedToFourToThree) {
    const Rectangle cases[][2] = {
        {{0, 0, 1280, 1024}, {0, 32, 1280, 992}},
        {{0, 0, 1920, 1080}, {240, 0, 1680, 1080}},
        {{0, 0, 1366, 768}, {171, 0, 1195, 768}},
        {{0, 0, 4, 3}, {0, 0, 4, 3}},
        {{0, 0, 5, 3}, {1, 0, 5, 3}},
        {{0, 0, 641, 500}, {0, 10, 641, 491}},
        {{0, 0, 0, 0}, {0, 0, 0, 0}},
        {{10, 20, 1290, 1044}, {10, 32, 1290, 992}},
    };
    for (const auto& [area, fitted] : cases) {
        EXPECT_EQ(screen_rect_recalc(area), fitted) << area.right << " x " << area.bottom;
    }

    window.fixed = {};
    window.outer = {100, 100, 748, 644}; // a client area of 640 x 496 at (104, 144)
    ResizeWindow(384, 288, false);
    EXPECT_EQ(g_rcScreen, (Rectangle{104, 144, 744, 640 - BAR}));
    ResizeWindow(384, 288, true);
    EXPECT_EQ(g_rcScreen, (Rectangle{109, 144, 740, 640 - BAR}));
    EXPECT_EQ(g_rcViewport, (Rectangle{0, 0, 384, 288}));
}

TEST_F(DisplayTest, WholeScreenAndBack) {
    const Rectangle before = window.outer;
    std::strcpy(machine_cfg[active_machine_cfg].name, "Model");
    for (const bool giant_meanwhile : {false, true}) {
        window.screen = giant_meanwhile ? Size{1920, 1080} : Size{1280, 1024};
        const int clears = surface.clears;
        toggle_full_screen();
        EXPECT_EQ(g_bFullScreen, 2);
        EXPECT_FALSE(g_bUseGDI);
        EXPECT_TRUE(window.full_screen);
        EXPECT_EQ(window.fixed, Size{});
        EXPECT_FALSE(window.cursor_shown);
        EXPECT_FALSE(host.status_bar().exists());
        for (int frame = 0; frame < 2; ++frame) update_screen(1);
        EXPECT_EQ(surface.last_target, giant_meanwhile ? (Rectangle{240, 0, 1680, 1080})
                                                       : (Rectangle{0, 32, 1280, 992}));
        EXPECT_EQ(surface.clears, clears + 1); // the black around the picture is drawn once
        if (giant_meanwhile) {
            set_screen_params(true, 8);
            EXPECT_EQ(surface.size, (Size{768, 576}));
            EXPECT_EQ(window.outer, (Rectangle{0, 0, 1920, 1080}));
        }
        toggle_full_screen();
        EXPECT_EQ(g_bFullScreen, 0);
        EXPECT_TRUE(g_bUseGDI);
        EXPECT_FALSE(window.full_screen);
        EXPECT_TRUE(window.cursor_shown);
        EXPECT_FALSE(surface.exists());
        EXPECT_EQ(host.status_text(0), "Model");
        EXPECT_EQ(window.outer == before, !giant_meanwhile);
        EXPECT_EQ(window.fixed, (Size{window.outer.width(), window.outer.height()}));
    }
    EXPECT_EQ(window.client_size(), (Size{776, 584 + BAR}));
    EXPECT_EQ(window.outer.left, before.left);
    EXPECT_EQ(surface.presents, 4);
    EXPECT_EQ(drawing.copies, 0);
}

TEST_F(DisplayTest, WithoutASurfaceTheWindowStillTakesTheScreen) {
    surface.failure = "CreateSurface (back) FAILED";
    const UserCommand asked_for_by_the_user;
    toggle_full_screen();
    ASSERT_EQ(host.dialogs().messages.size(), 1U);
    EXPECT_EQ(host.dialogs().messages[0].title, "Error");
    EXPECT_EQ(host.dialogs().messages[0].text, surface.failure);
    EXPECT_TRUE(g_bUseGDI);
    EXPECT_TRUE(window.full_screen);
    update_screen(1);
    EXPECT_EQ(host.frames_presented(), 0);
    toggle_full_screen();
    update_screen(1);
    EXPECT_EQ(drawing.copies, 1);
}

TEST_F(DisplayTest, FramesReachTheCanvas) {
    update_screen(0);
    EXPECT_EQ(drawing.copies, 0);
    video_graphic_background(0x04); // colour 10 behind text and graphics
    frame_buffer[0] = 3;
    update_screen(1);
    EXPECT_EQ(drawing.last_copy.x, 4);
    EXPECT_EQ(drawing.last_copy.y, 4);
    EXPECT_EQ(canvas.pixels[0], 10); // the border, drawn anew

    g_bCycleBasedEngine = true; // the frame is there already
    std::fill_n(frame_buffer, SCREEN_WIDTH * SCREEN_HEIGHT, uint8_t(10));
    frame_buffer[0] = BLACK_INDEX;
    frame_buffer[1] = 3;
    frame_buffer[7] = 0;
    frame_buffer[SCREEN_WIDTH * SCREEN_HEIGHT - 1] = 9;
    set_screen_params(false, 1);
    update_screen(1);
    EXPECT_EQ(canvas.pixels.front(), 0x41);
    EXPECT_EQ(canvas.pixels.back(), 0x01);
    EXPECT_EQ(std::count(canvas.pixels.begin(), canvas.pixels.end(), 0), 384 / 8 * 288 - 2);

    set_screen_params(true, 8);
    for (const bool double_scan : {true, false}) {
        g_bDblScan = double_scan;
        update_screen(1);
        EXPECT_EQ(canvas.pixels[2], 3);
        EXPECT_EQ(canvas.pixels[768 + 2], double_scan ? 3 : BLACK_INDEX);
    }

    g_bDebug = true; // the monitor has the window for itself, whatever is asked for
    const int copies = drawing.copies;
    for (const int flag : {0, 1}) update_screen(flag);
    EXPECT_EQ(drawing.copies, copies);
    EXPECT_EQ(host.pane(PaneId::monitor).fills, 2);
    g_bDebug = false;
    dib_destroy(canvas);
    update_screen(1);
    EXPECT_EQ(drawing.copies, copies);
}

} // namespace
