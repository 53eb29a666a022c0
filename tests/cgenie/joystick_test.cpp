#include "cgenie/joystick.h"

#include "cgenie/bus.h"
#include "media/printer.h"
#include "platform/headless/headless.h"
#include "sound/ym2149.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

constexpr int FIRE_1 = 10, FIRE_2 = 11;

class JoystickTest : public testing::Test {
protected:
    void SetUp() override {
        install_platform(host);
        reset_host();
        printer_enabled = false;
        ym2149_init(2216750);
        memory_init();
        joystick_init();
        joystick_reset();
    }
    void TearDown() override { reset_host(); }

    static void reset_host() {
        host.release_all_keys();
        host.joysticks().sticks.clear();
    }
    /// What a program sees after writing `port_a`: port A is an output, port B an input.
    static int port_b(uint8_t port_a) {
        for (const auto& [reg, value] : {std::pair{7, 0x40}, std::pair{14, int(port_a)}}) {
            z80_out(0xF8, uint8_t(reg));
            z80_out(0xF9, uint8_t(value));
        }
        z80_out(0xF8, 15);
        return z80_in(0xF9);
    }
    static void plug(uint16_t x, uint16_t y, bool first = false, bool second = false) {
        HeadlessStick stick;
        stick.state = {x, y, first, second};
        host.joysticks().sticks.push_back(stick);
    }
    /// A digit of the numeric keypad, or a fire button of joystick 0.
    static void press(int key) {
        if (key < 10) return host.set_key(uint8_t(KEY_NUMPAD0 + key), true);
        if (host.joysticks().sticks.empty()) plug(32767, 32767);
        JoystickState& state = host.joysticks().sticks[0].state;
        (key == FIRE_1 ? state.first_button : state.second_button) = true;
    }

    // Stays behind for whatever test comes next in this program.
    static inline HeadlessPlatform host{HeadlessOptions{}};
};

TEST_F(JoystickTest, EveryLevelAgainstEveryAxis) {
    const int positions[] = {0, 1023, 1024, 32767, 32768, 47000, 64511, 64512, 65535};
    const int count = std::size(positions);
    for (int i = 0; i < count; ++i) {
        // X0, Y0 above the lower end, X1, Y1; different ones.
        const int axes[] = {positions[i], positions[(i + 2) % count], positions[(i + 4) % count],
                            positions[(i + 7) % count]};
        host.joysticks().sticks.clear();
        plug(uint16_t(axes[0]), uint16_t(65535 - axes[1]));
        plug(uint16_t(axes[2]), uint16_t(65535 - axes[3]));
        for (int level = 0; level < 64; ++level) {
            int expected = 0x0F;
            for (int axis = 0; axis < 4; ++axis) {
                if (axes[axis] >= (level + 1) * 1024) expected += 0x80 >> axis;
            }
            EXPECT_EQ(port_b(uint8_t(level)), expected) << "set " << i << ", level " << level;
        }
    }
}

TEST_F(JoystickTest, KeypadMatrix) {
    // Row by row: what pulls port B bit 0, 1, 2, 3 in the column of port A bit 0, 1, 2.
    const int keypad[3][4] = {{3, 6, 9, FIRE_2}, {2, 5, 8, 0}, {1, 4, 7, FIRE_1}};
    for (int selected = 0; selected < 8; ++selected) {
        for (int column = 0; column < 3; ++column) {
            for (int row = 0; row < 4; ++row) {
                reset_host();
                press(keypad[column][row]);
                const int seen = selected >> column & 1 ? 1 << row : 0;
                EXPECT_EQ(port_b(uint8_t(0x3F - selected)) & 0x0F, 0x0F - seen)
                    << "key " << keypad[column][row] << ", columns " << selected;
            }
        }
    }
    const struct {
        std::vector<int> keys;
        uint8_t port_a;
        int rows;
    } cases[] = {
        {{6}, 0x3E, 0b1101},
        {{3, 5, 7, 0}, 0x38, 0b0000},
        {{3, 5, 7, 0}, 0x3A, 0b1010}, // columns 0 and 2
        {{0, FIRE_1, FIRE_2}, 0x3B, 0b0111},
        {{FIRE_1, 9, 8}, 0x3D, 0b1011},
    };
    for (const auto& c : cases) {
        reset_host();
        for (const int key : c.keys) press(key);
        EXPECT_EQ(port_b(c.port_a) & 0x0F, c.rows) << "case " << &c - cases;
    }
    reset_host();
    plug(32767, 32767);
    plug(32767, 32767, true, true);
    EXPECT_EQ(port_b(0x38) & 0x0F, 0x0F) << "the buttons of joystick 1 are not connected";
}

