#include "time/history.h"

#include "cgenie/video.h"
#include "core/frame_driver.h"
#include "core/machine_events.h"
#include "host/commands.h"
#include "host/dialogs/compression_dialog.h"
#include "host/disks.h"
#include "host/messages.h"
#include "host/states.h"
#include "host/whole_program.h"
#include "media/files/cassette_files.h"
#include "media/wd1771.h"
#include "z80/z80.h"

#include <algorithm>
#include <map>
#include <random>

namespace {

using enum event_kind;

class KeepHistoryTest : public WholeProgramTest {
protected:
    static machine_state now() {
        if (!g_bCycleBasedEngine) video_render_frame();
        return saved_machine();
    }
    static void frames(int count) {
        for (; count > 0; --count) {
            run_paced_frame();
            past[history_last()] = now();
        }
    }
    static void type(std::string text) {
        machine_apply(typing_trap);
        machine_apply(type_text, 0, 0, shared_bytes({text.begin(), text.end()}));
        frames(150);
    }
    static std::string files() {
        std::string all;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(".")) {
            if (!entry.is_regular_file()) continue;
            all += entry.path().string() + ": " + read_text(entry.path()) + "\n";
        }
        return all;
    }
    static std::map<int64_t, machine_state> past;
};
std::map<int64_t, machine_state> KeepHistoryTest::past;

TEST_F(KeepHistoryTest, NothingIsLostOrDoneTwiceWhileThePastIsLookedAt) {
    start();
    command(COMMAND_KEEP_HISTORY);
    shell_state.start.keep_disk_journals = true;
    main_disk_offer_journals();
    turn_until_free();
    past = {{0, now()}};
    write_text("a.dsk", std::string(102400, '\x14'));
    write_text("b.dsk", std::string(89600, '\x15'));
    frames(150);
    type("\r");
    main_disk_image_attach(0, "a.dsk");
    frames(3);
    const int64_t before_write = history_last();
    machine_apply(disk_replace, 0, 0, shared_bytes(std::vector<uint8_t>(102400, 0x99)));
    frames(3);
    command(COMMAND_PRINTER);
    type("LPRINT \"ABC\"\r");
    host->dialogs().choices.push_back({{"saved.cas", 0}});
    type("CSAVE\"A\"\r");
    turn_until_free();
    frames(150);
    save_slot(0);
    machine_apply(configure, 2, 1);
    frames(3);
    machine_apply(reset);
    main_disk_image_attach(1, "b.dsk");
    z80_cpu_set_breakpoint(0x0000);
    machine_apply(engine, 1);
    frames(70);
    machine_apply(engine, 0);
    frames(3);
    load_slot(0);
    past[history_last()] = now();
    machine_apply(clean_sound, 1);
    frames(60);
    answer_video_compression("uncompressed");
    video_save_to_avi(false, "film.avi");
    frames(3);
    main_disk_keep_journals();

    const machine_state present = now();
    const int64_t last = history_last();
    const std::string written = files();
    const size_t told = kept_messages().size();
    EXPECT_NE(written.find("ABC"), std::string::npos) << "printed";
    EXPECT_TRUE(std::filesystem::exists("saved.cas"));
    std::vector<int64_t> order;
    for (const auto& moment : past) order.push_back(moment.first);
    std::ranges::shuffle(order, std::minstd_rand(1));
    order.resize(300);
    for (const int64_t frame : order) {
        ASSERT_EQ(history_show(frame), "") << frame;
        ASSERT_EQ(history_position(), frame);
        if (frame != last) main_disk_keep_journals();
        ASSERT_EQ(machine_difference(now(), past[frame]), "") << frame << " of " << last;
    }
    EXPECT_EQ(history_show(last), "");
    EXPECT_EQ(machine_difference(now(), present), "");
    EXPECT_EQ(files(), written);
    EXPECT_EQ(kept_messages().size(), told);
    EXPECT_TRUE(menu_item_text(COMMAND_ATTACH_DISK).ends_with("a.dsk"));

    // To before the disk was written to, where its file has been saved meanwhile.
    host->dialogs().answers = {0};
    command(COMMAND_DETACH_DISK);
    EXPECT_EQ(read_file("a.dsk").front(), 0x99);
    EXPECT_EQ(history_show(before_write), "");
    machine_apply(poke, 0x5000, 0, shared_bytes(std::vector<uint8_t>{1}));
    history_go_on();
    EXPECT_EQ(history_last(), before_write);
    EXPECT_EQ(drive_contents[0].view().front(), 0x14);
    frames(60);
    EXPECT_EQ(history_last(), before_write + 60);
    const machine_state again = now();
    EXPECT_EQ(history_show(before_write + 1), "");
    EXPECT_EQ(machine_difference(now(), past[before_write + 1]), "");
    EXPECT_EQ(history_show(last), "");
    EXPECT_EQ(machine_difference(now(), again), "");
    command(COMMAND_SAVE_VIDEO);
    history_show(before_write);
    host->dialogs().answers = {0, 1}; // save; keep mine
    emu_close();
    EXPECT_TRUE(host->dialogs().answers.empty()) << "asked, since the disk is not as its file";
    EXPECT_EQ(read_file("a.dsk").front(), 0x14);
}

} // namespace
