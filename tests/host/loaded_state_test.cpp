#include "host/attachments.h"

#include "core/frame_driver.h"
#include "core/machine.h"
#include "core/machine_events.h"
#include "core/machine_state.h"
#include "host/autostart.h"
#include "host/disks.h"
#include "host/messages.h"
#include "host/whole_program.h"
#include "media/files/cassette_files.h"
#include "media/files/tape_sound_files.h"
#include "media/printer.h"
#include "media/tape.h"
#include "media/tape_audio.h"
#include "media/wd1771.h"

namespace {

using enum event_kind;

/// A state, and the files that it was made with.
struct Kept {
    machine_state machine;
    shared_bytes files;
};

class LoadedStateTest : public WholeProgramTest {
protected:
    static Kept keep() {
        attachments_leave();
        Kept kept;
        machine_save(kept.machine);
        kept.files = attachments_now();
        return kept;
    }
    static void go_back(const Kept& kept) {
        attachments_leave();
        machine_load(kept.machine);
        attachments_follow(kept.files);
    }
    static std::string last_message() {
        return kept_messages().empty() ? "" : kept_messages().back().line;
    }
    static std::string text_of(int drive) { return menu_item_text(COMMAND_ATTACH_DISK + drive); }
    static std::string content(const std::string& path) {
        const auto bytes = read_file(path);
        return {bytes.begin(), bytes.end()};
    }
    static void save_to_tape(const char* text) {
        for (; *text; ++text) tape_write_one_byte(uint8_t(*text));
    }
};

TEST_F(LoadedStateTest, ALoadedStateChangesNoSetting) {
    start();
    machine_choice other = {machine_cfg[CUSTOM_CONFIGURATION], CUSTOM_CONFIGURATION};
    other.custom = {1, 0, 2, 0, 1'000'000, 60, 1, 1, "Custom"};
    machine_apply(choose, 0, 0, bytes_of(other));
    machine_apply(startup_pattern, 32);
    machine_apply(configure, CUSTOM_CONFIGURATION, 1);
    for (const event_kind kind :
         {engine, clean_sound, event_kind::printer, key_mapping, graphics_board})
        machine_apply(kind, 1);
    const Kept state = keep();
    emu_close();
    std::string settings[2];
    for (const bool loads : {false, true}) {
        std::filesystem::remove(SETTINGS);
        start();
        command(COMMAND_PLAY_RECORD);
        for (const int option : {40046, 40058, 40058, 40057}) command(option);
        if (loads) go_back(state);
        for (const int mark : {40060, 40131}) EXPECT_EQ(is_menu_item_checked(mark), loads) << mark;
        EXPECT_TRUE(is_menu_item_checked(COMMAND_SYMBOLIC_KEYS)) << "the user's";
        EXPECT_EQ(is_menu_item_checked(COMMAND_PLAY_RECORD), !loads);
        EXPECT_EQ(host->status_text(0), loads ? "Custom" : "CG NZ1");
        EXPECT_EQ(printer_is_ready(), loads) << "its file is open";
        run_paced_frame();
        EXPECT_EQ(g_bCycleBasedEngine, loads) << "it goes on as it was";
        emu_close();
        settings[loads] = content(SETTINGS);
    }
    EXPECT_EQ(settings[0], settings[1]);
    start();
    go_back(state);
    for (const int mark : {40131, 40060}) command(mark);
    EXPECT_FALSE(is_menu_item_checked(40131)) << "from what the machine has";
    host->forms().acts.push_back([](HeadlessForm& form) {
        EXPECT_EQ(form.value(40125) + form.value(1007), 2) << "what runs now";
        EXPECT_EQ(form.number(1020), 1'000'000U);
        form.press_enter();
    });
    command(COMMAND_CONFIGURATION);
    emu_close();
    EXPECT_NE(content(SETTINGS).find("CustomCpuClockFreq = 1000000"), std::string::npos)
        << "confirmed";
}

TEST_F(LoadedStateTest, DrivesBelongToTheFilesOfTheState) {
    start();
    shell_state.start.keep_disk_journals = true;
    const auto write_to = [](unsigned drive, uint8_t value) {
        drive_contents[drive].change().back() = value;
        wd1771.disks[drive].modified = 1;
    };
    for (const char* name : {"a.dsk", "b.dsk"}) write_text(name, std::string(102400, '\x14'));
    const Kept empty = keep();
    main_disk_image_attach(0, "a.dsk");
    main_disk_offer_journals();
    turn_until_free();
    write_to(0, 0x99);
    const Kept early = keep();
    write_to(0, 0x9A);
    main_disk_image_attach(1, "b.dsk");
    go_back(empty);
    EXPECT_EQ(text_of(0), "Drive :&0 - <no disk>");
    go_back(early);
    const std::string a = std::filesystem::absolute("a.dsk");
    EXPECT_EQ(text_of(0) + text_of(1), "Drive :&0 - " + a + "Drive :&1 - <no disk>");
    EXPECT_NE(last_message().find("rescue/a.dsk"), std::string::npos);
    EXPECT_EQ(read_file("data/rescue/a.dsk").back(), 0x9A) << "what was written later";
    EXPECT_FALSE(wd1771_disk(0).write_protected);
    attachments_leave();
    main_disk_hold_journals(true); // while the past is looked at
    for (const Kept* moment : {&empty, &early}) go_back(*moment);
    main_disk_hold_journals(false);
    attachments_settle();
    EXPECT_FALSE(std::filesystem::exists("data/rescue/a-1.dsk"));
    main_disk_image_attach(1, "a.dsk");
    EXPECT_TRUE(wd1771_disk(1).write_protected) << "claimed";
    host->dialogs().answers = {0};
    command(COMMAND_DETACH_DISK);
    EXPECT_EQ(read_file("a.dsk").back(), 0x99);
    EXPECT_TRUE(std::filesystem::is_empty("data/journal"));
    command(COMMAND_DETACH_DISK + 1);
    go_back(early); // its file holds something else now: what the state has
    EXPECT_NE(last_message().find("something else"), std::string::npos) << last_message();
    std::filesystem::remove("a.dsk");
    go_back(empty);
    go_back(early);
    EXPECT_NE(last_message().find("no such file"), std::string::npos);
    EXPECT_EQ(text_of(0), "Drive :&0 - <no file>");
    machine_load(early.machine); // and nobody says what files it has
    shell_turn();
    EXPECT_EQ(text_of(0), "Drive :&0 - <no file>");
    EXPECT_EQ(wd1771.disks[0].modified, 1);
    emu_close();
}

TEST_F(LoadedStateTest, NothingIsWrittenOverWhatATapeHolds) {
    start();
    const auto make = [] { return tape_create_file("a.cas") ? SAVE_READY : SAVE_FAILED; };
    machine_host.save_question = +make;
    ASSERT_EQ(tape_create_cas(), SAVE_READY);
    save_to_tape("ABC");
    const Kept early = keep();
    go_back(early);
    save_to_tape("DE");
    EXPECT_EQ(content("a.cas"), "ABCDE") << "it was the present";
    go_back(early);
    EXPECT_EQ(tape_get_cas_name(), std::filesystem::absolute("a.cas"));
    save_to_tape("xy");
    EXPECT_EQ(content("a.cas"), "ABCDE");
    EXPECT_EQ(content("data/rescue/a.cas"), "ABCxy");
    EXPECT_NE(last_message().find("goes on in data/rescue/a.cas"), std::string::npos);
    emu_close();
}

TEST_F(LoadedStateTest, AWavTapeIsTakenOutWhenItIsNotTheSame) {
    start();
    tape_create_wav("a.wav", 11025);
    machine_apply(tape_motor, 1);
    run_paced_frame();
    const Kept recording = keep();
    EXPECT_EQ(read_file("a.wav").size(), 44U + 221) << "with what was pending";
    command(COMMAND_CLOSE_WAV);
    const auto whole = read_file("a.wav");
    tape_open_wav("a.wav");
    const Kept playing = keep();
    command(COMMAND_CLOSE_WAV);
    go_back(recording);
    EXPECT_EQ(tape_wav_is_open(), 0);
    EXPECT_EQ(read_file("a.wav"), whole);
    EXPECT_NE(last_message().find("recording has ended"), std::string::npos);
    go_back(playing);
    EXPECT_EQ(tape_audio.playing, 1);
    EXPECT_EQ(host->status_text(PART_CASSETTE), "0000");
    uint8_t byte = 0;
    EXPECT_EQ(tape_sound_read(44, &byte, 1), 1U);
    command(COMMAND_CLOSE_WAV);
    auto changed = whole;
    changed.back() ^= 1;
    for (const bool exists : {true, false}) {
        write_file("a.wav", changed);
        if (!exists) std::filesystem::remove("a.wav");
        go_back(playing);
        EXPECT_EQ(tape_wav_is_open(), 0);
        EXPECT_NE(last_message().find(exists ? "something else" : "No such file"),
                  std::string::npos);
        EXPECT_EQ(host->status_text(PART_CASSETTE), "");
    }
    emu_close();
}

TEST_F(LoadedStateTest, AStateFileAsksForWhatIsMissing) {
    const auto state = [] {
        machine_state now;
        machine_save(now);
        return now;
    };
    write_text("a.dsk", std::string(102400, '\x14'));
    start({"--save-state", "end.tvs", "/i", "a.dsk"});
    for (int frame = 0; frame < 30; ++frame) run_paced_frame();
    const machine_state end = state();
    emu_close();
    std::filesystem::rename("a.dsk", "moved.dsk");
    start({"--load-state", "end.tvs"});
    EXPECT_EQ(host->dialogs().file_dialogs.back().title, "The state needs: a.dsk");
    EXPECT_FALSE(machine_equal(end, state())) << "the dialog was cancelled";
    const std::string why = "end.tvs cannot be loaded: it needs " +
                            std::filesystem::absolute("a.dsk").string() + " as it was then";
    EXPECT_EQ(last_message(), why);
    for (const char* wrong : {"end.tvs", "moved.dsk"}) host->dialogs().choices.push_back({{wrong}});
    autostart_file("end.tvs");
    EXPECT_EQ(machine_difference(end, state()), "wd1771.disks[30]: 00 and 01")
        << "modified: it is in no file";
    write_text("end.tvs", "Tarvelin state\n\x1A");
    autostart_file("end.tvs");
    EXPECT_EQ(last_message(), "end.tvs cannot be loaded: it is cut short");
    emu_close();
}

} // namespace
