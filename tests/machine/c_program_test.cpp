#include "disk_machine.h"

#include "cgenie/crtc.h"
#include "cgenie/memory/memory.h"
#include "core/machine_events.h"
#include "core/pacing/pacing.h"
#include "platform/keyboard.h"

#include <gtest/gtest.h>

namespace {

/// Programs of the folder sdk, on the machine at its prompt, with the disk ROM and an empty disk.
class CProgram : public testing::TestWithParam<int> {
protected:
    void SetUp() override {
        if (!std::filesystem::exists(SDK_DIR "/words")) GTEST_SKIP() << "built without sdcc";
        machine_.rows("FORMAT 0\nY");
    }
    void start(const std::string& name) {
        const auto bytes = read_file(SDK_DIR "/" + name + "/" + name + ".cmd");
        machine_apply(event_kind::load_module, 1, 0, shared_bytes(bytes));
    }
    DiskMachine machine_{GetParam(), 40, 10};
};

INSTANTIATE_TEST_SUITE_P(Models, CProgram, testing::Values(0, 1));

/// Mostly as BASIC and the disk ROM see it.
TEST_P(CProgram, WordsDoWhatTheySay) {
    BasicMachine& machine = machine_.machine;
    start("words");
    EXPECT_TRUE(machine.type("", 3000)); // keys would get into its lines of BASIC
    EXPECT_TRUE(machine.type("K", 3000));
    EXPECT_TRUE(machine.type("LINE\n", 6000));
    const std::vector<std::string> expected = {
        "",
        "     START VALUE 0                     X",
        "-32768 6  3",
        " 72  148",
        " 3  3  3  1  1",
        " 4  4  4  4  4  2",
        " 1  1  2  2  4  2",
        " 1  2  3  4  4",
        "32 2 3",
        "20 16 18 9 59 1 7 106 9",
        " 31  31  0",
        "31 31 0",
        "LINE",
        "K 4 LINE",
        "11 32",
        "0",
        "0 20 0 RECORD G 37",
        "0 0 30",
        "DISK 0",
        "NEW     /DAT T   2",
        "380 SECTORS FREE",
        "READY",
        ">",
    };
    EXPECT_EQ(machine.screen(), expected);
}

TEST_P(CProgram, NeedMemory) {
    memory[0x40B2] = 0x60; // the top of memory
    start("words");
    EXPECT_TRUE(machine_.machine.type("", 100));
    EXPECT_EQ(machine_.machine.screen().back(), ">NOT ENOUGH MEMORY");
}

/// Whatever the compiler's version makes of their times.
TEST_P(CProgram, ExamplesRun) {
    start("vine");
    int best = 0;
    for (int i = 0; i < 30 && best < 3; ++i) {
        do_some_frames(50);
        const std::string heading = machine_.machine.screen()[0];
        ASSERT_EQ(heading.substr(0, 22), " V I N E        SCORE ");
        best = std::stoi(heading.substr(22));
    }
    EXPECT_GE(best, 3);
    // A key begins a game, and steers.
    for (const auto& [down, frames] : {std::pair{true, 20}, {false, 20}, {true, 75}}) {
        machine_.machine.platform().set_key(KEY_RIGHT, down);
        do_some_frames(frames);
    }
    machine_.machine.platform().set_key(KEY_RIGHT, false);
    const uint8_t* const text = &memory[0x4400];
    const auto bud = std::find(text, text + 960, 0x90) - text;
    EXPECT_LT(bud, 480) << "above the middle, where it began";
    EXPECT_GT(bud % 40, 25);

    start("solids");
    do_some_frames(500);
    const uint8_t* const points = &memory[0x4000 + crtc.start_address]; // one of two pages
    int drawn = 0, uneven = 0;
    for (int i = 0; i < 40 * 96; ++i) {
        const int column = i % 40;
        if (column >= 9 && column < 31) drawn += points[i] != 0;
        // A byte has four points of two bits: the frame on the right mirrors that on the left.
        const int other = points[i - column + 39 - column];
        const int mirrored = other >> 6 | (other >> 2 & 0x0C) | (other << 2 & 0x30) | other << 6;
        uneven += column < 9 && points[i] != (mirrored & 0xFF);
    }
    EXPECT_EQ(uneven, 0);
    EXPECT_GT(drawn, 100) << "of the body";
    EXPECT_TRUE(machine_.machine.type(" ")) << "ends at the prompt";
}

} // namespace
