#include "host/commands.h"

#include "cgenie/memory/memory.h"
#include "core/machine.h"
#include "core/pacing/pacing.h"
#include "host/canvas.h"
#include "host/display.h"
#include "host/media_menu.h"
#include "host/menu.h"
#include "host/save_question.h"
#include "host/screenshot.h"
#include "host/shell.h"
#include "host/status.h"
#include "host/turn.h"
#include "media/files/cassette_files.h"
#include "media/tape.h"
#include "media/wd1771.h"
#include "sound/beeper.h"
#include "sound/sound_core.h"
#include "support/host_files.h"
#include "support/program_options.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <algorithm>

namespace {

class CommandsTest : public HostFilesTest {
protected:
    void SetUp() override {
        HostFilesTest::SetUp();
        CreateStatusBar();
        create_menu();
        machine_init();
        init_timers();
        set_screen_params(false, 8);
        last_file_name = "base";
    }
    void TearDown() override {
        reset_program_options();
        HostFilesTest::TearDown();
    }

    void choose(const std::string& path) { host->dialogs().choices.push_back({{path, 0}}); }
    void command_with_file(int id, const std::string& path) {
        choose(path);
        handle_command(id);
    }
    static void press(int key, uint8_t modifiers = 0) {
        Event event;
        event.kind = Event::Kind::key_down;
        event.value = key;
        event.modifiers = modifiers;
        handle_key(event);
    }
};

TEST_F(CommandsTest, PauseAndMonitorHoldTheMachine) {
    const struct {
        int id;
        bool active;
        const char* title;
        bool pause_mark, monitor_mark;
    } steps[] = {
        {104, false, "(Suspended)", true, false},  {104, true, "(Restarting)", false, false},
        {108, false, "(Monitor)", false, true},    {108, true, "(Restarting)", false, false},
        {108, false, "(Monitor)", false, true},    {104, false, "(Monitor)", false, true},
        {108, false, "(Suspended)", false, false}, {40122, false, "(Suspended)", false, false},
        {104, true, "(Restarting)", false, false}, {104, false, "(Suspended)", true, false},
        {108, false, "(Monitor)", true, true},     {40122, false, "(Monitor)", true, true},
        {108, false, "(Suspended)", true, false},  {104, true, "(Restarting)", false, false},
    };
    int number = 0;
    for (const auto& step : steps) {
        SCOPED_TRACE(++number);
        HeadlessPane& pane =
            host->pane(is_menu_item_checked(108) ? PaneId::picture : PaneId::monitor);
        pane.last_fill = {};
        const int invalidations = host->window().invalidations;
        handle_command(step.id);
        EXPECT_EQ(g_bActive, step.active);
        EXPECT_EQ(host->title(), std::string("Tarvelin - ") + step.title);
        EXPECT_EQ(is_menu_item_checked(104), step.pause_mark);
        EXPECT_EQ(is_menu_item_checked(108), step.monitor_mark);
        if (step.id != 108) continue;
        const Size client = host->window().client_size();
        const int shown = client.height - (step.monitor_mark ? StatusBarHeight() : 0);
        EXPECT_EQ(pane.last_fill.area, (Rectangle{0, 0, client.width, shown}));
        const bool left_halted = !step.monitor_mark && !step.active;
        EXPECT_EQ(host->window().invalidations - invalidations, left_halted ? 1 : 0);
    }
    g_bActive = false; // another program is the active one
    handle_command(40122);
    EXPECT_TRUE(g_bActive);
    handle_command(999);
    EXPECT_EQ(host->title(), "Tarvelin - (Restarting)");
}

TEST_F(CommandsTest, PictureCommandsReplaceTheCanvas) {
    const struct {
        int id;
        int width, bits;
    } steps[] = {
        {40050, 384, 1},  {40058, 768, 8}, {40058, 384, 1}, {40052, 384, 32},
        {40058, 768, 32}, {40052, 768, 8}, {40058, 384, 1}, {40050, 384, 8},
    };
    int number = 0;
    for (const auto& step : steps) {
        SCOPED_TRACE(++number);
        const int invalidations = host->window().invalidations;
        handle_command(step.id);
        EXPECT_EQ(canvas.width, step.width);
        EXPECT_EQ(canvas.header.bits, step.bits);
        EXPECT_EQ(is_menu_item_checked(40052), step.bits == 32);
        if (step.id == 40058) {
            EXPECT_GT(host->window().invalidations, invalidations);
        }
    }
    g_CompositeBlur = 5;
    handle_command(40052);
    EXPECT_EQ(g_CompositeBlur, 0U);
    handle_command(40052);
    EXPECT_EQ(g_CompositeBlur, 66U);
    handle_command(40052);

    handle_command(134);
    EXPECT_TRUE(std::ranges::all_of(canvas.pixels, [](uint8_t pixel) { return pixel == 0; }));
    canvas.pixels[0] = 7;
    handle_command(134);
    EXPECT_EQ(canvas.pixels[0], 7) << "only switching off clears";

    handle_command(40050);
    machine_cfg[active_machine_cfg].screen_frequency = 100;
    handle_command(141);
    EXPECT_EQ(canvas.header.bits, 8);
    EXPECT_EQ(pacing.frame_period, 10'000'000) << "of a clock of nanoseconds";
}

TEST_F(CommandsTest, ARestartTakesItsTime) {
    z80_state.pc = 0x9000;
    const int64_t slept = host->slept_ms();
    handle_command(109);
    while (z80_state.pc != 0) host->events().wait(shell_turn().microseconds);
    EXPECT_EQ(host->slept_ms() - slept, 46) << "half a second, with looks of 10 ms at the clock";
}

TEST_F(CommandsTest, CommandsThatAskForAFile) {
    const struct {
        int id;
        const char* title;
        const char* path;
        const char* status;
    } cases[] = {
        {110, "Load CMD image", "gone.cmd", "gone.cmd: no such file"},
        {111, "Load BAS file", "gone.bas", "gone.bas: no such file"},
        {135, "Autostart emulator image...", "gone.jzs", "gone.jzs: no such file"},
        {131, "Load emulator snaphsot file", "gone.jzs", "gone.jzs: no such file"},
        {131, "Load emulator snaphsot file", "short", "short is not a snapshot"},
        {123, "Attach CAS file", "gone.cas", "Error opening image: gone.cas"},
        {40018, "Attach disk image...", "short", "Unsupported disk image.\n"},
        {132, "Save emulator snapshot as...", "no/way", "no/way.jzs: cannot be written"},
        {132, "Save emulator snapshot as...", "state", "Saved: state.jzs"},
        {126, "Save screen as...", "no/way.bmp", "no/way.bmp: cannot be written"},
        {126, "Save screen as...", "shot.bmp", "Screenshot saved: shot.bmp"},
        {126, "Save screen as...", "shot.GIF", "Screenshot saved: shot.GIF"},
        {40120, "Save to WAV...", "no/way", "no/way.wav: cannot be written"},
        {123, "Attach CAS file", ".", "Error opening image: ."},
        {123, "Attach CAS file", "short", "CAS image attached: short"},
        {40034, "Attach tape sample file", "gone.wav",
         "gone.wav cannot be played: No such file or directory."},
        {120, "Save WAV file", "no/way",
         "no/way.wav cannot be recorded: No such file or directory."},
        {127, "Save memory as CAS file", "no/way", "no/way.cas: cannot be written"},
        {127, "Save memory as CAS file", "./memory", "Saved: ./memory.cas"},
    };
    std::ofstream("short") << "short";
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.id << " " << c.path);
        StatusBarText("before");
        handle_command(c.id); // cancelled
        EXPECT_EQ(host->status_text(3), "before");
        command_with_file(c.id, c.path);
        EXPECT_EQ(host->status_text(3), c.status);
        ASSERT_EQ(host->dialogs().file_dialogs.size(), 2U);
        EXPECT_EQ(host->dialogs().file_dialogs.back().title, c.title);
        host->dialogs().file_dialogs.clear();
        EXPECT_FALSE(is_menu_item_checked(c.id));
    }
}

