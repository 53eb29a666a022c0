#include "host/pad_keys.h"

#include "cgenie/input.h"
#include "cgenie/joystick.h"
#include "cgenie/keyboard.h"
#include "host/attachments.h"
#include "host/autostart.h"
#include "host/joysticks.h"
#include "host/loaded_program.h"
#include "host/whole_program.h"
#include "media/wd1771.h"

namespace {

constexpr const char* STORE = "data/pad-keys";
constexpr int LIST = 6, KEYS = 8, RESET = 10, HINT = 11, ALL_RADIO = 4, OK = 1; // of the dialog

class PadKeysTest : public WholeProgramTest {
protected:
    void SetUp() override {
        WholeProgramTest::SetUp();
        for (const char* name : {"a.bas", "b.bas"}) write_text(name, std::string("10 REM ") + name);
        write_text("c.dsk", std::string(89600, '\0'));
    }
    void start_with_pads(const Arguments& arguments) {
        start(arguments);
        host->joysticks().sticks.resize(2);
        input_end_frame();
    }
    JoystickState& pad(int number) { return host->joysticks().sticks[size_t(number)].state; }
    /// Presses it on the pad, and lets it go.
    void press(HeadlessForm& form, int number, const JoystickState& pressed) {
        pad(number) = pressed;
        form.tick();
        pad(number) = {};
        form.tick();
    }
    void in_dialog(const std::function<void(HeadlessForm& form)>& act) {
        host->forms().acts.push_back(act);
        command(COMMAND_PAD_KEYS);
    }
    /// Rows 0 to 7 with a key down, X, Y and first button of a stick, and the keypads.
    std::string machine(int number, const JoystickState& held) {
        pad(number) = held;
        std::string text;
        for (int row = 0; row < 8; ++row) {
            const int down = keyboard_read(uint8_t(1 << row));
            if (down) text += std::to_string(row) + ":" + std::to_string(down) + " ";
        }
        for (int query = 0; query < 3; ++query) {
            text += std::to_string(input_getJoyCords(number, query)) + " ";
        }
        pad(number) = {};
        return text + std::to_string(input_state.now.keypad);
    }
};
const JoystickState UP = {32767, 0}, DOWN = {32767, 65535}, A = {32767, 32767, 1U << PAD_A},
                    LEFT = {0, 32767}, SHOULDER = {32767, 32767, 1U << PAD_LEFT_SHOULDER};

TEST_F(PadKeysTest, InputsAreKeysOfTheProgramOrOfAll) {
    start_with_pads({"a.bas"});
    EXPECT_EQ(machine(0, UP), "32767 65535 0 0");
    in_dialog([&](HeadlessForm& form) {
        press(form, 0, UP);
        EXPECT_TRUE(form.press_key(KEY_ESCAPE));
        EXPECT_FALSE(form.press_key('Q')) << "nothing is waited for";
        EXPECT_EQ(form.text(LIST), "Up\tjoystick 1 up");
        press(form, 0, UP);
        form.press_key(KEY_F11);
        EXPECT_NE(form.text(HINT).find("no such key"), std::string::npos);
        form.press_key('Q');
        EXPECT_EQ(form.text(LIST), "Up\tkey Q");
        press(form, 0, A);
        form.press_key('Q');
        EXPECT_NE(form.text(HINT).find("Up is key Q as well"), std::string::npos);
        form.press_key(KEY_NUMPAD0 + 5);
        press(form, 0, A);
        form.press_key(KEY_NUMPAD0 + 5);
        press(form, 0, SHOULDER);
        form.press_key(KEY_RETURN);
        press(form, 1, LEFT);
        form.press_key(KEY_SPACE);
        form.press(OK);
    });
    EXPECT_EQ(machine(0, UP), "2:2 32767 32767 0 0") << "the joystick stands still";
    EXPECT_EQ(machine(0, DOWN), "32767 0 0 0") << "and acts where it is left";
    EXPECT_EQ(machine(0, A), "32767 32768 0 32");
    EXPECT_EQ(machine(1, LEFT), "6:128 32767 32768 0 0");
    pad(0) = SHOULDER;
    EXPECT_FALSE(rewind_button_is_down());

    command(COMMAND_RESTART);
    EXPECT_EQ(machine(0, UP), "32767 65535 0 0") << "the program is gone";
    autostart_file("b.bas");
    in_dialog([&](HeadlessForm& form) {
        form.choose(ALL_RADIO, 1);
        form.choose(LIST, PAD_UP);
        form.choose(KEYS, 2);
        form.press(OK);
    });
    EXPECT_EQ(machine(0, UP), "0:2 32767 32767 0 0");
    const shared_bytes attached = attachments_now();
    autostart_file("a.bas");
    EXPECT_EQ(machine(0, UP), "2:2 32767 32767 0 0");
    attachments_follow(attached);
    EXPECT_EQ(loaded_program().name, "b.bas") << "an earlier moment has its program";
    autostart_file("a.bas");
    in_dialog([](HeadlessForm& form) { form.press(RESET), form.press(OK); });
    EXPECT_EQ(machine(0, UP), "0:2 32767 32767 0 0");
    in_dialog([](HeadlessForm& form) { form.choose(KEYS, 3); }); // and Cancel
    EXPECT_EQ(read_text(STORE), "all 1:up=A\n");
    emu_close();
}

TEST_F(PadKeysTest, KeysGoAlongWithADiskThatIsWrittenTo) {
    start_with_pads({"/i", "c.dsk"});
    in_dialog([&](HeadlessForm& form) {
        form.choose(LIST, PAD_UP);
        form.choose(KEYS, 2);
        form.press(OK);
    });
    drive_contents[0].change()[5] = 1;
    wd1771.disks[0].modified = 1;
    host->dialogs().answers.push_back(0);
    command(COMMAND_DETACH_DISK);
    emu_close();
    start_with_pads({"/i", "c.dsk"});
    EXPECT_EQ(machine(0, UP), "0:2 32767 32767 0 0");
    emu_close();
}

TEST_F(PadKeysTest, DamagedTextIsSkipped) {
    std::filesystem::create_directory("data");
    const std::string bad[] = {"",        "x 1:a=Q",  "0 1:a=Q", "11111111111111111 1:a=Q",
                               "\xFF\0=", "00FF 1:a", "all"};
    std::string text;
    for (const std::string& line : bad) text += line + "\n";
    write_text(STORE, text + "AB 3:a=Q 1:zz=Q 1:a=QQ 1:=Q = 2:r3=KEYPAD9 1:b== 1:x=MODSEL\r 1:y=/");
    PadKeys expected = {};
    expected[1][PAD_RIGHT_STICK] = PAD_KEYPAD + 9;
    expected[0][PAD_Y] = 48;
    EXPECT_EQ(stored_pad_keys(0xAB), expected);
    EXPECT_EQ(stored_pad_keys(0xFF), PadKeys());
    text = "1000 1:y=/\nall\n";
    for (int program = 1001; program < 2000; ++program) text += std::to_string(program) + "\n";
    write_text(STORE, text);
    EXPECT_TRUE(store_pad_keys(1, expected));
    text = read_text(STORE);
    EXPECT_EQ(text.substr(0, 4), "all\n");
    EXPECT_EQ(std::ranges::count(text, '\n'), 1 + PAD_PROGRAMS) << "the oldest are forgotten";
    EXPECT_EQ(stored_pad_keys(1), expected);
    EXPECT_EQ(stored_pad_keys(0x1498), PadKeys());
    EXPECT_EQ(stored_pad_keys(0x1499), std::nullopt);
}

} // namespace
