#include "core/frame_driver.h"
#include "core/machine.h"
#include "core/machine_events.h"
#include "core/machine_state.h"
#include "host/attachments.h"
#include "host/autostart.h"
#include "host/disks.h"
#include "host/messages.h"
#include "host/state_files.h"
#include "host/whole_program.h"
#include "media/files/cassette_files.h"
#include "media/files/tape_sound_files.h"
#include "media/printer.h"
#include "media/tape.h"
#include "media/tape_audio.h"
#include "media/wd1771.h"

namespace {

using enum event_kind;

class LoadedStateTest : public WholeProgramTest {
protected:
    void SetUp() override {
        WholeProgramTest::SetUp();
        start();
    }
    static bool was_told(const char* text) {
        return !kept_messages().empty() &&
               kept_messages().back().line.find(text) != std::string::npos;
    }
    static std::string text_of(int drive) { return menu_item_text(COMMAND_ATTACH_DISK + drive); }
    static void save_to_tape(const char* text) {
        for (; *text; ++text) tape_write_one_byte(uint8_t(*text));
    }
};

TEST_F(LoadedStateTest, ChangesNoSetting) {
    machine_choice other = {machine_cfg[CUSTOM_CONFIGURATION], CUSTOM_CONFIGURATION};
    other.custom = {1, 0, 2, 0, 1'000'000, 60, 1, 1, "Custom"};
    machine_apply(choose, 0, 0, bytes_of(other));
    machine_apply(startup_pattern, 32);
    machine_apply(configure, CUSTOM_CONFIGURATION, 1);
    for (const auto kind : {engine, clean_sound, event_kind::printer, key_mapping, graphics_board})
        machine_apply(kind, 1);
    const parked_state state = park_machine();
    emu_close();
    std::string settings[2];
    for (const bool loads : {false, true}) {
        std::filesystem::remove(SETTINGS);
        start();
        for (const int option : {40046, 40057, int(COMMAND_PLAY_RECORD)}) command(option);
        if (loads) unpark_machine(state);
        for (const int mark : {40060, 40131}) EXPECT_EQ(is_menu_item_checked(mark), loads) << mark;
        EXPECT_TRUE(is_menu_item_checked(COMMAND_SYMBOLIC_KEYS)) << "the user's";
        EXPECT_EQ(is_menu_item_checked(COMMAND_PLAY_RECORD), !loads);
        EXPECT_EQ(host->status_text(0), loads ? "Custom" : "CG NZ1");
        EXPECT_EQ(printer_is_ready(), loads) << "its file is open";
        run_paced_frame();
        EXPECT_EQ(g_bCycleBasedEngine, loads) << "it goes on as it was";
        emu_close();
        settings[loads] = read_text(SETTINGS);
    }
    EXPECT_EQ(settings[0], settings[1]);
    EXPECT_NE(settings[0].find("HiResLowe = 1"), std::string::npos);
    start();
    unpark_machine(state);
    command(40131);
    EXPECT_FALSE(is_menu_item_checked(40131)) << "from what the machine has";
    host->forms().acts.push_back([](HeadlessForm& form) {
        EXPECT_EQ(form.value(40125) + form.value(1007), 2) << "what runs now";
        form.press_enter();
    });
    command(COMMAND_CONFIGURATION);
    emu_close();
    EXPECT_NE(read_text(SETTINGS).find("CustomCpuClockFreq = 1000000"), std::string::npos);
}

TEST_F(LoadedStateTest, DrivesHaveItsFiles) {
    shell_state.start.keep_disk_journals = true;
    const auto write_to = [](unsigned drive, uint8_t value) {
        drive_contents[drive].change().back() = value;
        wd1771.disks[drive].modified = 1;
    };
    for (const char* name : {"a.dsk", "b.dsk"}) write_text(name, std::string(102400, '\x14'));
    const parked_state empty = park_machine();
    main_disk_image_attach(0, "a.dsk");
    main_disk_offer_journals();
    turn_until_free();
    write_to(0, 0x99);
    const parked_state early = park_machine();
    write_to(0, 0x9A);
    main_disk_image_attach(1, "b.dsk");
    unpark_machine(empty);
    EXPECT_EQ(text_of(0), "Drive :&0 - <no disk>");
    unpark_machine(early);
    const std::string a = std::filesystem::absolute("a.dsk").string();
    EXPECT_EQ(text_of(0) + text_of(1), "Drive :&0 - " + a + "Drive :&1 - <no disk>");
    EXPECT_TRUE(was_told("rescue/a.dsk"));
    EXPECT_EQ(read_file("data/rescue/a.dsk").back(), 0x9A) << "what was written later";
    attachments_leave();
    main_disk_hold_journals(true); // while the past is looked at
    for (const auto* moment : {&empty, &early}) unpark_machine(*moment);
    main_disk_hold_journals(false);
    attachments_settle();
    EXPECT_FALSE(std::filesystem::exists("data/rescue/a-1.dsk"));
    host->dialogs().answers = {0};
    command(COMMAND_DETACH_DISK);
    EXPECT_EQ(read_file("a.dsk").back(), 0x99);
    EXPECT_TRUE(std::filesystem::is_empty("data/journal"));
    shell_state.start.keep_disk_journals = false;
    unpark_machine(early); // its file holds what the state has, by now
    EXPECT_TRUE(was_told("something else"));
    main_disk_image_attach(1, "a.dsk");
    EXPECT_EQ(wd1771.disks[0].write_protected * 2 + wd1771.disks[1].write_protected, 1)
        << "claimed";
    std::filesystem::remove("a.dsk");
    for (const auto* moment : {&empty, &early}) unpark_machine(*moment);
    EXPECT_TRUE(was_told("no such file"));
    machine_load(early.machine); // and nobody says what files it has
    shell_turn();
    EXPECT_EQ(text_of(0), "Drive :&0 - <no file>");
    EXPECT_EQ(wd1771.disks[0].modified, 1);
    emu_close();
}

TEST_F(LoadedStateTest, NothingIsWrittenOverWhatATapeHolds) {
    machine_host.save_question = [] {
        return tape_create_file("a.cas") ? SAVE_READY : SAVE_FAILED;
    };
    ASSERT_EQ(tape_create_cas(), SAVE_READY);
    save_to_tape("ABC");
    const parked_state early = park_machine();
    unpark_machine(early);
    save_to_tape("DE");
    EXPECT_EQ(read_text("a.cas"), "ABCDE") << "it was the present";
    unpark_machine(early);
    EXPECT_EQ(tape_get_cas_name(), std::filesystem::absolute("a.cas"));
    save_to_tape("xy");
    EXPECT_EQ(read_text("a.cas") + read_text("data/rescue/a.cas"), "ABCDEABCxy");
    EXPECT_TRUE(was_told("goes on in data/rescue/a.cas"));
    emu_close();
}

TEST_F(LoadedStateTest, AWavTapeIsTakenOutWhenItIsNotTheSame) {
    tape_create_wav("a.wav", 11025);
    machine_apply(tape_motor, 1);
    run_paced_frame();
    unpark_machine(park_machine());
    EXPECT_EQ(tape_wav_is_open(), 0);
    EXPECT_TRUE(was_told("recording has ended"));
    auto samples = read_file("a.wav");
    EXPECT_EQ(samples.size(), 44U + 221) << "with what was pending";
    tape_open_wav("a.wav");
    const parked_state playing = park_machine();
    for (const char* trouble : {"", "something else", "No such file"}) {
        command(COMMAND_CLOSE_WAV);
        write_file("a.wav", samples);
        samples.back() ^= 1;
        if (*trouble == 'N') std::filesystem::remove("a.wav");
        unpark_machine(playing);
        uint8_t byte = 0;
        EXPECT_EQ(tape_audio.playing + tape_sound_read(44, &byte, 1), *trouble ? 0U : 2U);
        EXPECT_EQ(host->status_text(PART_CASSETTE), *trouble ? "" : "0000");
        EXPECT_TRUE(!*trouble || was_told(trouble)) << trouble;
    }
    emu_close();
}

TEST_F(LoadedStateTest, AStateFileAsksForWhatIsMissing) {
    emu_close();
    write_text("a.dsk", std::string(102400, '\x14'));
    start({"--save-state", "end.tvs", "/i", "a.dsk"});
    run_frames(30);
    const machine_state end = saved_machine();
    emu_close();
    std::filesystem::rename("a.dsk", "moved.dsk");
    start({"--load-state", "end.tvs"});
    EXPECT_EQ(host->dialogs().file_dialogs.back().title, "The state needs: a.dsk");
    EXPECT_FALSE(machine_equal(end, saved_machine())) << "the dialog was cancelled";
    const std::string why = "end.tvs cannot be loaded: it needs " +
                            std::filesystem::absolute("a.dsk").string() + " as it was then";
    EXPECT_TRUE(was_told(why.c_str()));
    for (const char* wrong : {"end.tvs", "moved.dsk"}) host->dialogs().choices.push_back({{wrong}});
    autostart_file("end.tvs");
    EXPECT_EQ(machine_difference(end, saved_machine()), "wd1771.disks[30]: 00 and 01")
        << "modified: it is in no file";
    write_text("end.tvs", "Tarvelin state\n\x1A");
    autostart_file("end.tvs");
    EXPECT_TRUE(was_told("end.tvs cannot be loaded: it is cut short"));
    emu_close();
}

} // namespace
