#include "cgenie/crtc.h"
#include "cgenie/keyboard.h"
#include "cgenie/memory/memory.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "platform/headless/headless.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

constexpr unsigned TEXT = 0x4400, GRAPHICS = 0x4800, COLOURS = COLOUR_RAM_START;
constexpr unsigned TEXT_COLOUR = 0x4300, LATCH_COPY = 0x431C;
constexpr unsigned COLUMNS = 40;

struct Model {
    uint32_t slot;
    unsigned rows;
    const char* sign_on;
    uint8_t colour; ///< nibble of white
};
constexpr Model MODELS[] = {{0, 24, "TARVELIN FIRMWARE 1.0", 0},
                            {1, 25, "TARVELIN FIRMWARE 2.0 S/N", 0},
                            {2, 25, "TARVELIN FIRMWARE 2.0", 15}};

class Firmware : public ::testing::Test {
protected:
    Firmware() : platform_(HeadlessOptions{}) {
        install_platform(platform_);
        machine_init();
        keyboard_change_mapping(0);
    }
    ~Firmware() override { machine_cfg[CUSTOM_CONFIGURATION].ram_size = 2; }

    void boot(const Model& model) {
        rows_ = model.rows;
        memory_set_startup_pattern(0xA5);
        machine_change_cfg(machine_cfg[model.slot], 1);
        run(30);
        press({KEY_RETURN}); // all of the memory
        run(10);
    }
    static void run(int frames) {
        while (frames-- > 0) machine_run();
    }
    /// Presses keys one after the other, three frames down and two up.
    void press(std::initializer_list<int> keys) {
        for (int key : keys) {
            platform_.set_key(uint8_t(key), true);
            run(3);
            platform_.set_key(uint8_t(key), false);
            run(2);
        }
    }
    void type(const std::string& capitals) {
        for (char character : capitals) press({character});
    }
    void shift(bool down) { platform_.set_key(KEY_SHIFT, down); }

    std::string row(unsigned number) const {
        std::string text(reinterpret_cast<const char*>(memory) + TEXT + number * COLUMNS, COLUMNS);
        return text.substr(0, text.find_last_not_of(' ') + 1);
    }
    static unsigned word(unsigned address) {
        return memory[address] | unsigned(memory[address + 1]) << 8;
    }
    /// Runs machine code at 9000 and stays behind it.
    static void execute(std::vector<uint8_t> code) {
        code.insert(code.end(), {0x18, 0xFE}); // JR to itself
        std::ranges::copy(code, memory + 0x9000);
        z80_state.pc = 0x9000;
        run(6);
        ASSERT_EQ(z80_state.pc, 0x9000 + code.size() - 2);
    }

    HeadlessPlatform platform_;
    unsigned rows_ = 0;
};

