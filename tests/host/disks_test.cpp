#include "cgenie/memory/memory.h"
#include "cgenie/roms.h"
#include "cgenie/typing/typing.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "core/machine_state.h"
#include "core/pacing/pacing.h"
#include "host/disk_journal.h"
#include "host/disks.h"
#include "host/menu.h"
#include "host/messages.h"
#include "host/turn.h"
#include "host/whole_program.h"
#include "media/disk_system.h"
#include "media/traps.h"
#include "media/wd1771.h"
#include "support/posix.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <random>
#include <set>

#include <sys/mman.h>

namespace {

constexpr int ATTACH = 40018, DETACH = 40022, DETACH_ALL = 40033, EXIT = -1;
constexpr int YES = 0, NO = 1, CANCEL = 2;
constexpr size_t DISK_SIZE = 102400;
constexpr const char* QUESTION = " has changed. Do you want to save your changes?";

class DisksTest : public WholeProgramTest {
protected:
    void SetUp() override {
        later = true;
        WholeProgramTest::SetUp();
        testing::internal::CaptureStderr();
        for (const char* name : {"a.dsk", "b.dsk", "c.img", "d.dsk", "folder/e.dsk"}) fill(name);
        std::ofstream("bad.dsk") << "no disk";
        start();
    }
    void TearDown() override {
        testing::internal::GetCapturedStderr();
        WholeProgramTest::TearDown();
    }
    static void fill(const std::string& path) { write_text(path, std::string(DISK_SIZE, '\x14')); }
    void attach(unsigned drive, const std::string& path) {
        host->dialogs().choices.push_back({{path, 0}});
        command(ATTACH + int(drive));
    }
    static std::string text_of(unsigned drive) { return menu_item_text(ATTACH + int(drive)); }
    static std::string text_of(unsigned drive, const std::string& content) {
        return "Drive :&" + std::to_string(drive) + " - " + content;
    }
    static void change(unsigned drive) {
        const std::vector<uint8_t> sector(256, 0x99);
        ASSERT_EQ(disk_img_write_sector(wd1771.disks[drive], drive_contents[drive].change(), 0, 39,
                                        9, sector.data()),
                  1);
    }
    static bool is_changed(const std::string& path) {
        const std::vector<uint8_t> bytes = read_file(path);
        EXPECT_EQ(bytes.size(), DISK_SIZE) << path;
        EXPECT_EQ(bytes[DISK_SIZE - 257], 0x14);
        return bytes.back() == 0x99;
    }
    static std::string stored(unsigned drive) {
        return stored_text("Disk" + std::to_string(drive)).value_or("none");
    }
};

TEST_F(DisksTest, ChangesAreAskedForAtEveryWayOut) {
    const struct {
        const char* name;
        int way;          ///< a command
        const char* next; ///< what is attached over it
        const char* status;
        const char* item;
    } ways[] = {
        {"detach", DETACH + 2, nullptr, "Disk detached from drive #2", "<no disk>"},
        {"detach all", DETACH_ALL, nullptr, "All disks detached.", "<no disk>"},
        {"attach", ATTACH + 2, "b.dsk", "Disk: 2 side(s), 40 tracks, 10 sectors, 100 kb.", "b.dsk"},
        {"attach what is no disk", ATTACH + 2, "bad.dsk", "Unsupported disk image.\n", "<no disk>"},
        {"attach the same", ATTACH + 2, "a.dsk", "Disk: 2 side(s), 40 tracks, 10 sectors, 100 kb.",
         "a.dsk"},
        {"exit", EXIT, nullptr, "All disks detached.", "<no disk>"},
    };
    for (const auto& way : ways) {
        for (const int answer : {-1, 0, 1}) { // not changed at all, No, Yes
            SCOPED_TRACE(testing::Message() << way.name << " " << answer);
            fill("a.dsk");
            attach(2, "a.dsk");
            if (answer >= 0) change(2);
            host->dialogs().questions.clear();
            host->dialogs().answers = {answer ? YES : NO};
            if (way.next) host->dialogs().choices.push_back({{way.next, 0}});
            if (way.way == EXIT) {
                emu_close();
            } else {
                command(way.way);
            }
            EXPECT_EQ(is_changed("a.dsk"), answer == 1);
            const auto& questions = host->dialogs().questions;
            ASSERT_EQ(questions.size(), answer < 0 ? 0U : 1U);
            if (answer >= 0) {
                EXPECT_EQ(questions[0].title, "Warning");
                EXPECT_EQ(questions[0].text, std::string("Disk content in drive :2") + QUESTION);
            }
            EXPECT_EQ(host->status_text(3), way.status);
            EXPECT_EQ(text_of(2), text_of(2, way.item));
            EXPECT_EQ(host->dialogs().messages.empty(),
                      way.name != std::string("attach what is no disk"));
            host->dialogs().messages.clear();
            if (way.way != EXIT) {
                command(DETACH + 2);
                continue;
            }
            EXPECT_EQ(stored(2), std::filesystem::absolute("a.dsk").string())
                << "as before the question, for a run in any folder";
            start();
            EXPECT_EQ(text_of(2), text_of(2, stored(2))) << "attached again";
            EXPECT_EQ(host->status_text(3), "");
            EXPECT_EQ(wd1771_disk(2).image.back() == 0x99, answer == 1);
            command(DETACH_ALL);
        }
    }
    constexpr std::pair<unsigned, const char*> disks[] = {{3, "d.dsk"}, {0, "a.dsk"}, {1, "b.dsk"}};
    for (const auto& [drive, path] : disks) {
        fill(path);
        attach(drive, path);
        change(drive);
    }
    host->dialogs().questions.clear();
    host->dialogs().answers = {YES, NO, YES};
    command(DETACH_ALL);
    ASSERT_EQ(host->dialogs().questions.size(), 3U);
    EXPECT_EQ(host->dialogs().questions[0].text,
              std::string("Disk content in drive :0") + QUESTION);
    EXPECT_EQ(host->dialogs().questions[2].text,
              std::string("Disk content in drive :3") + QUESTION);
    EXPECT_TRUE(is_changed("a.dsk") && !is_changed("b.dsk") && is_changed("d.dsk"));
    emu_close();
    for (unsigned drive = 0; drive < 4; ++drive) EXPECT_EQ(stored(drive), "");
}

TEST_F(DisksTest, WithoutAnAnswerTheDiskStays) {
    for (const int way : {DETACH + 2, DETACH_ALL, ATTACH + 2, EXIT}) {
        for (const int answer : {NO_ANSWER, CANCEL}) {
            SCOPED_TRACE(testing::Message() << way << " " << answer);
            start();
            for (const unsigned drive : {2, 3}) {
                attach(drive, drive == 2 ? "a.dsk" : "d.dsk");
                change(drive);
            }
            host->dialogs().questions.clear();
            host->dialogs().answers = {answer};
            if (way == ATTACH + 2) host->dialogs().choices.push_back({{"b.dsk", 0}});
            if (way == EXIT) {
                emu_close();
            } else {
                command(way);
            }
            EXPECT_EQ(host->dialogs().questions.size(), 1U);
            EXPECT_FALSE(is_changed("a.dsk") || is_changed("d.dsk"));
            EXPECT_EQ(text_of(2), text_of(2, way == EXIT ? "<no disk>" : "a.dsk"));
            EXPECT_EQ(wd1771_disk(2).modified && wd1771_disk(3).modified, way != EXIT);
            EXPECT_EQ(host->status_text(3),
                      way == EXIT         ? "Disk content in drive :3 has changed and is not saved"
                      : way == DETACH_ALL ? "Stopped: the disk in drive :2 stays there."
                                          : "The disk in drive :2 stays there.");
        }
    }
}

TEST_F(DisksTest, NothingIsLostWhereTheFileIsNotAsItWas) {
    constexpr int ELSEWHERE = 0, MINE = 1, THEIRS = 2;
    const auto touch = [] { fill("folder/e.dsk"); };
    const auto other = [] { write_text("folder/e.dsk", std::string(DISK_SIZE, '\x15')); };
    const auto removed = [] { std::filesystem::remove("folder/e.dsk"); };
    const auto gone = [] { std::filesystem::remove_all("folder"); };
    const struct {
        const char* name;
        void (*happens)();
        std::deque<int> answers; ///< after Yes
        int last_byte;           ///< of the file in the end; -1: none
        bool elsewhere = false;
        bool stays = false;
    } cases[] = {{"touched", touch, {}, 0x99},
                 {"removed", removed, {}, 0x99},
                 {"mine", other, {MINE}, 0x99},
                 {"theirs", other, {THEIRS}, 0x15},
                 {"elsewhere", other, {ELSEWHERE}, 0x15, true},
                 {"no answer", other, {}, 0x15, false, true},
                 {"gone", gone, {MINE, MINE, ELSEWHERE}, -1, true},
                 {"left alone", gone, {THEIRS}, -1},
                 {"gone, no answer", gone, {NO_ANSWER}, -1, false, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        fill("folder/e.dsk");
        std::filesystem::remove("out.dsk");
        attach(1, "folder/e.dsk");
        change(1);
        c.happens();
        host->dialogs().answers = c.answers;
        host->dialogs().answers.push_front(YES);
        host->dialogs().choices = {{{"out.dsk", 0}}};
        command(DETACH + 1);
        EXPECT_EQ(diskimg_inserted(wd1771_disk(1)), c.stays);
        EXPECT_TRUE(host->dialogs().answers.empty());
        EXPECT_EQ(std::filesystem::exists("out.dsk"), c.elsewhere);
        EXPECT_TRUE(!c.elsewhere || is_changed("out.dsk"));
        const std::vector<uint8_t> bytes = read_file("folder/e.dsk");
        EXPECT_EQ(bytes.empty() ? -1 : bytes.back(), c.last_byte);
        host->dialogs().answers = {NO};
        host->dialogs().choices.clear();
        command(DETACH + 1);
    }
}

TEST_F(DisksTest, OneDriveAtATimeWritesToAnImage) {
    std::filesystem::create_symlink("a.dsk", "link.dsk");
    std::filesystem::create_hard_link("a.dsk", "twin.dsk");
    attach(0, "a.dsk");
    for (const char* name : {"a.dsk", "link.dsk", "twin.dsk", "new a.dsk"}) {
        if (name[0] == 'n') std::filesystem::rename("b.dsk", "a.dsk"); // as editors save
        attach(1, name[0] == 'n' ? "a.dsk" : name);
        EXPECT_TRUE(wd1771_disk(1).write_protected) << name;
        EXPECT_EQ(host->status_text(3), "Drive :1 is write-protected");
        EXPECT_TRUE(kept_messages().back().line.ends_with(": drive :0 has the same image"));
    }
    attach(0, "c.img");
    attach(1, "a.dsk");
    EXPECT_FALSE(wd1771_disk(1).write_protected);

    int ends[2];
    char ready = 0;
    ASSERT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        attach(2, "d.dsk");
        if (write(ends[1], &ready, 1) == 1) pause();
        _exit(1);
    }
    ASSERT_EQ(read(ends[0], &ready, 1), 1);
    attach(3, "d.dsk");
    EXPECT_TRUE(wd1771_disk(3).write_protected);
    EXPECT_NE(kept_messages().back().line.find("another running program"), std::string::npos);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    attach(3, "d.dsk");
    EXPECT_FALSE(wd1771_disk(3).write_protected);
}

class DiskJournalTest : public DisksTest {
protected:
    static constexpr int TAKE = 0, LOOK = 1;
    /// A program that changes a disk, first another sector of it, and is killed.
    void run_killed() {
        fill("a.dsk");
        std::filesystem::remove_all("data/journal");
        const pid_t child = fork();
        if (child == 0) {
            begin();
            attach(0, "a.dsk");
            const std::vector<uint8_t> sector(256, 0x77);
            disk_img_write_sector(wd1771.disks[0], drive_contents[0].change(), 0, 0, 0,
                                  sector.data());
            main_disk_keep_journals();
            change(0);
            main_disk_keep_journals();
            raise(SIGKILL);
        }
        waitpid(child, nullptr, 0);
        begin();
    }
    void begin() {
        start();
        memory_set_eprom(0); // nothing to offer
        shell_state.start.keep_disk_journals = true;
        main_disk_offer_journals();
        turn_until_free();
    }
    static std::filesystem::path journal() {
        for (const auto& entry : std::filesystem::directory_iterator("data/journal")) return entry;
        return {};
    }
    static int last_byte() {
        const auto disk = drive_contents[0].view();
        return disk.empty() ? -1 : disk.back();
    }
};

TEST_F(DiskJournalTest, WhatAKilledProgramHasWrittenIsOffered) {
    for (const int answer : {YES, NO}) {
        run_killed();
        host->dialogs().answers = {TAKE};
        attach(0, "a.dsk");
        ASSERT_EQ(last_byte(), 0x99);
        EXPECT_EQ(wd1771_disk(0).image[0], 0x77);
        host->dialogs().answers = {NO_ANSWER}; // to the question at the end
        emu_close();
        begin();
        host->dialogs().answers = {NO_ANSWER}; // to the journal
        attach(0, "a.dsk");
        EXPECT_TRUE(wd1771_disk(0).write_protected);
        host->dialogs().answers = {LOOK, TAKE, answer};
        attach(0, "a.dsk");
        EXPECT_FALSE(wd1771_disk(0).write_protected);
        command(DETACH);
        EXPECT_EQ(read_file("a.dsk").back() == 0x99, answer == YES);
        EXPECT_EQ(journal(), "");
    }
    run_killed(); // while the second batch was written
    std::filesystem::resize_file(journal(), std::filesystem::file_size(journal()) - 1);
    host->dialogs().answers = {TAKE, NO};
    attach(0, "a.dsk");
    EXPECT_EQ(wd1771_disk(0).image[0], 0x77);
    EXPECT_EQ(last_byte(), 0x14);
    command(DETACH);

    run_killed(); // and then written by another program
    write_text("a.dsk", std::string(DISK_SIZE, '\x15'));
    host->dialogs().answers = {0};
    host->dialogs().choices.push_back({{"a.dsk", 0}});
    host->dialogs().choices.push_back({{"out.dsk", 0}});
    command(ATTACH);
    ASSERT_TRUE(std::filesystem::exists("out.dsk"));
    EXPECT_EQ(read_file("out.dsk").back(), 0x99);
    EXPECT_EQ(last_byte(), 0x15);
    EXPECT_EQ(journal(), "");
    command(DETACH);

    run_killed(); // after the image had been written back
    std::filesystem::copy_file("out.dsk", "a.dsk",
                               std::filesystem::copy_options::overwrite_existing);
    host->dialogs().questions.clear();
    attach(0, "a.dsk");
    EXPECT_TRUE(host->dialogs().questions.empty());
    EXPECT_EQ(journal(), "");
    emu_close();
}

/// What a disk held after each frame, seen by other processes.
struct DiskHistory {
    size_t count = 0;
    std::array<std::pair<int64_t, uint64_t>, 100000> states = {}; ///< time and content
};

TEST_F(DiskJournalTest, KilledAtAnyMomentOnlyTheLastSecondIsMissing) {
    const int kills = kills_wanted();
    std::string problem;
    auto blank = disk_blank(DISK_PLAIN, 40, 10, problem);
    ASSERT_TRUE(blank && disk_format(*blank, problem)) << problem;
    write_file("a.dsk", blank->image);
    write_text(SETTINGS, "ActiveConfig = 4\nCustomRomExpansion = 0\n");
    begin();
    attach(0, "a.dsk");
    do_some_frames(200);
    const auto type = [](const char* text) {
        memory_place_bas_trap();
        keyboard_open_from_buffer(text);
    };
    type("\r\r10 OPEN\"O\",1,\"A\":FOR I=1 TO 99:N=N+1:PRINT#1,N:NEXT:CLOSE:GOTO 10\r");
    do_some_frames(500);
    auto* const history = static_cast<DiskHistory*>(mmap(
        nullptr, sizeof(DiskHistory), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    std::mt19937 random{std::random_device{}()};
    const int64_t second = host->clock().frequency();
    size_t most_states = 0;
    for (int n = 0; n < kills; ++n) {
        std::filesystem::remove_all("data/journal");
        history->count = 0;
        const pid_t child = fork();
        if (child == 0) {
            type("RUN\r");
            for (size_t frame = 0; frame < history->states.size(); ++frame) {
                run_paced_frame();
                history->states[frame] = {pacing.elapsed_counter,
                                          content_hash(drive_contents[0].view())};
                history->count = frame + 1;
                main_disk_keep_journals_when_due();
            }
            _exit(1);
        }
        const size_t frames = 1 + random() % 400; // counted, for a slow host gets nowhere in a time
        while (*static_cast<volatile size_t*>(&history->count) < frames) usleep(100);
        usleep(useconds_t(random() % 1000));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        const auto left = find_left_journal(drive_files[0]);
        const uint64_t kept = content_hash(left ? left->image : drive_contents[0].view());
        const std::span states(history->states.data(), history->count);
        const auto same = [&](const auto& state) {
            return state.second == kept && states.back().first - state.first <= second;
        };
        ASSERT_TRUE(std::ranges::any_of(states, same)) << n << ", " << states.size() << " frames";
        std::set<uint64_t> different;
        for (const auto& state : states) different.insert(state.second);
        most_states = std::max(most_states, different.size());
    }
    EXPECT_GT(most_states, 20U) << "the disk was hardly written to";
    munmap(history, sizeof(DiskHistory));
}

TEST_F(DisksTest, DroppedDisksGoIntoDriveZero) {
    std::filesystem::rename("b.dsk", "B&B.CGD");
    z80_state.pc = 0x1234;
    for (const std::string path : {"a.dsk", "B&B.CGD"}) {
        host->dialogs().answers = {NO_ANSWER}; // to the disk ROM
        if (path != "a.dsk") host->dialogs().answers.push_front(YES);
        WindowProcedure({Event::Kind::drop, 0, 0, path});
        turn_until_free();
        EXPECT_EQ(host->status_text(3), "Autoloaded: " + path);
        EXPECT_EQ(text_of(0), text_of(0, path == "a.dsk" ? path : "B&&B.CGD"));
        EXPECT_EQ(wd1771_is_active(), 0);
        change(0);
        EXPECT_EQ(is_changed("a.dsk"), path != "a.dsk") << "asked before the next one";
    }
    EXPECT_EQ(z80_state.pc, 0x1234) << "the machine runs on";
    host->set_key(KEY_CONTROL, true);
    host->dialogs().answers = {NO};
    WindowProcedure({Event::Kind::drop, 0, 0, "bad.dsk"});
    turn_until_free();
    host->release_all_keys();
    EXPECT_EQ(z80_state.pc, 0);
    EXPECT_EQ(text_of(0), text_of(0, "<no disk>"));
    emu_close();
}

TEST_F(DisksTest, WriteProtectionIsTheUsersAsFarAsTheFileCanBeWritten) {
    constexpr int PROTECT = 40273;
    const auto press_lamp = [](int drive) {
        WindowProcedure({Event::Kind::status_button, drive, 0, {}});
    };
    const auto popup = [&]() -> const std::vector<MenuEntry>& { return host->window().popup; };
    const auto is_protected = [&](unsigned drive) {
        const bool marked = host->window().checked(PROTECT + int(drive));
        EXPECT_EQ(wd1771.disks[drive].write_protected, marked);
        return marked;
    };
    attach(0, "a.dsk");
    for (const bool now : {true, false}) {
        command(PROTECT);
        EXPECT_EQ(is_protected(0), now);
        EXPECT_EQ(host->status_bar().buttons[0].tip(),
                  std::string("Drive :0: a.dsk\n") +
                      (now ? "Write-protected" : "Can be written to") + ", unchanged");
        press_lamp(0);
        EXPECT_EQ(popup().at(4).id, PROTECT);
        EXPECT_EQ(popup().at(4).checked, now);
    }
    press_lamp(1);
    host->sink().menu_opens();
    for (const int item : {2, 4}) { // what needs a disk is greyed, here as in the window's menu
        EXPECT_EQ(popup().at(size_t(item)).state, ItemState::greyed);
        EXPECT_EQ(host->window().item_state(popup()[size_t(item)].id), ItemState::greyed);
        EXPECT_EQ(host->window().item_state(popup()[size_t(item)].id - 1), ItemState::usual);
    }
    const Rectangle client = host->window().client_on_screen();
    EXPECT_EQ(host->window().popup_place,
              (Size{client.left + 107, client.bottom - HEADLESS_STATUS_BAR}));
    host->dialogs().choices.push_back({{"copy.dsk", 0}});
    command(40294);
    EXPECT_EQ(read_text("copy.dsk"), read_text("a.dsk"));
    attach(1, "a.dsk");
    command(PROTECT + 1);
    EXPECT_TRUE(is_protected(1)) << "drive 0 has it";
    command(DETACH);
    command(PROTECT + 1);
    EXPECT_FALSE(is_protected(1));
    host->dialogs().choices.push_back({{"new", 0}});
    command(40271);
    EXPECT_EQ(text_of(0), text_of(0, "new.dsk")) << "the first empty drive";
    std::string problem;
    const auto made = disk_mount(wd1771_disk(0), problem);
    ASSERT_TRUE(made) << problem;
    EXPECT_TRUE(disk_files(*made).empty() && disk_check(*made).empty());
    EXPECT_EQ(disk_free_blocks(*made), 77U) << "all but the directory's two and the boot sector's";
    emu_close();
}

TEST_F(DisksTest, AMachineWithoutTheDiskRomIsOfferedItForThisRun) {
    const auto& questions = host->dialogs().questions;
    for (const int answer : {NO, YES}) {
        z80_state.pc = 0x1234;
        host->dialogs().answers = {answer};
        attach(1, "d.dsk");
        EXPECT_EQ(questions.back().text, "Restart with the disk ROM?");
        EXPECT_EQ(z80_state.pc, answer == YES ? 0 : 0x1234);
        EXPECT_EQ(mem_read(0xC000), answer == YES ? 'D' : 0xFF);
    }
    attach(0, "a.dsk");
    EXPECT_EQ(questions.size(), 2U) << "it has one now";
    machine_change_cfg(machine_cfg[2], 1);
    EXPECT_EQ(mem_read(0xC000), 'D') << "another model of the same run, too";
    emu_close();
    start();
    EXPECT_EQ(text_of(1), text_of(1, std::filesystem::absolute("d.dsk")));
    EXPECT_TRUE(host->dialogs().questions.empty()) << "nobody has given the disk";
    EXPECT_EQ(mem_read(0xC000), 0xFF) << "in no configuration";
    emu_close();
}

} // namespace
