#include "host/command_line.h"

#include "cgenie/hires_lowe.h"
#include "cgenie/memory/memory.h"
#include "core/machine.h"
#include "host/page_query.h"
#include "host/status.h"
#include "support/host_files.h"
#include "support/program_options.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

namespace {
constexpr uint16_t NOT_STARTED = 0x1234;

/// A module that puts `mark` at 9000 and starts at 9100 + mark.
void write_module(const std::string& path, uint8_t mark) {
    write_file(path, {1, 3, 0x00, 0x90, mark, 2, 2, mark, 0x91});
}

class CommandLineTest : public HostFilesTest {
protected:
    void SetUp() override {
        HostFilesTest::SetUp();
        here_ = std::filesystem::current_path().string() + "/";
        machine_init();
        CreateStatusBar();
        std::filesystem::create_directories("v1.0/folder.cmd");
        write_module("one.cmd", 1);
        write_module("two.cmd", 2);
        write_module("LOUD.CMD", 3);
        write_module("v1.0/three.x.Cmd", 4);
        write_file("v1.0/plain", {1});
        write_file("text.doc", {1});
    }
    void TearDown() override {
        reset_program_options();
        HostFilesTest::TearDown();
    }

    void run(const Arguments& arguments) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        z80_state.pc = NOT_STARTED;
        memory[0x9000] = 0;
        last_file_name = "before";
        StatusBarText("%s", "");
        reset_program_options();
        get_command_line(read_command_line(arguments));
        EXPECT_TRUE(g_bAutoStart) << "off for one evaluation only";
    }

    std::string here_; ///< begins with "/" like a switch
};

TEST_F(CommandLineTest, FilesAreLoadedNamedAndStarted) {
    const struct {
        Arguments arguments;
        int mark;           ///< of the module that was loaded last
        std::string status; ///< a path: it was loaded
        std::string base;
    } cases[] = {
        {{"one.cmd"}, 1, "one.cmd", "one"},
        {{"LOUD.CMD"}, 3, "LOUD.CMD", "LOUD"},
        {{"v1.0/three.x.Cmd"}, 4, "v1.0/three.x.Cmd", "v1.0/three.x"},
        {{here_ + "one.cmd"}, 1, here_ + "one.cmd", here_ + "one"},
        {{"/b", here_ + "two.cmd"}, 2, here_ + "two.cmd", here_ + "two"},
        // Only the last argument of the line counts, and a switch's value is no argument.
        {{"one.cmd", "two.cmd"}, 2, "two.cmd", "two"},
        {{"/w", "one.cmd"}, 1, "one.cmd", "one"},
        {{"one.cmd", "/w"}, 0, "", "before"},
        {{"/r", "one.cmd"}, 0, "", "before"},
        {{"/b", "two.cmd", "/w"}, 2, "two.cmd", "two"},
        {{"/b", "one.cmd", "two.cmd"}, 2, "two.cmd", "two"},
        {{"/m2", "/b", "one.cmd"}, 1, "one.cmd", "one"},
        // Nothing to load, but a name.
        {{"v1.0/plain"}, 0, "v1.0/plain: files of this type cannot be started", ""},
        {{"v1.0/"}, 0, "v1.0/: is a folder", ""},
        {{"text.doc"}, 0, "text.doc: files of this type cannot be started", "text"},
        {{"v1.0/gone.cmd"}, 0, "v1.0/gone.cmd: no such file", "v1.0/gone"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.arguments));
        run(c.arguments);
        EXPECT_EQ(memory[0x9000], c.mark);
        EXPECT_EQ(z80_state.pc, c.mark ? 0x9100 + c.mark : NOT_STARTED);
        const bool loaded = !c.status.empty() && c.status.find(": ") == std::string::npos;
        EXPECT_EQ(host->status_text(3), (loaded ? "Autoloaded: " : "") + c.status);
        EXPECT_EQ(last_file_name, c.base);
    }
    run({"/b", "one.cmd", "/m1"});
    EXPECT_EQ(memory[0x9000], 0) << "loaded at once, and lost with the restart of the machine";
    EXPECT_EQ(z80_state.pc, 0);
}

TEST_F(CommandLineTest, ProgramsAreOnlyLoadedBehindTheSwitchForThat) {
    for (const Arguments& arguments : {Arguments{"/a", "one.cmd"}, {"/a", "/b", "one.cmd"}}) {
        run(arguments);
        EXPECT_EQ(memory[0x9000], 1);
        EXPECT_EQ(z80_state.pc, NOT_STARTED);
        EXPECT_EQ(host->status_text(3), "Autoloaded: one.cmd");
    }
    run({"/b", "one.cmd", "/a"});
    EXPECT_EQ(z80_state.pc, 0x9101) << "too late";
}

