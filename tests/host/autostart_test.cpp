#include "host/autostart.h"

#include "cgenie/keyboard.h"
#include "cgenie/memory.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "host/commands.h"
#include "host/menu.h"
#include "host/status.h"
#include "media/tape.h"
#include "media/traps.h"
#include "platform/host_services.h"
#include "support/host_files.h"
#include "support/typed_text.h"
#include "z80/z80.h"

#include <cstdlib>

#include <sys/stat.h>

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
    void run(const std::string& path) {
        memory_remove_bas_trap();
        keyboard_type_reset();
        tape_detach_cas();
        StatusBarText("before");
        last_file_name = "base";
        z80_state.pc = 0x1234;
        autostart_file(path);
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

TEST_F(AutostartTest, FilesThatAreThereAreReportedEvenWhenTheyHoldNothing) {
    for (const std::string path : {"DEMO", "short.jzs", "bad.dsk", "bad.CGD"}) {
        write_text(path, "x");
        run(path);
        EXPECT_EQ(host->status_text(3),
                  path == "short.jzs" ? path + " is not a snapshot" : "Autoloaded: " + path);
        EXPECT_EQ(last_file_name, path == "DEMO" ? "" : path.substr(0, path.size() - 4));
        EXPECT_EQ(z80_state.pc, 0x1234);
    }
    host->set_key(KEY_CONTROL, true);
    run("bad.dsk");
    EXPECT_EQ(z80_state.pc, 0) << "Control starts the machine afresh, from the disk";
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
        run(path);
        EXPECT_EQ(host->status_text(3), "before");
        EXPECT_FALSE(is_typing());
        EXPECT_EQ(tape_get_cas_name(), path);
        EXPECT_EQ(z80_state.pc, 0x1234);
        g_bAutoStart = true;
    }
}

TEST_F(AutostartTest, TokenizedBasicComesFromATape) {
    for (const std::string path : {"tokens.bas", "tokens.TXT"}) {
        write_text(path, "\xFF\x0A");
        run(path);
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
    const char* const before = getenv("TMPDIR");
    const std::string temporary = before ? before : "/tmp";
    setenv("TMPDIR", "no/folder", 1);
    for (void (*load)(const std::string&) : {autostart_file, main_load_bas_file}) {
        memory_remove_bas_trap();
        load("tokens.bas");
        EXPECT_EQ(host->status_text(3), "Error opening image: tokens.bas");
        EXPECT_FALSE(is_typing()) << "CLOAD would wait for ever";
        EXPECT_EQ(tape_cas_is_attached(), 0);
    }
    setenv("TMPDIR", temporary.c_str(), 1);
}

} // namespace