TEST_F(Firmware, BootsToThePrompt) {
    for (const Model& model : MODELS)
        for (uint32_t ram : {1u, 0u}) {
            SCOPED_TRACE(std::string(model.sign_on) + (ram ? ", 32 KB" : ", 16 KB"));
            machine_cfg[CUSTOM_CONFIGURATION].ram_size = ram;
            boot(model);
            const std::vector<std::string> expected = {"MEM SIZE?",
                                                       model.sign_on,
                                                       "FOR THE COLOUR GENIE",
                                                       ram ? "32K RAM" : "16K RAM",
                                                       "",
                                                       "READY",
                                                       ">"};
            for (unsigned y = 0; y < rows_; ++y)
                EXPECT_EQ(row(y), y < expected.size() ? expected[y] : "") << "row " << y;
            for (unsigned i = 0; i < 0x400; ++i)
                ASSERT_EQ(memory[COLOURS + i] & 0x0F, model.colour) << "cell " << i;

            EXPECT_EQ(memory[0x42F9], model.rows);
            EXPECT_EQ(word(0x40B1), ram ? 0xBFFFu : 0x7FFFu) << "top of memory";
            EXPECT_EQ(word(0x40A4), 0x5801u) << "program";
            EXPECT_EQ(word(0x40F9), 0x5803u) << "its end";
            EXPECT_EQ(memory[0x5800] | memory[0x5801] | memory[0x5802], 0);
            EXPECT_EQ(ports[0xFF] | memory[LATCH_COPY], 0);
            for (unsigned vector = 0x4000; vector < 0x4015; vector += 3)
                EXPECT_EQ(memory[vector], 0xC3) << "vector " << std::hex << vector;

            // 40 columns, 38 rows of 8 lines; cursor behind the prompt in row 6.
            const int registers[16] = {70, 40, 52,   0xF5, 38,   0,   int(model.rows), 29, 0, 7,
                                       -1, 7,  0x04, 0,    0x44, 0xF1};
            for (unsigned i = 0; i < 16; ++i) {
                if (registers[i] < 0) continue;
                EXPECT_EQ(crtc.registers[i], registers[i]) << "R" << i;
            }
            EXPECT_EQ(crtc.registers[10] & 0x60, 0x40) << "blinking cursor";
        }
}

TEST_F(Firmware, EchoesAndStoresWhatIsTyped) {
    boot(MODELS[0]);
    type("AB");
    shift(true);
    type("C1");
    press({KEY_OEM_2}); // ?
    shift(false);
    press({KEY_SPACE, 'X', KEY_BACKSPACE, 'Y', KEY_RETURN});
    EXPECT_EQ(row(6), ">ABc!? Y");
    EXPECT_EQ(row(7), "?SN ERROR");
    EXPECT_EQ(row(9), ">");

    type("Q");
    shift(true);
    press({KEY_LEFT}); // the whole line
    shift(false);
    press({KEY_BACKSPACE, 'Z', KEY_RIGHT, '9', KEY_RETURN});
    EXPECT_EQ(row(9), ">Z       9");
    press({'X', KEY_END});
    EXPECT_EQ(row(13), "READY") << "BREAK";
    press({'X', KEY_HOME, 'N'});
    EXPECT_EQ(row(0), "N") << "CLEAR";
    shift(true);
    press({KEY_F2}); // F6
    shift(false);
    press({KEY_F4});
    EXPECT_EQ(row(0), "NCSAVE\"EDIT");
}

TEST_F(Firmware, RepeatsAHeldKeyAndLosesNoneOfThree) {
    boot(MODELS[0]);
    platform_.set_key('A', true);
    run(20);
    EXPECT_EQ(row(6), ">A");
    run(50);
    const auto count = row(6).size() - 1;
    EXPECT_GE(count, 5u);
    EXPECT_LE(count, 20u);
    for (int key : {'P', 'C', 'B'}) platform_.set_key(uint8_t(key), true); // two share a row
    platform_.set_key('A', false);
    run(4);
    platform_.release_all_keys();
    run(4);
    EXPECT_EQ(row(6).substr(1 + count), "BCP");
}

TEST_F(Firmware, ScrollsTextAndColoursTogether) {
    for (const Model& model : MODELS) {
        SCOPED_TRACE(model.sign_on);
        boot(model);
        while (word(0x4020) < TEXT + (rows_ - 1) * COLUMNS) press({KEY_RETURN});
        memory[TEXT_COLOUR] = 6;
        type("MARK");
        memory[TEXT_COLOUR] = 9;
        press({KEY_RETURN, 'B'});
        EXPECT_EQ(row(2), "READY"); // three rows up, two of them for the answer
        EXPECT_EQ(row(rows_ - 4), ">MARK");
        EXPECT_EQ(row(rows_ - 1), ">B");
        const uint8_t* colours = memory + COLOURS + (rows_ - 4) * COLUMNS;
        const uint8_t expected[] = {model.colour, 6, 6, 6, 6, model.colour};
        for (unsigned i = 0; i < 6; ++i) EXPECT_EQ(colours[i] & 0x0F, expected[i]) << i;
        EXPECT_EQ(colours[COLUMNS] & 0x0F, 9) << "a new row takes the text colour";
        const unsigned cursor = TEXT + (rows_ - 1) * COLUMNS + 2;
        EXPECT_EQ(crtc.cursor_address, cursor);
    }
}

