#include "cgenie/palette.h"
#include "core/machine.h"
#include "host/canvas.h"
#include "host/dialogs/dialogs.h"
#include "host/display.h"
#include "host/shell.h"
#include "platform/headless/headless.h"

#include <gtest/gtest.h>

namespace {

constexpr int OK = 1, CANCEL = 2, DEFAULT = 147;
constexpr int SATURATION = 1031, SATURATION_EDIT = 1032;
constexpr int SLIDERS[] = {1031, 40113, 40108, 40118, 40111};
constexpr int EDITS[] = {1032, 40114, 40107, 40119, 40112};

using Form = HeadlessForm;
using Values = std::vector<uint32_t>;

class VideoSetupDialogTest : public testing::Test {
protected:
    VideoSetupDialogTest() {
        install_platform(host);
        palette_get_default_config(&display_params);
        machine_init();
        set_screen_params(false, 8);
    }
    ~VideoSetupDialogTest() override {
        ui_free_forms();
        g_bActive = true;
        palette_get_default_config(&display_params);
        palette_update();
    }

    Form& open() {
        ui_display_setup(show_palette);
        return *host.forms().find("Video setup");
    }
    static Values values() {
        const display_parameters& p = display_params;
        return {p.saturation, p.brightness, p.gamma, p.contrast, p.interlaced_line};
    }
    /// What the controls show; an edit that is not like its slider counts a thousand more.
    static Values shown(Form& form) {
        Values result;
        for (size_t n = 0; n < std::size(SLIDERS); ++n) {
            const int value = form.value(SLIDERS[n]);
            result.push_back(
                uint32_t(form.text(EDITS[n]) == std::to_string(value) ? value : value + 1000));
        }
        return result;
    }
    /// How far red and blue of a coloured entry are apart, in the picture that is presented.
    static int colour_strength() {
        const uint8_t* entry = &canvas.palette[1 * 4];
        return std::abs(entry[0] - entry[2]);
    }

    HeadlessPlatform host{HeadlessOptions{}};
};

TEST_F(VideoSetupDialogTest, EveryActChangesParametersControlsAndPicture) {
    const Values DEFAULTS = {75, 50, 50, 50, 80};
    Form& form = open();
    EXPECT_EQ(shown(form), DEFAULTS);
    const struct {
        const char* name;
        std::function<void(Form&)> user;
        Values values;
    } steps[] = {
        {"slider", [](Form& f) { f.choose(SATURATION, 20); }, {20, 50, 50, 50, 80}},
        {"edit", [](Form& f) { f.type(EDITS[1], "7"); }, {20, 7, 50, 50, 80}},
        {"gamma", [](Form& f) { f.choose(SLIDERS[2], 33); }, {20, 7, 33, 50, 80}},
        {"contrast", [](Form& f) { f.choose(SLIDERS[3], 100); }, {20, 7, 33, 100, 80}},
        {"interlaced", [](Form& f) { f.choose(SLIDERS[4], 20); }, {20, 7, 33, 100, 20}},
        {"above the range", [](Form& f) { f.type(EDITS[4], "150"); }, {20, 7, 33, 100, 100}},
        {"default", [](Form& f) { f.press(DEFAULT); }, DEFAULTS},
        {"four digits", [](Form& f) { f.type(EDITS[3], "0123"); }, {75, 50, 50, 12, 80}},
    };
    for (const auto& step : steps) {
        const auto picture = canvas.palette;
        step.user(form);
        EXPECT_EQ(values(), step.values) << step.name;
        EXPECT_NE(canvas.palette, picture) << step.name;
        if (step.values[3] != 12) {
            EXPECT_EQ(shown(form), step.values) << step.name;
        }
        EXPECT_TRUE(form.is_open()) << step.name;
    }
    form.press(DEFAULT);
    form.type(SATURATION_EDIT, ""); // on the way to another number
    EXPECT_EQ(values()[0] + uint32_t(form.value(SATURATION)), 0U);
    EXPECT_EQ(form.text(SATURATION_EDIT), "");
    EXPECT_LE(colour_strength(), 1) << "a grey picture";
    form.choose(SATURATION, 100);
    const int full = colour_strength();
    EXPECT_GT(full, 100);
    form.choose(SATURATION, 50);
    EXPECT_NEAR(colour_strength(), full / 2, 30);
    EXPECT_EQ(host.window().invalidations, 0) << "the next frame shows it";
    g_bActive = false;
    form.choose(SATURATION, 51);
    EXPECT_EQ(host.window().invalidations, 1) << "no frame of a machine that stands still comes";
}

TEST_F(VideoSetupDialogTest, EveryWayOut) {
    const struct {
        const char* name;
        std::function<void(Form&)> user;
        uint32_t saturation;
    } cases[] = {
        {"OK", [](Form& f) { f.choose(SATURATION, 9), f.press(OK); }, 9},
        {"cancel", [](Form& f) { f.choose(SATURATION, 10), f.press(CANCEL); }, 9},
        {"cancel after default", [](Form& f) { f.press(DEFAULT), f.press_escape(); }, 9},
        {"close", [](Form& f) { f.choose(SATURATION, 11), f.press_close_button(); }, 11},
        {"cancel after close", [](Form& f) { f.choose(SATURATION, 12), f.press_escape(); }, 11},
        {"asked for again while open",
         [](Form& f) {
             f.choose(SATURATION, 13), ui_display_setup(show_palette), f.press_escape();
         },
         11},
        {"enter", [](Form& f) { f.type(SATURATION_EDIT, "14"), f.press_enter(); }, 14},
    };
    Form* first = &open();
    for (const auto& c : cases) {
        Form& form = open();
        EXPECT_EQ(&form, first) << "made once";
        c.user(form);
        EXPECT_FALSE(form.is_open()) << c.name;
        EXPECT_EQ(values()[0], c.saturation) << c.name;
        const int strength = colour_strength();
        palette_update();
        dib_create_rgb_palette(canvas);
        EXPECT_EQ(colour_strength(), strength) << c.name << ": the picture has been brought up";
    }
    EXPECT_EQ(shown(open())[0], 14U);
    ui_free_forms();
    EXPECT_EQ(host.forms().find("Video setup"), nullptr);
}

TEST_F(VideoSetupDialogTest, StandsBesideTheMainWindow) {
    const struct {
        Rectangle owner;
        int left, top; ///< of a form that is 300 wide, on a screen of 1280
    } cases[] = {{{100, 90, 900, 700}, 901, 90},
                 {{100, 90, 979, 700}, 980, 90},
                 {{100, 90, 980, 700}, 100, 90},
                 {{0, 0, 1280, 1024}, 0, 0}};
    for (const auto& c : cases) {
        host.window().outer = c.owner;
        Form& form = open();
        EXPECT_EQ(form.place.left, c.left) << c.owner.right;
        EXPECT_EQ(form.place.top, c.top) << c.owner.right;
    }
}

} // namespace