TEST_F(CommandLineTest, ModelsAreAppliedAndNotMadeActive) {
    active_machine_cfg = 1;
    for (uint32_t model = 0; model < 3; ++model) machine_cfg[model].cpu_clock = 1'000'001 + model;
    const struct {
        const char* argument;
        uint32_t model;
    } cases[] = {{"/m1", 0}, {"/m2", 1}, {"/m3", 2},  {"/m0", 0}, {"/m4", 0},
                 {"/m9", 0}, {"/m", 0},  {"/m22", 0}, {"/m02", 1}};
    for (const auto& c : cases) {
        machine_change_cfg(machine_cfg[c.model == 2 ? 1 : 2], 1);
        run({c.argument});
        EXPECT_EQ(z80_state.clock_hz, 1'000'001 + c.model) << c.argument;
        EXPECT_EQ(active_machine_cfg, 1U);
    }
}

TEST_F(CommandLineTest, OptionsAreSetWithOneSwitchEach) {
    const struct {
        Arguments arguments;
        std::string changed; ///< letters of the options, and the name of a video
        std::string status;
        int64_t screenshot = EVENT_DISARMED, shutdown = EVENT_DISARMED;
    } cases[] = {
        {{"/h"}, "h", ""},
        {{"/d", "/w"}, "dw", ""},
        {{"/g"}, "g", ""},
        {{"/v", "film one.avi"}, "film one.avi", ""},
        {{"/i", "text.doc"}, "", "Unsupported disk image.\n"},
        {{"/r", "/h"}, "", ""},
        {{"/H", "/G", "/x", "/S", "/"}, "", "/: is a folder"}, // capitals mean nothing
        // A path that leads nowhere is no switch.
        {{"/home/x/gone.cas"}, "", "/home/x/gone.cas: no such file"},
        {{"/v.cas"}, "", "/v.cas: no such file"},
        {{"--", "/h", "/d"}, "", "/d: no such file"},
        {{"/s", "2", "/t", "3"}, "", "", 4'433'500, 6'650'250},
        {{"/t", "0"}, "", "", EVENT_DISARMED, 0},
        {{"/s", "12x", "/t", ""}, "", ""},
        {{"/s", "-1", "/t", "1.5"}, "", ""},
        {{"/t", "1938"}, "", "", EVENT_DISARMED, 4'296'061'500}, // more than 32 bits
        {{"/s", "92233720369", "/t"}, "", ""},
        // Each by the clock of its moment.
        {{"/s", "1", "/m3", "/t", "1"}, "", "", 2'216'750, 1'000'000},
    };
    machine_cfg[2].cpu_clock = 1'000'000;
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.arguments));
        machine_change_cfg(machine_cfg[0], 1);
        z80_state.t_count = 0;
        run(c.arguments);
        const std::string changed = std::string(g_bDblScan ? "" : "d") + (lowe.enabled ? "g" : "") +
                                    (g_bSound ? "" : "h") + (g_Timer ? "" : "w") + avi_name;
        EXPECT_EQ(changed, c.changed);
        EXPECT_EQ(host->status_text(3), c.status);
        EXPECT_EQ(event_screenshot_timout, c.screenshot);
        EXPECT_EQ(event_shutdown_timout, c.shutdown);
    }
}

TEST_F(CommandLineTest, ProblemsAreNamedInOneLine) {
    const struct {
        Arguments arguments;
        std::string problem;
    } cases[] = {
        {{}, ""},
        {{"/w", "/m2", "/a", "/s", "1", "/t", "2", here_ + "LOUD.CMD"}, ""},
        {{"/b", "v1.0/three.x.Cmd"}, ""},
        {{"/r", "anything"}, ""},
        {{"/x"}, ""},
        {{"/t", "99999999999999999999"}, "/t 99999999999999999999: not a number of whole seconds"},
        {{"gone.cmd", "--nonsense"}, "--nonsense: unknown option; --help lists them"},
        {{"--setting", "Sound=0"}, "--setting: only with --headless"},
        {{"--headless", "--real-time", "--setting", "Sound=0", "--", "LOUD.CMD"}, ""},
        {{"one.cmd", "/b"}, "/b: the value is missing"},
        {{"gone.cmd", "one.cmd"}, "gone.cmd: no such file"},
        {{"/i", "text.doc"}, ""},
        {{here_ + "gone"}, here_ + "gone: no such file"},
        {{""}, ": no such file"},
        {{"v1.0/plain"}, "v1.0/plain: files of this type cannot be started"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(command_line_problem(read_command_line(c.arguments)), c.problem)
            << testing::PrintToString(c.arguments);
    }
    EXPECT_EQ(memory[0x9000], 0) << "nothing is loaded";
    EXPECT_EQ(event_shutdown_timout, EVENT_DISARMED);
}

TEST(PageQuery, HasSettingsOfThisRun) {
    CommandLine line;
    read_page_query(
        "?run=a%20b.cmd&keyboard=1&&tube=3&tube=2&scale=whole&mute=0&Resume=0&tube=&mute", line);
    const decltype(line.settings) expected = {
        {"ScreenKeyboard", "1"}, {"PictureTube", "2"}, {"WindowScale", "1"}, {"Sound", "1"}};
    EXPECT_EQ(line.settings, expected);
}

} // namespace
