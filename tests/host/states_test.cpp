// States in slots and files, the panel, and going on where the program was left.

#include "host/states.h"

#include "cgenie/memory/memory.h"
#include "host/disks.h"
#include "host/resume.h"
#include "host/state_files.h"
#include "host/whole_program.h"
#include "media/wd1771.h"
#include "support/posix.h"

#include <fstream>

namespace {

namespace fs = std::filesystem;

constexpr uint16_t PLACE = 0x9000;

class StatesTest : public WholeProgramTest {
protected:
    void begin() {
        start({}, {.line = {}, .keep_disk_journals = true, .resumes = true});
        resume_where_left();
        main_disk_offer_journals();
        turn_until_free();
    }
    void save(int value) {
        memory[PLACE] = uint8_t(value);
        command(COMMAND_SAVE_SLOT);
    }
    void turns(int count) {
        while (count-- > 0) host->events().wait(shell_turn().microseconds);
    }
};

TEST_F(StatesTest, ASlotGivesBackWhatItHeldAndWhatItHeldBefore) {
    begin();
    run_frames(60);
    choose_slot(3);
    save(1);
    save(2);
    memory[PLACE] = 3;
    command(COMMAND_LOAD_SLOT);
    EXPECT_EQ(memory[PLACE], 2);
    undo_load();
    EXPECT_EQ(memory[PLACE], 3);
    undo_load();
    EXPECT_EQ(memory[PLACE], 2);
    const auto slot_holds = [&](int value, const char* when) {
        memory[PLACE] = 0;
        command(COMMAND_LOAD_SLOT);
        EXPECT_EQ(memory[PLACE], value) << when;
    };
    undo_slot(3);
    slot_holds(1, "undone");
    delete_slot(3);
    slot_holds(0, "empty");
    undo_slot(3);
    slot_holds(1, "undone again");
    fs::permissions("data/states", fs::perms::none);
    fs::rename("data/states", "data/gone");
    std::ofstream("data/states") << "no folder";
    save(4);
    EXPECT_EQ(host->dialogs().messages.size(), 1U) << "no room";
    fs::remove("data/states");
    fs::rename("data/gone", "data/states");
    fs::permissions("data/states", fs::perms::owner_all);
    slot_holds(1, "as before the failure");
    fs::resize_file("data/states/slot-3.tvs", fs::file_size("data/states/slot-3.tvs") - 1);
    slot_holds(0, "damaged");
    EXPECT_EQ(host->dialogs().messages.size(), 2U);
    choose_slot(-1);
    EXPECT_EQ(current_slot(), 9);
    emu_close();
}

TEST_F(StatesTest, ThePanelShowsAndDoesIt) {
    enum : int { LOAD = 1, CLOSE, SAVE, DELETE, UNDO_SLOT, UNDO_LOAD, SAVE_AS, OPEN, SLOT = 100 };
    begin();
    run_frames(60);
    fs::create_directories("data/states");
    std::ofstream("data/states/slot-4.tvs") << "no state";
    memory[PLACE] = 7;
    last_file_name = "games/GAME";
    host->dialogs().answers = {0, 1}; // keep it, delete it
    host->dialogs().choices.push_back({{"given", 0}});
    host->forms().acts.push_back([](HeadlessForm& form) {
        EXPECT_EQ(form.text(SLOT), "0\nempty");
        EXPECT_TRUE(form.value(SLOT) && !form.is_enabled(LOAD) &&
                    form.picture(SLOT).pixels.empty());
        form.choose(SLOT + 4, 1);
        EXPECT_EQ(form.text(SLOT + 4), "4\ncannot be read");
        EXPECT_TRUE(!form.is_enabled(LOAD) && form.is_enabled(DELETE));
        form.choose(SLOT + 2, 1);
        form.press(SAVE);
        EXPECT_EQ(form.text(SLOT + 2).substr(0, 8), "2  GAME\n");
        EXPECT_EQ(form.picture(SLOT + 2).pixels.size(), 192U * 144);
        form.press(SAVE_AS);
        form.press(DELETE);
        EXPECT_TRUE(form.is_enabled(LOAD)) << "kept";
        form.press(DELETE);
        EXPECT_FALSE(form.is_enabled(LOAD));
        form.press(UNDO_SLOT);
        memory[PLACE] = 8;
        form.press_enter();
        EXPECT_EQ(memory[PLACE], 8) << "loaded when the panel has closed";
    });
    command(COMMAND_STATES);
    EXPECT_EQ(memory[PLACE], 7);
    host->dialogs().choices.push_back({{"given.tvs", 0}});
    for (const auto& [button, value] : {std::pair{UNDO_LOAD, 8}, {OPEN, 7}, {CLOSE, 9}}) {
        memory[PLACE] = 9;
        host->forms().acts.push_back([button = button](HeadlessForm& form) { form.press(button); });
        command(COMMAND_STATES);
        EXPECT_EQ(memory[PLACE], value) << button;
    }
    emu_close();
}

TEST_F(StatesTest, TheProgramGoesOnWhereItWasLeftOrKilled) {
    std::ofstream(SETTINGS) << "Resume = 1\n";
    write_file("a.dsk", std::vector<uint8_t>(size_t(40 * 10 * 256), 1));
    const auto leaves = [&](bool killed) {
        const pid_t child = fork();
        if (child == 0) {
            begin();
            main_disk_image_attach(0, "a.dsk");
            turns(200);
            memory[PLACE] = 5;
            drive_contents[0].change().back() = 6;
            wd1771.disks[0].modified = 1;
            parked_state kept; // by a thread, in its own time
            while (kept.machine.media[0].empty() || kept.machine.media[0].view().back() != 6) {
                turns(60);
                usleep(10'000);
                read_state_file("data/states/resume.tvs", kept);
            }
            if (killed) raise(SIGKILL);
            emu_close();
            _exit(0);
        }
        waitpid(child, nullptr, 0);
    };
    for (const bool killed : {false, true}) {
        fs::remove_all("data");
        leaves(killed);
        begin();
        EXPECT_EQ(memory[PLACE], 5) << killed;
        ASSERT_EQ(drive_contents[0].size(), 40U * 10 * 256);
        EXPECT_EQ(drive_contents[0].view().back(), 6);
        EXPECT_TRUE(host->dialogs().questions.empty()) << "no journal to ask about";
        EXPECT_EQ(host->status_text(3).substr(0, 8), "Resumed:");
        shell_state.resume = false; // for an end with its question
        command(COMMAND_RESUME);
        command(COMMAND_RESUME);
        EXPECT_FALSE(fs::exists("data/states/resume.tvs"));
        host->dialogs().answers = {0};
        emu_close();
        EXPECT_EQ(read_file("a.dsk").back(), 6);
        write_file("a.dsk", std::vector<uint8_t>(size_t(40 * 10 * 256), 1));
        std::ofstream(SETTINGS) << "Resume = 1\n";
    }
    leaves(false);
    fs::resize_file("data/states/resume.tvs", 1000);
    host->dialogs().answers = {1}; // the journal is offered then
    begin();
    EXPECT_TRUE(fs::exists("data/states/not-resumed.tvs"));
    EXPECT_EQ(host->dialogs().messages.size(), 1U);
    EXPECT_FALSE(host->dialogs().questions.empty());
    emu_close();
}

} // namespace