TEST_F(CommandsTest, SoundOutputAndItsRecording) {
    handle_command(118); // off
    handle_command(118);
    EXPECT_TRUE(host->audio().device);
    EXPECT_TRUE(host->audio().playing);
    command_with_file(40120, "sound");
    handle_command(40120);
    EXPECT_FALSE(is_menu_item_checked(40120));
    EXPECT_EQ(read_file("sound.wav")[4], 36) << "closed";

    command_with_file(40120, "other");
    handle_command(118);
    EXPECT_FALSE(host->audio().device);
    EXPECT_FALSE(is_menu_item_checked(40120)) << "the recording ends with the sound";
    beeper_set_level(1);
    command_with_file(40120, "silent");
    for (int frame = 0; frame < 20; ++frame) sound_flush(z80_state.t_count += 44335);
    handle_command(40120);
    EXPECT_LT(read_file("silent.wav").back(), 2) << "a constant level is filtered to nothing";
    beeper_set_level(0);
    g_Timer = false;
    handle_command(118);
    EXPECT_FALSE(host->audio().device) << "an unpaced machine is silent";
    EXPECT_TRUE(host->dialogs().messages.empty());
}

TEST_F(CommandsTest, AScreenshotThatIsNoGifTellsWhy) {
    handle_command(40123);
    handle_command(112);
    EXPECT_EQ(read_file("base.v80").size(), 1024U);
    std::filesystem::remove("base.v80");
    handle_command(40050);
    command_with_file(126, "shot.gif");
    EXPECT_TRUE(std::filesystem::exists("base.v80"));
    handle_command(40050);
    command_with_file(126, "no/way.gif");
    const auto& messages = host->dialogs().messages;
    ASSERT_EQ(messages.size(), 2U);
    EXPECT_EQ(messages[0].title, "Error!");
    EXPECT_EQ(messages[0].icon, MessageIcon::error);
    EXPECT_EQ(messages[0].text,
              "Error saving in GIF format.\rNon 8-bit display can not be saved as GIF."
              "\n\nshot.gif");
    EXPECT_EQ(messages[1].text,
              "Error saving in GIF format.\n\nno/way.gif: No such file or directory");
}

