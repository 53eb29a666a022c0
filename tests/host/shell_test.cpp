#include "host/shell.h"

#include "cgenie/keyboard.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "core/pacing/pacing.h"
#include "host/canvas.h"
#include "host/disks.h"
#include "host/display.h"
#include "host/messages.h"
#include "host/whole_program.h"
#include "media/files/cassette_files.h"
#include "media/tape.h"
#include "media/traps.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <algorithm>

namespace {

class ShellTest : public WholeProgramTest {
protected:
    void send(Event::Kind kind, int value = 0) { WindowProcedure({kind, value, 0, {}}); }

    std::optional<uint32_t> stored(const char* name) {
        SettingsFile store(SETTINGS);
        store.open();
        return store.number(name);
    }
};

TEST_F(ShellTest, SettingsAreReadAndWrittenInTheirOrder) {
    install_host({});
    HeadlessSettings& store = host->settings_in_memory();
    host->window().create("start");
    create_menu();
    ShellOptions options;
    options.line.settings = {{"CompositeBlur", "100"}, {"Tape", "7"}};
    emu_init(options);
    std::string uses = "At the start:\n" + store.uses;
    EXPECT_EQ(host->status_text(0), "CG NZ1");
    EXPECT_EQ(host->status_text(3), "");
    g_GiantScreen = g_1bitDisplay = true;
    store.uses.clear();
    emu_close();
    uses += "At the end:\n" + store.uses;
    std::ranges::replace(uses, ' ', '\n');
    std::string expected = read_text(TEST_SOURCE_DIR "/settings_uses.txt");
    std::ranges::replace(expected, ' ', '\n');
    EXPECT_EQ(uses, expected);
    EXPECT_FALSE(host_has_canvas());
}

TEST_F(ShellTest, TheTapeOfTheLastRunIsOnlyAName) {
    write_text(SETTINGS, "Tape = 'game.cas'\n");
    std::ofstream("game.cas") << "x";
    for (const char* kept : {"game.cas", ""}) {
        start();
        EXPECT_EQ(tape_get_cas_name(), "game.cas");
        EXPECT_EQ(tape_cas_is_attached(), 0);
        EXPECT_EQ(cas_is_traps_installed(), 1);
        EXPECT_EQ(*kept || tape_attach_cas("game.cas"), true);
        emu_close();
        EXPECT_EQ(stored_text("Tape"), kept) << "a tape that was taken out is forgotten";
        EXPECT_EQ(tape_cas_is_attached(), 0);
    }
}

TEST_F(ShellTest, DisksThatAreMissingAreToldTogetherAndRemembered) {
    write_text(SETTINGS, "Disk1 = '/gone/a.dsk'\nDisk2 = '/gone/a.dsk'\nDisk3 = '/gone/a.dsk'\n");
    std::ofstream("ok.dsk") << std::string(89600, '\0');
    hold_message_boxes();
    start();
    ASSERT_EQ(kept_messages().size(), 1U);
    EXPECT_NE(kept_messages()[0].line.find("drive :1, /gone/a.dsk: no such file; drive :2"),
              std::string::npos);
    std::string results;
    const auto note = [&results](bool done) { results += done ? "1" : "0"; };
    main_disk_image_attach(2, "ok.dsk", note);
    main_disk_image_detach(2, note);
    main_disk_image_attach(3, "no.dsk", note);
    EXPECT_EQ(results, "110");
    emu_close();
    EXPECT_EQ(stored_text("Disk1"), "/gone/a.dsk");
    EXPECT_EQ(stored_text("Disk2"), "") << "taken out by the user";
    EXPECT_EQ(stored_text("Disk3"), "/gone/a.dsk");
}

TEST_F(ShellTest, BadValuesAreCorrected) {
    const struct {
        const char* name;
        uint32_t read, used;
    } cases[] = {{"CompositeBlur", 150, 0}, {"SoundLatency", 29, 30},
                 {"ActiveConfig", 3, 0},    {"CustomScreenFreq", 151, 50},
                 {"CustomPalette", 7, 1},   {"CustomCpuClockFreq", 49'999, 2'216'750},
                 {"Saturation", 101, 100},  {"Contrast", 0xFFFFFFFF, 100},
                 {"HistoryLimit", 1, 10}};
    std::string settings;
    for (const auto& c : cases) settings += c.name + (" = " + std::to_string(c.read)) + "\n";
    write_text(SETTINGS, settings);
    start();
    EXPECT_EQ(stored("SoundLatency"), 30U) << "at once";
    EXPECT_EQ(active_machine_cfg, 0U);
    EXPECT_EQ(canvas.header.bits, 8);
    emu_close();
    for (const auto& [name, read, used] : cases) EXPECT_EQ(stored(name), used) << name;
}

TEST_F(ShellTest, StoredOptionsReachTheProgram) {
    write_text(SETTINGS, "GiantScreen = 1\nKeyMapping = 1\nEnablePrinter = 1\n"
                         "RunInBackground = 1\nSaveVideoRamWithScreenShots = 1\nVideoPage = 1\n"
                         "CleanSound = 1\nDoubleScan = 0\nActiveConfig = 2\nCompositeBlur = 66\n");
    start();
    const struct {
        int item;
        bool checked;
    } marks[] = {
        {COMMAND_SOUND, true},      {COMMAND_DOUBLE_SCAN, false},  {COMMAND_TV_BLUR, true},
        {COMMAND_LOWE_OFF, true},   {COMMAND_LOWE_ON, false},      {COMMAND_50HZ_TIMER, true},
        {COMMAND_VIDEO_PAGE, true}, {COMMAND_SYMBOLIC_KEYS, true}, {COMMAND_GIANT_SCREEN, true},
        {COMMAND_PRINTER, true},    {COMMAND_BACKGROUND, true},    {COMMAND_SAVE_VIDEO_RAM, true},
        {COMMAND_CLEAN_SOUND, true}};
    for (const auto& [item, checked] : marks) {
        EXPECT_EQ(is_menu_item_checked(item), checked) << item;
    }
    EXPECT_EQ(host->status_text(0), "CG EUR");
    EXPECT_EQ(canvas.width, 768);
    EXPECT_EQ(canvas.header.bits, 32);
    EXPECT_EQ(host->window().client_size(), (Size{776, 584 + HEADLESS_STATUS_BAR}));
    emu_close();
}

TEST_F(ShellTest, ActivationRule) {
    start();
    for (int n = 0; n < 16; ++n) {
        g_bPaused = n & 1;
        g_bDebug = n & 2;
        g_bRunInBackground = n & 4;
        send(Event::Kind::activate, n & 8 ? 1 : 0);
        EXPECT_EQ(g_bActive, !(n & 3) && (n & 12)) << n;
    }
    g_bPaused = g_bDebug = g_bRunInBackground = false;
    send(Event::Kind::activate, 1);
    emu_close();
}

TEST_F(ShellTest, HaltedTimeIsNotCaughtUp) {
    start();
    const int64_t frame = frame_budget();
    run_frames(10);
    const int64_t cycles = z80_state.t_count;
    const int64_t slept = host->slept_ms();
    EXPECT_EQ(slept, 161) << "the tenth frame began at 180 ms less one frame's lead";
    send(Event::Kind::activate, 0);
    host->advance_ns(60'000'000'000);
    EXPECT_EQ(shell_turn().next, ShellTurn::Next::on_event);
    EXPECT_EQ(z80_state.t_count, cycles);
    send(Event::Kind::activate, 1);
    run_frames(10);
    EXPECT_NEAR(double(z80_state.t_count - cycles), double(10 * frame), 40);
    EXPECT_EQ(host->slept_ms() - slept, 161) << "no burst after a minute";
    emu_close();
}

TEST_F(ShellTest, MessagesReachTheirHandlers) {
    start();
    host->window().invalidations = 0;
    const int shown = host->frames_presented();
    send(Event::Kind::paint);
    send(Event::Kind::focus);
    host->sink().paint(PaneId::picture);
    EXPECT_EQ(host->frames_presented(), shown + 3);
    for (const int key : {KEY_PAUSE, KEY_PAGE_DOWN}) { // only the second one may repeat
        host->push_event({Event::Kind::key_down, key, 0, {}, true});
        shell_turn();
        EXPECT_EQ(g_bPaused, key == KEY_PAGE_DOWN);
    }
    send(Event::Kind::command, COMMAND_PAUSE);
    WindowProcedure({Event::Kind::key_down, KEY_PAUSE, 0, {}});
    EXPECT_TRUE(g_bPaused) << "an accelerator, not a key";
    EXPECT_EQ(host->title(), "Tarvelin - (Suspended)");
    send(Event::Kind::command, COMMAND_PAUSE);
    EXPECT_TRUE(g_bActive);
    send(Event::Kind::command, COMMAND_AUTOSTART);
    const auto& filters = host->dialogs().file_dialogs.back().filters;
    ASSERT_EQ(filters.size(), 3U);
    EXPECT_EQ(
        filters[1].text + filters[1].pattern,
        "All that can be started*.bas;*.cas;*.cgd;*.cgt;*.cmd;*.dsk;*.jzs;*.tvr;*.tvs;*.txt;*.zip");
    for (const uint8_t button : {BUTTON_LEFT, BUTTON_RIGHT}) {
        WindowProcedure({.kind = Event::Kind::pointer,
                         .text = {},
                         .pointer = {.act = Pointer::Act::double_click, .button = button}});
        EXPECT_TRUE(g_GiantScreen);
    }
    host->sink().session_ends();
    EXPECT_EQ(stored("GiantScreen"), 1U) << "before the program's end";
    send(Event::Kind::command, COMMAND_GIANT_SCREEN);
    host->set_key('A', true);
    host->sink().loop_begins();
    EXPECT_EQ(shell_turn().next, ShellTurn::Next::on_event) << "no frame while a menu is open";
    StatusBarText("told");
    for (const auto& [id, text] : {std::pair{COMMAND_EXIT, "Ends Tarvelin."},
                                   {Command(), ""},
                                   {COMMAND_EXIT, "Ends Tarvelin."}}) {
        host->sink().item_highlighted(id);
        EXPECT_EQ(host->status_bar().over, text);
    }
    host->sink().loop_ends();
    EXPECT_EQ(host->status_bar().over, "");
    EXPECT_EQ(host->status_text(3), "told") << "behind the menu";
    EXPECT_EQ(shell_turn().next, ShellTurn::Next::now);
    EXPECT_EQ(keyboard_read(1), 0) << "no key is stuck after a menu";
    using enum Event::Kind;
    for (const auto& [kind, value, symbolic] :
         std::vector<std::tuple<Event::Kind, int, bool>>{{layout_changed, 0, false},
                                                         {layout_changed, 1, true},
                                                         {layout_changed, 0, true},
                                                         {command, COMMAND_SYMBOLIC_KEYS, false},
                                                         {layout_changed, 1, true}}) {
        send(kind, value);
        host->set_key(KEY_SHIFT, true); // the symbolic mapping keeps it from the machine
        EXPECT_EQ(keyboard_read(0x80), symbolic ? 0 : 1);
        EXPECT_EQ(is_menu_item_checked(COMMAND_SYMBOLIC_KEYS), symbolic);
    }
    host->release_all_keys();
    send(Event::Kind::close);
    EXPECT_TRUE(host->window().destroyed);
    EXPECT_TRUE(host->quit_posted());
    EXPECT_EQ(run_message_loop(), 0);
    EXPECT_EQ(stored("KeyMapping"), 0U) << "a change of layout is no choice for the next run";
}

TEST_F(ShellTest, MessagesOfTheWholeScreenGoByThemselves) {
    start();
    HeadlessPane& overlay = host->pane(PaneId::overlay);
    send(Event::Kind::command, COMMAND_PAUSE);
    EXPECT_EQ(shell_turn().next, ShellTurn::Next::on_event);
    send(Event::Kind::command, COMMAND_FULL_SCREEN);
    const std::string words = "a sentence of sixty columns is longer than half of the screen ";
    for (const auto& [told, rows] : {std::pair<std::string, size_t>{"", 1},
                                     {"\u00e4\u2192" + std::string(156, 'x'), 1},
                                     {words + words + words, 2}}) {
        SCOPED_TRACE(told);
        if (!told.empty()) StatusBarText("%s", told.c_str());
        EXPECT_EQ(overlay.message, told.empty() ? "Alt+Enter leaves full screen" : told);
        ASSERT_EQ(overlay.texts.size(), rows);
        const HeadlessText& row = overlay.texts[0];
        const int ends = row.x + 8 * (rows == 1 && !told.empty() ? 158 : int(row.text.size()));
        EXPECT_NEAR(row.x, 1280 - ends, 1) << "in the middle";
        const ShellTurn turn = shell_turn();
        EXPECT_EQ(turn.next, ShellTurn::Next::in_time);
        EXPECT_NEAR(double(turn.microseconds), 3e6, 1e5);
        host->advance_ns(2'800'000'000);
        EXPECT_EQ(shell_turn().next, ShellTurn::Next::in_time);
        EXPECT_TRUE(overlay.shown);
        host->advance_ns(200'000'000);
        EXPECT_EQ(shell_turn().next, ShellTurn::Next::on_event) << "the program rests";
        EXPECT_FALSE(overlay.shown);
    }
    StatusBarText("%s", "last");
    EXPECT_TRUE(overlay.shown);
    send(Event::Kind::command, COMMAND_FULL_SCREEN);
    EXPECT_FALSE(overlay.shown);
    EXPECT_EQ(host->status_text(3), "last");
    emu_close();
}

TEST_F(ShellTest, RunsFromStartToExitAndSaysWhenItsSettingsWereDamaged) {
    std::ofstream(SETTINGS) << "Sound = = 1";
    host->answer_later(true);
    host->push_event({Event::Kind::close, 0, 0, {}});
    EXPECT_EQ(run_shell({}), 0);
    EXPECT_TRUE(host->window().destroyed);
    EXPECT_EQ(stored("Sound"), 1U);
    EXPECT_TRUE(std::filesystem::exists("settings.toml.damaged"));
    EXPECT_NE(host->status_text(3), "");
}

TEST_F(ShellTest, NoWindowNoProgram) {
    host->window().creation_fails = true;
    EXPECT_EQ(run_shell({}), 0);
    EXPECT_FALSE(std::filesystem::exists(SETTINGS));
}

} // namespace
