#include "host/autostart.h"

#include "cgenie/memory/memory.h"
#include "cgenie/typing/typing.h"
#include "core/machine.h"
#include "core/pacing/pacing.h"
#include "host/commands.h"
#include "host/menu.h"
#include "host/status.h"
#include "media/files/cassette_files.h"
#include "media/files/typed_text.h"
#include "media/tape.h"
#include "media/traps.h"
#include "support/host_files.h"
#include "support/posix.h"
#include "support/typed_text.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr uint16_t KEYBOARD_ROUTINE = 0x002B;
constexpr uint8_t TRAP = 0xED;

bool is_typing() { return memory[KEYBOARD_ROUTINE] == TRAP; }

class AutostartTest : public HostFilesTest {
protected:
    void SetUp() override {
        HostFilesTest::SetUp();
        CreateStatusBar();
        create_menu();
        machine_init();
    }
    void TearDown() override {
        g_bAutoStart = true;
        keyboard_type_reset();
        tape_detach_cas();
        last_file_name = "Tarvelin";
        HostFilesTest::TearDown();
    }
    void run(const std::string& path, const std::string* bytes = nullptr) {
        memory_remove_bas_trap();
        keyboard_type_reset();
        tape_detach_cas();
        StatusBarText("before");
        last_file_name = "base";
        z80_state.pc = 0x1234;
        machine_run_now.prompt_reached = true;
        if (!bytes) return autostart_file(path);
        autostart_bytes(path, {reinterpret_cast<const uint8_t*>(bytes->data()), bytes->size()});
    }
};

TEST_F(AutostartTest, TextIsTypedWhateverTheFileIsCalled) {
    for (const std::string path :
         {"plain.bas", "LOUD.TXT", "a b.txt", "it's \"so\".Bas", "Gr\xC3\xBC\xC3\x9F.txt",
          "\xFF\xFE.txt", "100%s&1.bas", "two.dots.bas"}) {
        write_text(path, "10 CLS\n");
        run(path);
        EXPECT_EQ(host->status_text(3), "Autoloaded: " + path);
        EXPECT_EQ(last_file_name, path.substr(0, path.size() - 4));
        EXPECT_TRUE(is_typing()) << path;
        EXPECT_EQ(typed_text(), "10 CLS\n") << path;

        memory_remove_bas_trap();
        keyboard_type_reset();
        main_load_bas_file(path);
        EXPECT_TRUE(is_typing()) << path;
        EXPECT_EQ(typed_text(), "10 CLS\n") << path;
    }
    EXPECT_EQ(z80_state.pc, 0x1234);
}

/// The firmware takes 240 characters; a tab goes on to the next eighth column.
TEST_F(AutostartTest, LineThatTheMachineWouldCutIsToldAndNothingTyped) {
    const std::string longest = "10 REM\t" + std::string(232, 'X');
    const std::pair<std::string, std::string> cases[] = {
        {"\r\n\n" + longest + "\r\n20 A", ""},
        {"A\r\n" + longest + "X\n20 A", "Line 2 of long.bas is too long"},
        {longest + "\n\n" + longest + "\t", "Line 3 of long.bas is too long"}};
    for (const auto& [text, told] : cases) {
        run("long.bas", &text);
        EXPECT_EQ(host->status_text(3), told.empty() ? "Autoloaded: long.bas" : told);
        EXPECT_EQ(is_typing(), told.empty());
        EXPECT_EQ(typed_text().empty(), !told.empty());
        host->clipboard().set_text(text);
        gui_paste_from_clipboard();
        EXPECT_EQ(typed_text().empty(), !told.empty()) << told;
    }
    EXPECT_EQ(host->status_text(3), "Line 3 of the clipboard is too long");
}

TEST_F(AutostartTest, WhatCannotBeStartedChangesNothing) {
    std::filesystem::create_directories("folder.txt");
    write_text("picture.png", "x");
    write_text("ends.", "x");
    write_text("huge.bas", "x");
    write_text("huge.cmd", "x");
    for (const char* path : {"huge.bas", "huge.cmd"}) std::filesystem::resize_file(path, 1LL << 31);
    ASSERT_EQ(mkfifo("pipe.txt", 0600), 0);
    const struct {
        std::string path, problem;
        bool basic; ///< the command for BASIC files says the same
    } cases[] = {
        {"gone.bas", ": no such file", true},
        {"gone", ": no such file", true},
        {"", ": no such file", true},
        {std::string(5000, 'x') + ".bas", ": no such file", true},
        {"folder.txt", ": is a folder", true},
        {"pipe.txt", ": is not a file", true},
        {"huge.bas", ": is too large", true},
        {"huge.cmd", ": is too large", true},
        {"picture.png", ": files of this type cannot be started", false},
        {"ends.", ": files of this type cannot be started", false},
    };
    for (const auto& c : cases) {
        run(c.path);
        EXPECT_EQ(host->status_text(3), c.path + c.problem);
        if (c.basic) {
            main_load_bas_file(c.path);
            EXPECT_EQ(host->status_text(3), c.path + c.problem);
        }
        EXPECT_FALSE(is_typing()) << c.path;
        EXPECT_EQ(z80_state.pc, 0x1234) << c.path;
    }
}

