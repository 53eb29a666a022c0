#include "cgenie/joystick.h"

#include "cgenie/bus.h"
#include "cgenie/input.h"
#include "media/printer.h"
#include "sound/ym2149.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

constexpr int FIRE_1 = 10, FIRE_2 = 11;

class JoystickTest : public testing::Test {
protected:
    void SetUp() override {
        input_state = {};
        printer_enabled = false;
        ym2149_init(2216750);
        memory_init();
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
    /// A digit of the keypad, or a fire button of joystick 0.
    static void press(int key) {
        machine_input& input = input_state.now;
        if (key < 10) input.keypad |= uint16_t(1U << key);
        if (key == FIRE_1) input.sticks[0].first_button = 1;
        if (key == FIRE_2) input.sticks[0].second_button = 1;
    }
};

TEST_F(JoystickTest, EveryLevelAgainstEveryAxis) {
    const int positions[] = {0, 1023, 1024, 32767, 32768, 47000, 64511, 64512, 65535};
    const int count = std::size(positions);
    for (int i = 0; i < count; ++i) {
        // X0, Y0 above the lower end, X1, Y1; different ones.
        const int axes[] = {positions[i], positions[(i + 2) % count], positions[(i + 4) % count],
                            positions[(i + 7) % count]};
        input_state.now.sticks[0] = {uint16_t(axes[0]), uint16_t(axes[1])};
        input_state.now.sticks[1] = {uint16_t(axes[2]), uint16_t(axes[3])};
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
                input_state = {};
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
        input_state = {};
        for (const int key : c.keys) press(key);
        EXPECT_EQ(port_b(c.port_a) & 0x0F, c.rows) << "case " << &c - cases;
    }
    input_state = {};
    input_state.now.sticks[1] = {32767, 32767, 1, 1};
    EXPECT_EQ(port_b(0x38) & 0x0F, 0x0F) << "the buttons of joystick 1 are not connected";
}

TEST_F(JoystickTest, ThePrinterTakesTheComparators) {
    EXPECT_EQ(port_b(20), 0xFF) << "in the middle";
    input_state.now.sticks[0] = {0, 0, 0, 1};
    printer_enabled = true;
    // Paper and busy: there is no file to print to.
    print_byte('A');
    EXPECT_EQ(port_b(0x3E), 0xA7);
    printer_enabled = false;
    EXPECT_EQ(port_b(0x3E), 0x07);
    printer_reset();
}

} // namespace
