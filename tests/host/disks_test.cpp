#include "core/frame_driver.h"
#include "host/messages.h"
#include "host/whole_program.h"
#include "media/wd1771.h"
#include "z80/z80.h"

namespace {

constexpr int ATTACH = 40018, DETACH = 40022, DETACH_ALL = 40033, EXIT = -1;
constexpr int YES = 0, NO = 1;
constexpr size_t DISK_SIZE = 102400;
constexpr const char* QUESTION = " has changed. Do you want to save your changes?";

class DisksTest : public WholeProgramTest {
protected:
    void SetUp() override {
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
    void command(int id) { WindowProcedure({Event::Kind::command, id, 0, {}}); }
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
        ASSERT_EQ(disk_img_write_sector(wd1771_disk(drive), 0, 39, 9, sector.data()), 1);
    }
    static bool is_changed(const std::string& path) {
        const std::vector<uint8_t> bytes = read_file(path);
        EXPECT_EQ(bytes.size(), DISK_SIZE) << path;
        EXPECT_EQ(bytes[DISK_SIZE - 257], 0x14);
        return bytes.back() == 0x99;
    }
    /// The drive whose lamp is red after a frame; -1 for none.
    int lit_lamp() {
        machine_run();
        int lit = -1;
        for (const auto& [area, colour] : host->status_bar().fills) {
            const int lamp = (area.left - 90) / 20;
            if ((area.left - 90) % 20 || area.right - area.left != 13) continue;
            if (colour == 0xFF0000) lit = lamp;
            if (colour == 0 && lit == lamp) lit = -1;
        }
        return lit;
    }
    static std::string stored(unsigned drive) {
        return stored_text("Disk" + std::to_string(drive)).value_or("none");
    }
};

TEST_F(DisksTest, TheMenuAttachesAndTheLampShowsTheDrive) {
    const struct {
        const char* path;
        const char* status;
        const char* item; ///< "&" alone would mark an access key
    } cases[] = {
        {"a.dsk", "Disk: 2 side(s), 40 tracks, 10 sectors, 100 kb.", "a.dsk"},
        {"f.cgd", "Disk: 1 side(s), 76 tracks, 9 sectors, 190 kb.", "f.cgd"},
        {"g.dsk", "Disk: 3 side(s), 80 tracks, 18 sectors, 720 kb.", "g.dsk"},
        {"./b & c/e.dsk", "Disk: 2 side(s), 40 tracks, 10 sectors, 100 kb.", "./b && c/e.dsk"}};
    fill("b & c/e.dsk");
    std::string header(194640, '\0');
    header[0] = 76, header[4] = 1, header[8] = 9, header[13] = 1;
    std::ofstream("f.cgd") << header;
    std::ofstream("g.dsk") << std::string(737280, '\0');
    for (unsigned drive = 0; drive < 4; ++drive) {
        SCOPED_TRACE(drive);
        attach(drive, cases[drive].path);
        EXPECT_EQ(host->status_text(3), cases[drive].status);
        EXPECT_EQ(host->window().item_text(ATTACH + int(drive)), text_of(drive, cases[drive].item));
        command(ATTACH + int(drive)); // cancelled
        EXPECT_EQ(text_of(drive), text_of(drive, cases[drive].item));
        EXPECT_TRUE(diskimg_inserted(wd1771_disk(drive)));
    }
    EXPECT_EQ(lit_lamp(), 0) << "a change of disk selects drive 0";
    for (const int drive : {3, 1, 0, 2}) {
        wd1771_write_param_reg(uint8_t(1 << drive));
        EXPECT_EQ(lit_lamp(), drive);
        EXPECT_EQ(lit_lamp(), drive);
        z80_state.t_count += 5098525; // 2300 ms
        EXPECT_EQ(lit_lamp(), -1);
        EXPECT_EQ(host->status_text(1), "") << "the lamps' part has no text";
    }
    emu_close();
}

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

TEST_F(DisksTest, ADiskWithoutItsFolderIsRescued) {
    for (const int way : {DETACH + 1, ATTACH + 1, EXIT}) {
        SCOPED_TRACE(way);
        fill("folder/e.dsk");
        std::filesystem::remove_all("data/rescue");
        attach(1, "folder/e.dsk");
        change(1);
        std::filesystem::remove_all("folder");
        host->dialogs().answers = {YES};
        host->dialogs().messages.clear();
        if (way == ATTACH + 1) host->dialogs().choices.push_back({{"b.dsk", 0}});
        if (way == EXIT) {
            emu_close();
        } else {
            command(way);
        }
        EXPECT_TRUE(is_changed("data/rescue/e.dsk"));
        const std::string told = "folder/e.dsk cannot be written. The disk is in data/rescue/e.dsk";
        EXPECT_EQ(kept_messages().back().line, told);
        EXPECT_EQ(host->dialogs().messages.empty(), way == EXIT);
        EXPECT_TRUE(way != DETACH + 1 || host->status_text(3) == told);
        EXPECT_EQ(text_of(1), text_of(1, way == ATTACH + 1 ? "b.dsk" : "<no disk>"));
    }
}

TEST_F(DisksTest, DroppedDisksGoIntoDriveZero) {
    std::filesystem::rename("b.dsk", "B.CGD");
    z80_state.pc = 0x1234;
    for (const std::string path : {"a.dsk", "B.CGD"}) {
        host->dialogs().answers = {YES};
        WindowProcedure({Event::Kind::drop, 0, 0, path});
        EXPECT_EQ(host->status_text(3), "Autoloaded: " + path);
        EXPECT_EQ(text_of(0), text_of(0, path));
        EXPECT_EQ(wd1771_is_active(), 0);
        change(0);
        EXPECT_EQ(is_changed("a.dsk"), path != "a.dsk") << "asked before the next one";
    }
    EXPECT_EQ(z80_state.pc, 0x1234) << "the machine runs on";
    host->set_key(KEY_CONTROL, true);
    WindowProcedure({Event::Kind::drop, 0, 0, "bad.dsk"});
    host->release_all_keys();
    EXPECT_EQ(z80_state.pc, 0);
    EXPECT_EQ(text_of(0), text_of(0, "<no disk>"));
    emu_close();
}

} // namespace