TEST_F(CommandsTest, ASaveAsksForItsFile) {
    choose("saved");
    pacing.ticks = 7;
    const auto save = [] {
        while (tape_create_cas() == SAVE_NOT_YET) ask_save_question();
    };
    save();
    tape_write_one_byte(0xAA);
    EXPECT_EQ(read_file("saved.cas"), std::vector<uint8_t>{0xAA});
    EXPECT_EQ(pacing.ticks, 0) << "the dialog took its time";
    host->answer_later(true);
    choose("late");
    EXPECT_EQ(tape_create_cas(), SAVE_NOT_YET);
    EXPECT_FALSE(ask_save_question() || ask_save_question()) << "one dialog";
    EXPECT_EQ(shell_turn().next, ShellTurn::Next::now) << "with the answer";
    EXPECT_EQ(tape_create_cas(), SAVE_READY);
    EXPECT_EQ(host->dialogs().file_dialogs.back().title, "Save CAS tape file under name...");
    EXPECT_EQ(tape_get_cas_name(), "late.cas");
    host->answer_later(false);
    save(); // cancelled
    EXPECT_EQ(tape_get_cas_name(), "late.cas");
    for (const int behind : {0, 124}) { // nothing, or the tape is taken out
        choose("blank");
        handle_command(40272);
        if (behind) handle_command(behind);
        save(); // a question would be cancelled
        EXPECT_EQ(tape_get_cas_name(), behind ? "" : "blank.cas");
    }
    tape_detach_cas();
}

TEST_F(CommandsTest, KeysOutsideTheMonitor) {
    z80_state.pc = 0x9000;
    for (const int key : {int(KEY_RETURN), int(KEY_PAGE_UP), int(KEY_UP), int(KEY_DOWN),
                          int(KEY_F1), int(KEY_F2), int(KEY_F7), int(KEY_F8), int('A')}) {
        press(key);
        EXPECT_EQ(z80_state.pc, 0x9000) << key;
        EXPECT_FALSE(std::filesystem::exists("memdump.bin")) << key;
    }
    press(KEY_F4);
    EXPECT_TRUE(video_page);
    press(KEY_F4, MODIFIER_ALT);
    EXPECT_TRUE(video_page) << "the window's own key";
    press(KEY_F4, MODIFIER_ALT | MODIFIER_CONTROL);
    EXPECT_FALSE(video_page);
    press(KEY_F6);
    EXPECT_TRUE(std::filesystem::exists("base0000.gif"));
    std::ofstream("eaca_disass.txt") << "listing";
    press(KEY_F9);
    EXPECT_EQ(host->status_text(3),
              "Disassembly dump to: " + std::filesystem::current_path().string());
    EXPECT_TRUE(read_text("eaca_disass.txt").starts_with(". 0000h "));
}

