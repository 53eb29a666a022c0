#include "host/rewind.h"

#include "core/machine_events.h"
#include "core/pacing/pacing.h"
#include "host/film_bar.h"
#include "host/whole_program.h"
#include "sound/output/wav_capture.h"
#include "time/event_feed.h"
#include "time/history.h"
#include "wall/machine_host.h"

namespace {

class RewindTest : public WholeProgramTest {
protected:
    void start() {
        WholeProgramTest::start();
        history_host.show = [] { update_screen(1); };
        history_start({});
        pacing_host.frame_ran = history_frame_ran;
        turns(6000);
    }
    void TearDown() override {
        rewind_end();
        history_stop();
        WholeProgramTest::TearDown();
    }
    void turns(int64_t milliseconds) {
        for (const int64_t end = host->slept_ms() + milliseconds; host->slept_ms() < end;) {
            const ShellTurn turn = shell_turn();
            if (turn.next == ShellTurn::Next::on_event) return;
            if (turn.microseconds) host->events().wait(turn.microseconds);
        }
    }
    void press(int key, uint8_t modifiers = 0) {
        host->push_event({Event::Kind::key_down, key, modifiers, {}});
        turns(1);
    }
    void hold(int key, bool down) { host->set_key(uint8_t(key), down); }
    void point(Pointer::Act act, int x) {
        Event event{Event::Kind::pointer, act == Pointer::Act::wheel ? -240 : 0, 0, {}};
        event.pointer = {act, PaneId::film_bar, x, 10, BUTTON_LEFT, BUTTON_LEFT};
        host->push_event(event);
        turns(1);
    }
    static int64_t behind() { return history_last() - history_position(); }
    HeadlessPane& bar() { return host->pane(PaneId::film_bar); }
};

TEST_F(RewindTest, HeldKeyOrButtonLeadsBackAndTheMachinePlaysOnFromThere) {
    const std::pair<int, int> cases[] = {{0, 1}, {KEY_SHIFT, 2}, {KEY_CONTROL, 4}, {-1, 1}};
    start();
    host->joysticks().sticks.resize(1);
    JoystickState& pad = host->joysticks().sticks[0].state;
    for (const auto& [key, speed] : cases) {
        turns(500);
        const bool button = key < 0;
        pad.set(PAD_LEFT_SHOULDER, button);
        hold(KEY_PAGE_UP, !button);
        if (key > 0) hold(key, true);
        if (!button) press(KEY_PAGE_UP);
        turns(1000);
        EXPECT_NEAR(double(behind()), 50 * speed, 2 * speed);
        EXPECT_TRUE(bar().shown);
        const int64_t there = history_position();
        host->release_all_keys();
        pad = {};
        turns(100);
        EXPECT_NEAR(double(history_last()), double(there) + 6, 2) << "plays on";
        EXPECT_FALSE(bar().shown);
    }
    hold(KEY_PAGE_UP, true);
    press(KEY_PAGE_UP);
    turns(10000);
    EXPECT_EQ(history_position(), 0) << "doubled each three seconds, to the beginning";
    press(KEY_ESCAPE);
    EXPECT_LT(behind(), 2) << "back to the present";
}

TEST_F(RewindTest, KeysAndMouseMoveInTheOpenBar) {
    start();
    press('R', MODIFIER_ALT);
    EXPECT_TRUE(is_menu_item_checked(COMMAND_PAUSE));
    const int64_t all = history_last();
    const struct {
        int key;
        uint8_t modifiers;
        int64_t behind;
    } keys[] = {{KEY_LEFT, MODIFIER_SHIFT, 50},
                {KEY_PAGE_UP, 0, 51},
                {KEY_LEFT, 0, 52},
                {KEY_PAGE_DOWN, 0, 51},
                {KEY_RIGHT, 0, 50},
                {KEY_RIGHT, MODIFIER_CONTROL, 0},
                {KEY_HOME, 0, all},
                {KEY_LEFT, 0, all},
                {KEY_END, 0, 0},
                {KEY_PAGE_DOWN, 0, 0}};
    for (const auto& c : keys) {
        press(c.key, c.modifiers);
        EXPECT_EQ(behind(), c.behind) << c.key << " " << int(c.modifiers);
    }
    EXPECT_EQ(history_last(), all + 1) << "the last key has run a frame";
    using Act = Pointer::Act;
    const int width = bar().size().width;
    point(Act::press, width / 2);
    EXPECT_NEAR(double(behind()), double(all) / 2, 3);
    point(Act::move, width / 4);
    EXPECT_GT(behind(), all / 2);
    point(Act::release, width / 4);
    const int64_t there = behind();
    point(Act::move, width / 2);
    EXPECT_EQ(behind(), there);
    point(Act::wheel, 5);
    EXPECT_EQ(behind(), std::min(there + 100, all + 1));
    EXPECT_EQ(bar().reading.value, -double(behind()) / 50);
    press(KEY_ESCAPE);
    EXPECT_FALSE(bar().shown || is_menu_item_checked(COMMAND_PAUSE));
    EXPECT_GE(history_last(), all + 1) << "nothing is lost";

    for (const bool by_mouse : {false, true}) {
        command(COMMAND_FILM_BAR);
        press(KEY_LEFT, MODIFIER_SHIFT);
        const int64_t from = history_position();
        hold(KEY_RETURN, true);
        if (by_mouse) point(Act::press, 3);
        if (!by_mouse) press(KEY_RETURN);
        EXPECT_FALSE(host->keyboard().is_down(KEY_RETURN)) << "not the machine's";
        EXPECT_NEAR(double(history_last()), double(from), 2) << "plays on from there";
    }
}

TEST_F(RewindTest, WhatIsDoneInThePastIsDoneThere) {
    start();
    bool in_order = true; // for a replay that is recorded meanwhile
    int64_t cycle = 0;
    const auto look = [&](std::span<const machine_event> events) {
        for (const machine_event& event : events) {
            in_order = in_order && std::exchange(cycle, event.cycle) <= event.cycle;
        }
    };
    const int reader = event_feed_add(look, [&] { cycle = 0; });
    sound_create_wav("out.wav");
    turns(100);
    int64_t recorded = 0, after = 0;
    sound_is_saving(&recorded);
    press('R', MODIFIER_ALT);
    press(KEY_LEFT, MODIFIER_SHIFT);
    const int64_t there = history_position();
    command(COMMAND_SCREENSHOT);
    turns(1);
    EXPECT_TRUE(bar().shown) << "only looked at";
    EXPECT_TRUE(sound_is_saving(&after) && after == recorded);
    command(COMMAND_RESET);
    turns(1);
    EXPECT_NEAR(double(history_last()), double(there), 2);
    sound_close_wav();
    press('R', MODIFIER_ALT);
    press(KEY_LEFT);
    command(COMMAND_MONITOR);
    press(KEY_F7); // runs
    EXPECT_FALSE(bar().shown);
    command(COMMAND_MONITOR);
    EXPECT_TRUE(in_order);
    event_feed_remove(reader);

    history_stop();
    press(KEY_PAGE_UP);
    EXPECT_NE(host->status_text(3).find("history"), std::string::npos);
    EXPECT_FALSE(bar().shown);
}

TEST_F(RewindTest, TimeIsToldInWords) {
    EXPECT_EQ(film_bar_time({.first = 100, .position = 14835, .last = 15450}), "-0:12.3 of 5:07");
    EXPECT_EQ(film_bar_time({.position = 49, .last = 50, .single_frames = true}),
              "-0:00.02 of 0:01");
    EXPECT_EQ(film_bar_time({.position = 1'619'335, .last = 1'799'950}), "-1:00:12.3 of 9:59:59");
}

} // namespace