TEST_F(Firmware, ResetKeyKeepsMemory) {
    boot(MODELS[2]);
    for (unsigned address = 0x5801; address < 0xBF00; ++address)
        memory[address] = uint8_t(address * 7);
    memory[0x40F9] = 0x34;
    memory[0x40FA] = 0x62;
    execute({0xCD, 0xA9, 0x38,                   // graphics screen
             0x3E, 0x01, 0xD3, 0xFA, 0xD3, 0xFB, // R1 = 1
             0x31, 0x00, 0x00});                 // a stack in ROM
    memory[0x4017] = 0;                          // a keyboard driver that is gone
    machine_reset();
    run(10);
    EXPECT_EQ(row(0), "READY");
    EXPECT_EQ(row(1), ">");
    for (unsigned address = 0x5801; address < 0x9000; ++address)
        ASSERT_EQ(memory[address], uint8_t(address * 7)) << std::hex << address;
    EXPECT_EQ(word(0x40F9), 0x6234u);
    EXPECT_EQ(word(0x40FB), 0x6234u) << "no variables are left";
    EXPECT_EQ(crtc.registers[1], 40);
    EXPECT_EQ(crtc.start_address, 0x400u);
    EXPECT_EQ(ports[0xFF] | memory[LATCH_COPY], 0);
    type("OK");
    EXPECT_EQ(row(1), ">OK");
    machine_reset();
    run(10);
    EXPECT_EQ(row(1), ">") << "a second time";
}

TEST_F(Firmware, ResetKeyBeforeTheFirstStartStartsTheMachine) {
    memory_set_startup_pattern(0xA5);
    machine_change_cfg(machine_cfg[0], 1);
    machine_reset();
    run(30);
    EXPECT_EQ(row(0), "MEM SIZE?");
    press({KEY_RETURN});
    run(10);
    EXPECT_EQ(row(1), MODELS[0].sign_on);
    EXPECT_EQ(word(0x40B1), 0xBFFFu);
}

TEST_F(Firmware, SwitchesBetweenTheScreens) {
    for (const Model& model : MODELS) {
        SCOPED_TRACE(model.sign_on);
        boot(model);
        run(20);
        const uint32_t text_border = crtc.top_border;
        const unsigned lines = model.rows == 24 ? 96 : 102;
        memory[GRAPHICS + lines * COLUMNS] = 0x77; // where programs load
        execute({0xCD, 0xA9, 0x38, 0x3E, 0x02, 0xCD, 0x52, 0x38});
        run(20);
        for (unsigned i = 0; i < lines * COLUMNS; ++i) ASSERT_EQ(memory[GRAPHICS + i], 0xAA) << i;
        EXPECT_EQ(memory[GRAPHICS + lines * COLUMNS], 0x77);
        EXPECT_EQ(ports[0xFF], 0x20);
        EXPECT_EQ(memory[LATCH_COPY], 0x20);
        EXPECT_EQ(crtc.start_address, 0x800u);
        EXPECT_EQ(crtc.vertical_displayed, lines);
        EXPECT_EQ(crtc.displayed_scan_lines, 2 * lines);
        EXPECT_EQ(crtc.top_border, text_border);
        z80_state.pc = 0x1A19; // the prompt takes the text screen
        run(20);
        EXPECT_EQ(ports[0xFF], 0);
        EXPECT_EQ(crtc.start_address, 0x400u);
        EXPECT_EQ(crtc.top_border, text_border);
    }
}

} // namespace