TEST_F(CommandsTest, KeysInTheMonitor) {
    press(KEY_ESCAPE);
    ASSERT_TRUE(g_bDebug);
    z80_state.pc = 0x5000; // no-operations
    press(KEY_F7);
    EXPECT_EQ(z80_state.pc, 0x5000 + 10001);
    memory[0xA000] = 0x18; // JR A000
    memory[0xA001] = 0xFE;
    z80_state.pc = 0xA000;
    z80_state.r = 0;
    press(KEY_F7);
    EXPECT_EQ(z80_state.pc, 0xA000);
    EXPECT_EQ(z80_state.r, 1) << "instructions run until it came back";

    press(KEY_F8);
    EXPECT_TRUE(std::ranges::equal(read_file("memdump.bin"), std::span(memory, 65536)));
    press(KEY_PAGE_DOWN);
    EXPECT_FALSE(g_bPaused);
    press(KEY_ESCAPE);
    EXPECT_FALSE(g_bDebug);
    EXPECT_TRUE(g_bActive);
}

TEST_F(CommandsTest, EscOrF12OpensTheMonitorAndEscClosesIt) {
    create_menu();
    for (const bool f12 : {false, true}) {
        if (f12) handle_command(COMMAND_MONITOR_F12);
        EXPECT_EQ(menu_item_text(COMMAND_MONITOR), f12 ? "&Monitor\tF12" : "&Monitor\tESC");
        const int door = f12 ? KEY_F12 : KEY_ESCAPE;
        press(f12 ? KEY_ESCAPE : KEY_F12);
        EXPECT_FALSE(g_bDebug) << "the machine's key";
        for (const int way_back : {int(KEY_ESCAPE), door}) {
            press(door);
            EXPECT_TRUE(g_bDebug);
            EXPECT_EQ(host->status_text(3), "Esc brings the machine back");
            press(way_back);
            EXPECT_FALSE(g_bDebug);
            EXPECT_EQ(host->status_text(3), "");
        }
    }
}

/// A host that hands files out.
struct Handed final : Downloads {
    bool offer(const std::string& name, std::span<const uint8_t> bytes) override {
        all += name + ":" + std::string(bytes.begin(), bytes.begin() + 2) + " ";
        return true;
    }
    void saved(const std::string& path) override {
        all += path + (std::filesystem::exists(path) ? " " : "?");
    }
    std::string all;
};

TEST_F(CommandsTest, DownloadsAreMediaAsTheyAreAndFilesThatAreComplete) {
    handle_command(40280);
    EXPECT_EQ(host->status_text(3), "There is no disk in drive :0.");
    Handed handed;
    host->download_service = &handed;
    create_menu();
    std::filesystem::create_directory("in");
    command_with_file(40271, "in/new.dsk");
    drive_contents[0].change()[0] = '*';
    drive_contents[0].change()[1] = '!';
    const std::string tape = "fL and more";
    tape_attach_bytes("in/a.bas", std::span(reinterpret_cast<const uint8_t*>(tape.data()), 8));
    grey_media_items();
    for (const int id : {40280, 40281, 40284}) {
        EXPECT_EQ(host->window().item_state(id) == ItemState::greyed, id == 40281);
        handle_command(id);
    }
    for (const auto& [id, path] : {std::pair{126, "s.gif"}, {40206, "s.tvs"}, {40120, "s.wav"}}) {
        command_with_file(id, path);
    }
    handle_command(40120);
    EXPECT_EQ(handed.all, "new.dsk:*! a.cas:fL s.gif s.tvs s.wav ");
    host->download_service = nullptr;
}

} // namespace
