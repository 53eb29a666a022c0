#include "host/display.h"
#include "host/main_window.h"
#include "host/messages.h"

#include "cgenie/video.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "core/pacing/pacing.h"
#include "host/canvas.h"
#include "host/commands.h"
#include "host/menu.h"
#include "host/picture_tube.h"
#include "host/shell.h"
#include "host/status.h"
#include "host/window_size.h"
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

TEST(WindowSizeTest, FollowsTheScreen) {
    const Size picture{384, 288}, giant_canvas{768, 576};
    const struct {
        Size screen;
        double ratio;
        Size usual, giant, whole_giant;
    } cases[] = {
        {{1920, 1080}, 1, {768, 576}, {1152, 864}, {768, 576}},
        {{1280, 800}, 1, {384, 288}, {768, 576}, {768, 576}},
        {{960, 540}, 2, {384, 288}, {576, 432}, {384, 288}}, // 1920 x 1080, all twice as large
        {{640, 400}, 2, {384, 288}, {384, 288}, {384, 288}},
        {{1536, 864}, 1.25, {614, 461}, {922, 691}, {614, 461}},
        {{3840, 2160}, 1, {1920, 1440}, {2688, 2016}, {2304, 1728}},
        {{2560, 1440}, 1, {1152, 864}, {1536, 1152}, {1536, 1152}},
        {{320, 200}, 1, {384, 288}, {384, 288}, {768, 576}},
    };
    for (const auto& [screen, ratio, usual, giant, whole_giant] : cases) {
        SCOPED_TRACE(screen.width);
        const WindowRoom room{screen, screen, {0, 46}, ratio};
        EXPECT_EQ(usual_picture_size(picture, room), usual);
        EXPECT_EQ(giant_picture_size(picture, picture, room), giant);
        EXPECT_EQ(giant_picture_size(picture, giant_canvas, room), whole_giant);
    }
    const WindowRoom room{{1280, 1024}, {1280, 1000}, {0, 46}, 1};
    EXPECT_EQ(possible_picture_size({3000, 1}, room), (Size{1280, 240}));
    EXPECT_EQ(pulled_into({0, 24, 800, 600}, {300, -5, 900, 1000}),
              (Rectangle{200, 24, 800, 1029}));
}

TEST_F(DisplayTest, TheUserSizesTheWindow) {
    shell_state.start.sizable_window = true;
    const auto picture = [this] { return drawing.size(); };
    const auto gets = [this](int width, int height) { // from the user
        const Size outer = window.outer_size({width, height + BAR});
        window.outer = {7, 9, 7 + outer.width, 9 + outer.height};
        window_was_resized();
    };
    set_screen_params(false, 8);
    EXPECT_EQ(picture(), (Size{768, 576}));
    EXPECT_EQ(window.fixed, Size{});
    EXPECT_EQ(window.least, window.outer_size({320, 240 + BAR}));
    window_was_resized();
    EXPECT_EQ(chosen_picture_size(), Size{}) << "the program's own doing";
    toggle_full_screen();
    toggle_full_screen();
    EXPECT_EQ(window.least, window.outer_size({320, 240 + BAR})) << "with the bar";
    set_screen_params(true, 8);
    EXPECT_EQ(picture(), (Size{1152, 864}));
    set_screen_params(false, 8);
    gets(800, 500);
    set_screen_params(true, 8);
    EXPECT_EQ(picture(), (Size{800, 500})) << "kept";
    const Size screen = std::exchange(window.screen, {700, 480});
    set_screen_params(false, 8);
    EXPECT_LT(picture().width, 800);
    window_was_resized();
    window.screen = screen;
    set_screen_params(true, 8);
    EXPECT_EQ(picture(), (Size{800, 500})) << "where there is room again";
    update_screen(1);
    EXPECT_EQ(drawing.last_stretch.target, (Rectangle{67, 0, 734, 500})); // 4:3
    EXPECT_EQ(drawing.copies, 0);
    choose_window_scale(WindowScale::whole);
    EXPECT_EQ(drawing.last_stretch.target, (Rectangle{0, 0, 800, 500}));
    EXPECT_TRUE(drawing.last_stretch.how.whole);

    window.set_maximized(true);
    window_was_resized();
    toggle_full_screen();
    window_was_resized();
    update_screen(1);
    EXPECT_TRUE(surface.last_scaling.whole);
    set_screen_params(false, 8);
    toggle_full_screen();
    EXPECT_EQ(window.outer, window.available_area());
    EXPECT_EQ(chosen_picture_size(), (Size{800, 500}));

    shell_state.fixed_window = true;
    fixed_window_switched();
    EXPECT_FALSE(window.maximized());
    EXPECT_EQ(window.client_size(), (Size{392, 296 + BAR}));
    EXPECT_EQ(window.fixed, (Size{window.outer.width(), window.outer.height()}));
    update_screen(1);
    EXPECT_EQ(drawing.copies, 1);
    shell_state.fixed_window = false;
    fixed_window_switched();
    EXPECT_EQ(picture(), (Size{800, 500}));
    gets(768, 576); // as if it had never been sized
    EXPECT_EQ(chosen_picture_size(), Size{});
}

TEST_F(DisplayTest, TubeIsShownWhileThereIsOneThatIsFastEnough) {
    HeadlessPictureTube& tube = host.picture_tube();
    const auto show = [&](int64_t microseconds, int pictures) {
        tube.draw_time = microseconds;
        for (int n = 0; n < pictures; ++n) show_canvas();
        const int expected = is_menu_item_checked(COMMAND_TUBE) ? 0 : tube.started ? 2 : -1;
        EXPECT_TRUE(is_menu_item_checked(COMMAND_TUBE + expected)) << "the mark is true";
        return expected == 2;
    };
    init_timers();
    timer_recalibrate_fps(50);
    tube.failure = "OpenGL 3 is missing";
    handle_command(COMMAND_TUBE + int(TubeLook::strong));
    EXPECT_EQ(host.status_text(3), "No picture tube: OpenGL 3 is missing");
    show_status("told once", "");
    EXPECT_FALSE(show(0, 3));
    EXPECT_EQ(host.status_text(3), "told once");
    EXPECT_EQ(kept_tube_look(), 2U) << "for another computer";

    tube.failure.clear();
    handle_command(COMMAND_TUBE + int(TubeLook::strong));
    EXPECT_TRUE(show(13'900, 5000));
    EXPECT_TRUE(show(300'000, 1)) << "a hiccup";
    EXPECT_TRUE(show(1'000, 100));
    toggle_full_screen();
    EXPECT_TRUE(show(24'000, 49));
    EXPECT_EQ(surface.last_scaling, (Scaling{.tube = TubeLook::strong, .lines = 288}));
    EXPECT_FALSE(show(24'000, 2)) << "ten of twenty milliseconds behind, half a second long";
    EXPECT_FALSE(show(0, 100));
    toggle_full_screen();
    EXPECT_EQ(host.status_text(3), "Picture tube off: it takes 24 ms a picture");
    EXPECT_TRUE(show(9'000, 100)) << "on again in a smaller area";
    EXPECT_FALSE(show(40'000, 100));
    handle_command(COMMAND_TUBE);
    EXPECT_EQ(kept_tube_look(), 0U);
    EXPECT_FALSE(tube.started);
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
