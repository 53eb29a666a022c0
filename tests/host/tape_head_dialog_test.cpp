#include "host/dialogs/dialogs.h"
#include "media/tape_audio.h"
#include "platform/headless/headless.h"

#include <gtest/gtest.h>

namespace {

constexpr int EDIT = 1034, INVERT = 1035, SLIDER = 1036;

TEST(TapeHeadDialog, ChoosesTheLevel) {
    HeadlessPlatform host{HeadlessOptions{}};
    install_platform(host);
    using Form = HeadlessForm;
    const struct {
        const char* name;
        std::function<void(Form&)> user;
        int level, inverted;
    } cases[] = {
        {"untouched", [](Form& f) { f.press_enter(); }, 100, 1},
        {"moved", [](Form& f) { f.choose(SLIDER, 17), f.press_enter(); }, 17, 1},
        {"moved to the end", [](Form& f) { f.choose(SLIDER, 240), f.press_enter(); }, 0, 1},
        {"typed", [](Form& f) { f.type(EDIT, "250"), f.press_enter(); }, 10, 1},
        {"typed after moving",
         [](Form& f) { f.choose(SLIDER, 9), f.type(EDIT, "33"), f.press_enter(); }, 33, 1},
        {"not a number", [](Form& f) { f.type(EDIT, "abc"), f.press_enter(); }, 0, 1},
        {"other polarity", [](Form& f) { f.choose(INVERT, 0), f.press_enter(); }, 100, 0},
        {"cancelled", [](Form& f) { f.choose(SLIDER, 9), f.choose(INVERT, 0), f.press_escape(); },
         100, 1},
        {"closed", [](Form& f) { f.choose(SLIDER, 9), f.press_close_button(); }, 100, 1},
    };
    for (const auto& c : cases) {
        tape_set_signal_invert(1);
        host.forms().acts.push_back([&c](Form& form) {
            EXPECT_EQ(form.text(EDIT), "100") << c.name;
            EXPECT_EQ(form.value(SLIDER) + form.value(INVERT) * 1000, 1100) << c.name;
            c.user(form);
        });
        int level = -1;
        ui_tape_adjust_head(100, [&level](int chosen) { level = chosen; });
        EXPECT_EQ(level, c.level) << c.name;
        EXPECT_EQ(tape_is_signal_inverted(), c.inverted) << c.name;
    }
    tape_set_signal_invert(0);
}

} // namespace
