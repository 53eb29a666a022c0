#include "cgenie/typing/typing.h"
#include "media/files/typed_text.h"

#include "cgenie/memory/memory.h"
#include "core/machine.h"
#include "media/traps.h"
#include "support/host_files.h"
#include "support/typed_text.h"
#include "z80/z80.h"

#include <algorithm>

namespace {
class Typing : public HostFilesTest {
protected:
    void TearDown() override {
        keyboard_type_reset();
        HostFilesTest::TearDown();
    }
};

TEST_F(Typing, TypesTextAndSkipsTheByteBehindACarriageReturn) {
    const std::pair<std::string, std::string> cases[] = {
        {"\x41\x42\x0D\x0A\x43", "AB\rC"},
        {"\rXY", "\rY"},
        {"\r\r\r\rCLOAD\r\r", "\r\rCLOAD\r"},
        {"RUN\r", "RUN\r"},
        {"A\nB", "A\nB"},
        {"2^3`[\x80\xFF", "2[3'[\x80\xFF"},
        {"", ""},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(keyboard_open_from_buffer(text), 1);
        EXPECT_EQ(typed_text(), expected);
        EXPECT_EQ(typed_text(), "") << "stays at the end";
    }
    const std::string with_zero("AB\0CD", 5);
    keyboard_open_from_buffer(with_zero);
    EXPECT_EQ(typed_text(), "AB");
    std::ofstream("text.bas", std::ios::binary) << with_zero;
    EXPECT_EQ(keyboard_open_bas_file("text.bas"), 1);
    EXPECT_EQ(typed_text(), with_zero) << "a file is typed whole";

    host->clipboard().set_text("NEW\r\n");
    gui_paste_from_clipboard();
    int done = 1;
    EXPECT_EQ(keyboard_type_bas_file(&done), 'N');
    EXPECT_EQ(done, 0);
    std::filesystem::create_directory("folder");
    std::ofstream("large") << 'A';
    std::filesystem::resize_file("large", (16 << 20) + 1);
    for (const char* name : {"none", "folder", "large"}) {
        EXPECT_EQ(keyboard_open_bas_file(name), 0) << name;
    }
    EXPECT_EQ(typed_text(), "EW\r") << "a refused file leaves the text alone";
    gui_paste_from_clipboard();
    keyboard_type_bas_file(&done);
    keyboard_open_from_buffer("RUN");
    EXPECT_EQ(typed_text(), "RUN") << "from its first byte";
    gui_paste_from_clipboard();
    keyboard_type_reset();
    EXPECT_EQ(typed_text(), "");
}

TEST_F(Typing, TrapStandsInForTheRoutineUntilTheTextEnds) {
    machine_init();
    const std::vector<uint8_t> rom(active_rom, active_rom + BASIC_ROM_SIZE);
    std::vector<uint8_t> patched = rom;
    std::ranges::copy(std::vector<uint8_t>{0xED, 0x06, 0x00, 0x00, 0xC9}, patched.begin() + 0x2B);
    const auto image = [] { return std::vector<uint8_t>(memory, memory + BASIC_ROM_SIZE); };
    keyboard_open_from_buffer("A\r");
    memory_place_bas_trap();
    z80_state.pc = 0x002D;
    for (const int expected : {0x41, 0x0D, 0x00}) {
        EXPECT_EQ(image(), patched) << expected;
        z80_state.af = 0x55D7;
        trap_handle(6);
        EXPECT_EQ(z80_state.af, expected << 8 | 0xD7) << "the flags stay";
        EXPECT_EQ(z80_state.pc, 0x002D);
    }
    EXPECT_EQ(image(), rom);
    for (const int number : {5, 7, 8, 9, 10, 11, 12}) {
        z80_state.af = z80_state.bc = 0x1234;
        trap_handle(number);
        EXPECT_EQ(z80_state.af & z80_state.bc, 0x1234) << number;
        EXPECT_EQ(z80_state.pc, 0x002D) << number;
    }
}

} // namespace