TEST_F(AutostartTest, OnlyWhatWasLoadedIsSaidToBe) {
    const std::string block("\x01\x05\x00\x90\xF3\x76\x00", 7);
    const struct {
        std::string path, bytes, problem;
    } cases[] = {{"DEMO", "x", "DEMO: files of this type cannot be started"},
                 {"short.jzs", "x", "short.jzs is not a snapshot"},
                 {"bad.dsk", "x", "Unsupported disk image.\n"},
                 {"bad.CGD", "x", "Unsupported disk image.\n"},
                 {"whole.cmd", block + std::string("\x02\x02\x00\x90", 4), ""},
                 {"cut.cmd", block.substr(0, 5), "cut.cmd is damaged"},
                 {"cut2.cmd", block, "cut2.cmd is damaged"}};
    for (const auto& [path, bytes, problem] : cases) {
        write_text(path, bytes);
        run(path);
        EXPECT_EQ(host->status_text(3), problem.empty() ? "Autoloaded: " + path : problem);
        EXPECT_EQ(last_file_name, path == "DEMO" ? "" : path.substr(0, path.find('.')));
        const bool module = path.ends_with("cmd");
        EXPECT_EQ(z80_state.pc, !module ? 0x1234 : problem.empty() ? 0x9000 : 0) << path;
    }
    for (const char* name : {"whole.cmd", "bad.dsk"}) {
        std::filesystem::remove(name);
        run(name, &cases[4].bytes);
        EXPECT_EQ(host->status_text(3),
                  *name == 'w' ? "Autoloaded: whole.cmd" : "bad.dsk: a disk needs a file");
    }
    host->set_key(KEY_CONTROL, true);
    run("bad.CGD");
    EXPECT_EQ(z80_state.pc, 0) << "Control starts the machine afresh, from the disk";
}

/// Prints a star by the firmware, which goes by vectors in RAM.
const std::string STAR = std::string("\x01\x09\x00\x90\x3E*\xCD\x33\x00\x18\xFE", 11) +
                         std::string("\x02\x02\x00\x90", 4);

TEST_F(AutostartTest, AMachineBeforeItsPromptStartsUpFirst) {
    write_text("listing.bas", "10 CLS\n20 END\n");
    write_text("star.cmd", STAR);
    write_text("state.jzs", std::string(49702, '\0'));
    memory_set_startup_pattern(255);
    for (const int frames_before : {0, 150}) { // at power-on, or at its question for a second
        const auto start = [&](void (*load)(const std::string&), const char* path) {
            machine_change_cfg(machine_cfg[2], 1);
            do_some_frames(200); // no matter how long ago the program was started
            machine_restart();
            do_some_frames(frames_before);
            load(path);
            do_some_frames(100);
        };
        for (const bool start_it : {false, true}) {
            g_bAutoStart = start_it;
            start(start_it ? autostart_file : main_load_bas_file, "listing.bas");
            EXPECT_EQ(memory[0x5803], 10) << "the first line";
            EXPECT_EQ(memory[0x5809], 20);
        }
        start(autostart_file, "star.cmd");
        EXPECT_NE(std::find(memory + 0x4400, memory + 0x4800, '*'), memory + 0x4800);
    }
    memory_set_startup_pattern(0);
    for (const int n : {0, 1, 2, 3, 4, 5, 6, 7}) {
        SCOPED_TRACE(n);
        machine_run_now.prompt_reached = n & 1;
        g_bAutoStart = n & 2;
        const int64_t before = z80_state.t_count;
        autostart_file(n & 4 ? "state.jzs" : "star.cmd");
        EXPECT_NEAR(double(z80_state.t_count - before), !(n & 1) && (n & 6) ? 4'433'500 : 0, 40);
    }
}

TEST_F(AutostartTest, CassettesBootTheMachineFirst) {
    const struct {
        std::string path, bytes, typed;
    } cases[] = {
        {"blank.cas", std::string(4, '\0'), ""},
        {"blank.cgt", std::string(4, '\0'), ""},
        {"basic.cas", std::string("\xAA\xAA\x66Q\0\0", 6), "\rCLOAD\rRUN\r"},
        {"code.CGT", std::string("\xAA\x66\x55QUEST \x78\0\x60", 12), "\r\rSYSTEM\rQ\r/\r"},
    };
    for (const auto& [path, bytes, typed] : cases) {
        write_text(path, bytes);
        const int64_t cycles = z80_state.t_count;
        run(path);
        EXPECT_NEAR(double(z80_state.t_count - cycles), 4'433'500, 40) << "a hundred frames";
        EXPECT_EQ(z80_state.nmi, 1) << "the reset key";
        EXPECT_EQ(last_file_name, "") << "the reset key empties it";
        EXPECT_TRUE(is_typing());
        EXPECT_EQ(typed_text(), typed) << path;
        EXPECT_EQ(tape_read_one_byte(), uint8_t(bytes[0])) << "the tape is in, at its start";
        EXPECT_EQ(host->status_text(3),
                  typed.empty() ? path + " is damaged" : "Autoloaded: " + path);

        g_bAutoStart = false;
        run(path, &bytes);
        EXPECT_EQ(host->status_text(3), "before");
        EXPECT_FALSE(is_typing());
        EXPECT_EQ(tape_get_cas_name(), path);
        EXPECT_EQ(z80_state.pc, 0x1234);
        g_bAutoStart = true;
    }
}

TEST_F(AutostartTest, TokenizedBasicComesFromATape) {
    for (const std::string path : {"tokens.bas", "tokens.TXT"}) {
        const std::string bytes = "\xFF\x0A";
        run(path, &bytes);
        write_text(path, bytes);
        EXPECT_EQ(host->status_text(3), "Autoloaded: " + path);
        EXPECT_TRUE(is_typing());
        EXPECT_EQ(typed_text(), "\r\rCLOAD\rRUN\r");
        EXPECT_EQ(tape_cas_is_attached(), 1);

        memory_remove_bas_trap();
        tape_detach_cas();
        main_load_bas_file(path);
        EXPECT_TRUE(is_typing());
        EXPECT_EQ(typed_text(), "\r\rCLOAD\r");
        EXPECT_EQ(tape_cas_is_attached(), 1);
    }
}

} // namespace