TEST_F(JoystickTest, ComesAndGoesWhileRunning) {
    EXPECT_EQ(port_b(20), 0xFF);
    plug(0, 65535, true); // bottom left
    EXPECT_EQ(port_b(20) & 0xF0, 0x30);
    EXPECT_EQ(port_b(0x38) & 0x0F, 0b0111);
    plug(65535, 0); // top right
    EXPECT_EQ(port_b(40) & 0xF0, 0x30);
    EXPECT_EQ(input_getJoyCords(0, JOYSTICK_FIRST_BUTTON), 1U);
    EXPECT_EQ(input_getJoyCords(0, JOYSTICK_SECOND_BUTTON), 0U);
    EXPECT_EQ(input_getJoyCords(0, 4), 0U);
    EXPECT_EQ(input_getJoyCords(1, JOYSTICK_X), 65535U);
    EXPECT_EQ(input_getJoyCords(1, JOYSTICK_Y), 65535U) << "up is high";
    host.joysticks().sticks[0].plugged = false;
    EXPECT_EQ(port_b(20), 0xFF) << "back in the middle, button up";
    EXPECT_EQ(port_b(0x38) & 0x0F, 0x0F);
    EXPECT_EQ(port_b(40) & 0xF0, 0x30) << "joystick 1 stays itself";
    host.joysticks().sticks[1].readable = false;
    EXPECT_EQ(port_b(40) & 0xF0, 0x00);
}

TEST_F(JoystickTest, ThePrinterTakesTheComparators) {
    plug(0, 65535, false, true);
    printer_enabled = true;
    // Paper and busy: there is no file to print to.
    print_byte('A');
    EXPECT_EQ(port_b(0x3E), 0xA7);
    printer_enabled = false;
    EXPECT_EQ(port_b(0x3E), 0x07);
    printer_reset();
}

TEST_F(JoystickTest, StartUpSaysWhatItFinds) {
    const struct {
        std::vector<const char*> plugged; // by name; none: the device is there, unplugged
        int refused;                      // number of the one that cannot be captured
        const char* text;
    } cases[] = {
        {{},
         -1,
         "No joystick driver found.\nNumber of joysticks found: 0\nNo joysticks are plugged.\n"},
        {{nullptr, "Pad"}, -1, "Number of joysticks found: 1\nController 1: Pad\n"},
        {{"Stick", "Pad", "Third"},
         0,
         "Number of joysticks found: 2\nController 0: Stick\nController 1: Pad\n"
         "Couldn't capture joystick #1.\n"},
    };
    for (const auto& c : cases) {
        std::vector<HeadlessStick>& sticks = host.joysticks().sticks;
        sticks.assign(c.plugged.size(), {});
        for (int i = 0; i < int(sticks.size()); ++i) {
            sticks[i].plugged = c.plugged[i] != nullptr;
            if (c.plugged[i]) sticks[i].name = c.plugged[i];
            sticks[i].capture_fails = i == c.refused;
        }
        testing::internal::CaptureStderr();
        initJoyInput();
        EXPECT_EQ(testing::internal::GetCapturedStderr(), c.text);
        for (int i = 0; i < int(sticks.size()); ++i) {
            EXPECT_EQ(sticks[i].captured, c.plugged[i] && i < 2 && i != c.refused) << i;
        }
    }
}

} // namespace
