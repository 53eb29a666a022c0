#include "host/screen_keyboard.h"

#include "cgenie/memory/memory.h"
#include "core/machine.h"
#include "host/engraving.h"
#include "host/key_labels.h"
#include "host/key_map.h"
#include "host/replays.h"
#include "host/screen_keyboard_picture.h"
#include "host/whole_program.h"

#include <set>

namespace {

class ScreenKeyboardTest : public WholeProgramTest {
protected:
    void point(Pointer::Act act, const std::string& legend, int finger) {
        for (const ScreenKey& key : screen_keys()) {
            if (key.legend != legend) continue;
            const Area area = area_of(key, host->pane(PaneId::keyboard).size());
            Event event{Event::Kind::pointer, 0, 0, {}};
            event.pointer = {act,
                             PaneId::keyboard,
                             int(area.left + area.right) / 2,
                             int(area.top + area.bottom) / 2,
                             BUTTON_LEFT,
                             0,
                             finger > 0,
                             finger};
            return WindowProcedure(event);
        }
        ADD_FAILURE() << legend;
    }
    /// A click is over before the machine runs again.
    void click(const std::string& legend) {
        point(Pointer::Act::press, legend, 0);
        point(Pointer::Act::release, legend, 0);
        run_frames(6);
    }
    /// The line that the cursor stands in, from its start.
    static std::string typed() {
        const size_t cursor = memory[0x4020] | size_t(memory[0x4021]) << 8;
        const size_t line = cursor - (cursor - 0x4400) % 40;
        return {reinterpret_cast<const char*>(memory) + line, cursor - line};
    }
};

TEST_F(ScreenKeyboardTest, ClicksTypeInBothMappingsAndAreKeptInReplays) {
    for (const bool symbolic : {false, true}) {
        write_text(SETTINGS, "KeyMapping = " + std::to_string(symbolic));
        start({"--record", "run.tvr"});
        EXPECT_EQ(shell_state.key_mapping, symbolic);
        for (const bool question : {false, true}) {
            command(COMMAND_KEYBOARD_DOCKED + question);
            run_frames(question ? 0 : 60);
            click(question ? "3" : "RETURN");
        }
        click("BY POSITION");
        EXPECT_FALSE(shell_state.key_mapping);
        for (const char* legend : {"SHIFT", "2", "A", "SHIFT", "SHIFT", "1", "3", "SHIFT", "1",
                                   "MOD SEL", "A", "SHIFT", "MOD SEL", "Z", "RPT"}) {
            click(legend);
        }
        if (symbolic) click("BY CHARACTER");
        point(Pointer::Act::press, "SHIFT", 1);
        point(Pointer::Act::press, "5", 2);
        run_frames(3);
        point(Pointer::Act::release, "SHIFT", 1);
        point(Pointer::Act::release, "5", 2);
        run_frames(3);
        click("6");
        EXPECT_EQ(typed(), ">3\"A!#1\x81\xBA%6");
        command(COMMAND_KEYBOARD_FLOATING);
        EXPECT_FALSE(screen_keys_are_held());
        emu_close();
        start({"--replay", "run.tvr"});
        while (replay_plays()) run_frames(1);
        EXPECT_EQ(typed(), ">3\"A!#1\x81\xBA%6");
        emu_close();
    }
}

TEST_F(ScreenKeyboardTest, HasEveryKeyOfTheMatrixUnderItsOwnCharacter) {
    host_keyboard_init();
    std::set<unsigned> on_picture, in_matrix;
    for (unsigned position = 0; position < 64; ++position) {
        if (host_key_for(position, false)) in_matrix.insert(position);
    }
    const Size sizes[] = {{392, 139}, {1000, 353}, {300, 300}};
    for (const ScreenKey& key : screen_keys()) {
        SCOPED_TRACE(key.legend);
        for (const Size size : sizes) {
            const Area area = area_of(key, size);
            for (const double x : {area.left + 0.1, area.right - 0.1}) {
                EXPECT_EQ(key_at(size, x, area.top + 0.1), &key);
                EXPECT_EQ(key_at(size, x, area.bottom - 0.1), &key);
            }
        }
        if (!key.is_in_matrix()) continue;
        on_picture.insert(key.position());
        if (!key.code || std::string(key.legend).size() != 1) continue;
        const auto by_character = [&](char c) { return host->keyboard().key_for(c); };
        EXPECT_EQ(host_key_for(key.position(), true), by_character(char(std::tolower(key.code))));
        if (*key.shifted) {
            EXPECT_EQ(host_key_for(key.position(), true, true), by_character(*key.shifted));
        }
    }
    EXPECT_EQ(on_picture, in_matrix);

    host->keyboard().layout['"' - ' '] = KeyForCharacter{'2', MODIFIER_SHIFT};
    host->keyboard().layout['@' - ' '] = KeyForCharacter{'Q', MODIFIER_CONTROL | MODIFIER_ALT};
    host->keyboard().layout['?' - ' '].reset();
    host_keyboard_init();
    const std::tuple<unsigned, const char*, const char*> labels[] = {{0, "[", "ALTGR+Q"},
                                                                     {1, "A", "A"},
                                                                     {34, "2", "2"},
                                                                     {39, "7", "7 '"},
                                                                     {42, "'", "\u21E7; \u21E78"},
                                                                     {47, "/", "/"},
                                                                     {49, "HOME", "HOME"},
                                                                     {53, "\u2190 BKSP", "BKSP"},
                                                                     {56, "SHIFT", "SHIFT"},
                                                                     {57, "INS", ""}};
    for (const auto& [position, by_position, by_character] : labels) {
        EXPECT_EQ(host_key_label(position, false), by_position);
        EXPECT_EQ(host_key_label(position, true), by_character);
    }
}

TEST_F(ScreenKeyboardTest, IsDrawnWhenSomethingChangesAndKeepsItsPlace) {
    const auto drawn = [this] {
        const int before = host->pane(PaneId::keyboard).stretches;
        update_screen_keyboard();
        return host->pane(PaneId::keyboard).stretches - before;
    };
    for (const int touch : {1, 0}) {
        start({}, {.line = {}, .touch_screen = touch == 1});
        EXPECT_EQ(int(shell_state.keyboard_place), touch);
        emu_close();
        start({}, {.line = {}, .touch_screen = touch == 0});
        EXPECT_EQ(int(shell_state.keyboard_place), touch) << "as it is in the settings";
        emu_close();
        std::filesystem::remove(SETTINGS);
    }
    write_text(SETTINGS, "ScreenKeyboard = 1");
    start();
    const int height = docked_keyboard_height(host->window().client_size().width);
    EXPECT_GT(height, 100);
    EXPECT_EQ(host->pane(PaneId::picture).size().height, 288 + 8);
    run_frames(2);
    drawn();
    EXPECT_EQ(drawn(), 0);
    host->set_key('A', true);
    EXPECT_EQ(drawn(), 1);
    host->set_key('A', false);
    EXPECT_EQ(drawn(), 1);
    memory[0xF408] ^= 0xFF; // the pattern of 81 in the character memory
    EXPECT_EQ(drawn(), 1) << "the machine's characters stand on the keys";
    command(COMMAND_FULL_SCREEN);
    EXPECT_EQ(docked_keyboard_height(400), 0);
    command(COMMAND_KEYBOARD_DOCKED); // hides it
    command(COMMAND_FULL_SCREEN);
    const int plain = host->window().outer_size({0, 288 + 8 + 23}).height;
    EXPECT_EQ(host->window().outer.height(), plain);
    command(COMMAND_KEYBOARD_DOCKED);
    EXPECT_EQ(host->window().outer.height(), plain + height);
    command(COMMAND_KEYBOARD_FLOATING);
    EXPECT_EQ(host->window().outer.height(), plain);
    host->window().keyboard = {30, 40, 630, 252};
    command(host->window().keyboard_closed);
    EXPECT_EQ(host->window().keyboard_place, KeyboardPlace::hidden);
    command(COMMAND_KEYBOARD_FLOATING);
    emu_close();
    start();
    EXPECT_TRUE(is_menu_item_checked(COMMAND_KEYBOARD_FLOATING));
    EXPECT_EQ(host->window().keyboard, (Rectangle{30, 40, 630, 252}));
}

TEST(Engraving, CharactersLookDifferentAndStayInTheirHeight) {
    const Lettering how = {36, 3};
    std::set<std::vector<Colour>> seen;
    for (char c = '!'; c <= '~'; ++c) {
        if (c >= 'a' && c <= 'z') continue;
        Drawing drawing({60, 60}, 0);
        engrave(drawing, {6, 6}, {&c, 1}, how, 0xFFFFFF);
        std::vector<Colour> pixels;
        for (int n = 0; n < 60 * 60; ++n) {
            pixels.push_back(drawing.pixel(n % 60, n / 60));
            const bool outside = n / 60 < 5 || n / 60 > 52 || n % 60 < 5;
            EXPECT_TRUE(!outside || pixels.back() == 0) << c;
        }
        EXPECT_TRUE(seen.insert(pixels).second) << c;
    }
}

} // namespace
