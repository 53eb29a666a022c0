#include "host/autostart.h"

#include "cgenie/keyboard.h"
#include "cgenie/memory.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "host/commands.h"
#include "host/menu.h"
#include "host/status.h"
#include "host_files.h"
#include "media/traps.h"
#include "platform/host_services.h"
#include "z80/z80.h"

#include <sys/stat.h>

namespace {

constexpr uint16_t KEYBOARD_ROUTINE = 0x002B;
constexpr uint8_t TRAP = 0xED;

bool is_typing() { return memory[KEYBOARD_ROUTINE] == TRAP; }

std::string typed_text() {
    std::string text;
    for (int done = 0;;) {
        const uint8_t character = keyboard_type_bas_file(&done);
        if (done) return text;
        text += char(character);
    }
}

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
        host->release_all_keys();
        keyboard_type_reset();
        last_file_name = "Tarvelin";
        HostFilesTest::TearDown();
    }
    void run(const std::string& path) {
        memory_remove_bas_trap();
        keyboard_type_reset();
        StatusBarText("before");
        last_file_name = "base";
        z80_state.pc = 0x1234;
        autostart_file(path);
    }
    static void write(const std::string& path, const std::string& bytes) {
        std::ofstream(path, std::ios::binary) << bytes;
    }
};

TEST_F(AutostartTest, TextIsTypedWhateverTheFileIsCalled) {
    for (const std::string path :
         {"plain.bas", "LOUD.TXT", "a b.txt", "it's \"so\".Bas", "Gr\xC3\xBC\xC3\x9F.txt",
          "\xFF\xFE.txt", "100%s&1.bas", "two.dots.bas"}) {
        write(path, "10 CLS\n");
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
    write("picture.png", "x");
    write("ends.", "x");
    write("huge.bas", "x");
    write("huge.cmd", "x");
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
        write(path, "x");
        run(path);
        EXPECT_EQ(host->status_text(3), "Autoloaded: " + path);
        EXPECT_EQ(last_file_name, path == "DEMO" ? "" : path.substr(0, path.size() - 4));
        EXPECT_EQ(z80_state.pc, 0x1234);
    }
    host->set_key(KEY_CONTROL, true);
    run("bad.dsk");
    EXPECT_EQ(z80_state.pc, 0) << "Control starts the machine afresh, from the disk";
}

TEST_F(AutostartTest, CassettesBootTheMachineFirst) {
    write("blank.cas", std::string(4, '\0'));
    write("blank.cgt", std::string(4, '\0'));
    for (const std::string path : {"blank.cas", "blank.cgt"}) {
        const int64_t cycles = z80_state.t_count;
        run(path);
        EXPECT_NEAR(double(z80_state.t_count - cycles), 4'433'500, 40) << "a hundred frames";
        EXPECT_EQ(z80_state.nmi, 1) << "the reset key";
        EXPECT_EQ(last_file_name, "") << "the reset key empties it";
        EXPECT_TRUE(is_typing());
        EXPECT_EQ(typed_text(), "") << "nothing is known to be on the tape";
        EXPECT_EQ(host->status_text(3), "Autoloaded: " + path);

        g_bAutoStart = false;
        run(path);
        EXPECT_EQ(host->status_text(3), "before");
        EXPECT_FALSE(is_typing());
        EXPECT_EQ(z80_state.pc, 0x1234);
        g_bAutoStart = true;
    }
}

} // namespace
