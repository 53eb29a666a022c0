#include "disk_machine.h"

#include "cgenie/memory/memory.h"
#include "media/basic/basic_tokens.h"

#include <random>
#include <utility>

namespace {

constexpr size_t ENTRY = DiskMachine::ENTRY;

/// A disk with a program, the same as a text, text in pieces, and machine code.
struct FilledDisk : DiskMachine {
    FilledDisk() : DiskMachine(0, 35, 10) {
        std::string typed = "FORMAT\nY", problem;
        for (int line = 10; line < 70; ++line) // no byte of it begins a record of machine code
            typed += std::to_string(257 * line) + " REM" + std::string(60, 'R') + "\n";
        rows(typed + "SAVE\"A\"\nSAVE\"B\",A\nOPEN\"O\",1,\"C\":OPEN\"O\",2,\"D\"\n");
        for (int i = 0; i < 25; ++i) rows("PRINT#1,\"ONE\",,,,,,,,,,I:PRINT#2,,,,,,,,,,I\n");
        rows("CLOSE\nKILL\"D\"\n");
        DiskBytes code(4092, 0xC9); // RET; records of 128 bytes to 7000
        for (size_t at = 0; at < code.size(); at += 132)
            std::ranges::copy(DiskBytes{1, 0x82, 0, 0x70}, code.begin() + ptrdiff_t(at));
        code.insert(code.end(), {2, 2, 0, 0x70});
        auto disk = disk_mount(wd1771_disk(0), problem);
        EXPECT_EQ(disk_put(*disk, *disk_name("M"), FILE_CODE, code, problem), 1) << problem;
        sound = drive_contents[0].change() = disk->image.image;
    }
    DiskBytes sound;
    const size_t half = sectors / 2 * SECTOR, map = tracks / 2 * 2 * half, entries = map + SECTOR;
};

/// Where an act on a file changed what was not its own; the size of the image if nowhere. Its own
/// are its entry, or one not in use, and its and the free blocks to which no other file leads.
size_t stray(const FilledDisk& disk, const DiskBytes& before, const DiskBytes& after, char name) {
    DiskBytes own(before.size());
    const auto take = [&](size_t block, uint8_t is_own) {
        if (block == 0 || block / 2 == disk.tracks / 2) return;
        own[disk.map + block] = is_own;
        std::fill_n(&own[block * disk.half], disk.half, is_own);
    };
    for (size_t block = 0; block < 2 * disk.tracks; ++block)
        take(block, before[disk.map + block] == 0xFF);
    const std::string wanted = name + std::string(10, ' ');
    size_t file = 0;
    for (const bool others : {false, true}) {
        for (size_t at = disk.entries;; at += ENTRY) {
            const bool in_use = before[at] && before[at] != 0xE5;
            if (!file && in_use && std::equal(wanted.begin(), wanted.end(), &before[at])) file = at;
            if (!in_use || at == file) std::fill_n(&own[at], ENTRY, 1);
            size_t block = in_use && (at != file) == others ? before[at + 12] : 0xFF;
            for (size_t n = 0; n < 99 && block < 2 * disk.tracks; ++n) {
                take(block, !others);
                block = before[disk.map + block];
            }
            if (!before[at]) break;
        }
    }
    size_t at = 0;
    while (at < before.size() && (own[at] || before[at] == after[at])) ++at;
    return at;
}

TEST(Disk, FormatsAndKeepsPrograms) {
    const struct {
        int model;
        size_t tracks, sectors;
    } cases[] = {{0, 35, 10}, {1, 40, 18}, {2, 80, 10}};
    for (const auto& [model, tracks, sectors] : cases) {
        SCOPED_TRACE(tracks);
        DiskMachine disk(model, tracks, sectors);
        EXPECT_EQ(disk.answer("DIR\n"), "?DISK NOT FORMATTED");
        disk.rows("FORMAT :0\nN");
        EXPECT_EQ(*disk.sector(0, 0), 0xE5) << "asked, and not answered with Y";
        disk.rows("FORMAT\nY");
        const std::vector<uint8_t> boot = {
            0,   0xFE, uint8_t(tracks / 2), uint8_t(tracks), uint8_t(sectors), 'T', 'D', 'O',
            'S', '1'};
        EXPECT_TRUE(std::ranges::equal(boot, std::span(disk.sector(0, 0), boot.size())));
        EXPECT_EQ(disk.free_blocks(), 2 * tracks - 3);
        EXPECT_EQ(disk.found(), "");
        disk.rows("10 PRINT\nSAVE\"ONE/BAS\"\n");
        EXPECT_EQ(disk.found(), "ONE/BAS 0 8");
        // A line at 5801: link, number 10, token, 0; then the link that ends the program.
        EXPECT_EQ(disk.contents("ONE     BAS"), std::string("\x07\x58\x0A\x00\xB2\x00\x00\x00", 8));
        EXPECT_EQ(disk.entry("ONE     BAS")[11], 0);
        EXPECT_EQ(disk.free_blocks(), 2 * tracks - 4);
        EXPECT_EQ(disk.answer("NEW\n20 PRINT 7\nMERGE\"ONE/BAS\"\nSAVE\"TWO\",A\nRUN\n"), " 7");
        EXPECT_EQ(disk.contents("TWO     "), "10 PRINT\r20 PRINT 7\r");
        EXPECT_EQ(disk.found(), "ONE/BAS 0 8, TWO 2 20");
        // A line of 10 + 39 * 10 characters.
        std::string jumps = "1 GOTO1", listed = "65000 GOTO65000";
        for (int i = 1; i < 39; ++i) jumps += ":GOTO1", listed += ":GOTO65000";
        disk.rows("NEW\n" + jumps + "\nRENUM65000\n65001DATA\x85,:?\nSAVE\"L\"\nSAVE\"T\",A\n");
        disk.rows("NEW\n65001 REM\nMERGE\"T\"\nSAVE\"M\"\n");
        EXPECT_EQ(disk.contents("T          "), listed + "\r65001 DATA\x85,:PRINT\r");
        EXPECT_EQ(disk.contents("M          "), disk.contents("L          "));
        disk.rows("KILL\"L\"\nKILL\"T\"\nKILL\"M\"\nLOAD\"TWO\"\n");
        EXPECT_EQ(disk.answer("NEW\nNAME\"TWO\"TO\"THREE\"\nRUN\"THREE\"\n"), " 7");
        EXPECT_EQ(disk.answer("30 PRINT 8\nSAVE\"ONE/BAS\"\nNEW\nRUN\"ONE/BAS\"\n"), " 8");
        EXPECT_EQ(disk.found(), "ONE/BAS 0 24, THREE 2 20");
        disk.rows("KILL\"ONE/BAS\"\n");
        EXPECT_EQ(disk.found(), "THREE 2 20");
        disk.rows("KILL\"THREE\"\n");
        EXPECT_EQ(disk.found(), "");
        EXPECT_EQ(disk.free_blocks(), 2 * tracks - 3);
    }
}

TEST(Disk, ReadsAndWritesFilesOfData) {
    DiskMachine disk(0, 35, 10);
    disk.rows("FORMAT\nY");
    std::string written;
    for (int i = 1; i <= 150; ++i) written += " " + std::to_string(i) + " X,Y\r";
    disk.rows("10 OPEN\"O\",1,\"DATA\":OPEN\"O\",2,\"Q\":FOR I=1 TO 150\n"
              "20 PRINT#1,I;\"X,Y\":PRINT#2,CHR$(34);I;\"A,B\";CHR$(34):NEXT:CLOSE\nRUN\n");
    EXPECT_EQ(disk.contents("DATA    "), written);
    const std::string quoted = "Q 2 1542"; // 9, 90 and 51 numbers of 1 to 3 digits, 8 around each
    EXPECT_EQ(disk.found(), "DATA 2 " + std::to_string(written.size()) + ", " + quoted);
    EXPECT_EQ(disk.answer("10 OPEN\"I\",3,\"DATA\":FOR I=1 TO 150:INPUT#3,A,B$,C$\n"
                          "20 IF A<>I OR B$+C$<>\"XY\" THEN PRINT\"BAD\";I;A;B$;C$\n"
                          "30 NEXT:PRINT EOF(3);LOC(3);LOF(3):CLOSE\n"
                          "40 OPEN\"I\",1,\"Q\":FOR I=1 TO 150:INPUT#1,Q$:NEXT:PRINTQ$\nRUN\n"),
              " 150 A,B");
    const auto rows = disk.rows("RUN\n");
    ASSERT_GT(rows.size(), 3U);
    EXPECT_EQ(rows[rows.size() - 4], "-1  5  5");
    disk.rows("NEW\nOPEN\"E\",2,\"DATA\":PRINT#2,\"LAST, LINE\":CLOSE2\n");
    EXPECT_EQ(disk.contents("DATA    "), written + "LAST, LINE\r");
    EXPECT_EQ(disk.found(), "DATA 2 " + std::to_string(written.size() + 11) + ", " + quoted);
    std::string whole; // sectors to their last byte, and on from there
    for (int sectors = 1; sectors <= 11; ++sectors) {
        whole += std::string(254, '*') + "\r" + "\r";
        disk.rows("CLOSE:CLEAR 300:OPEN\"E\",1,\"F\":PRINT#1,STRING$(254,42):PRINT#1,:CLOSE\n");
        EXPECT_EQ(disk.contents("F       "), whole);
        EXPECT_NE(disk.found().find("F 2 " + std::to_string(sectors * 256)), std::string::npos)
            << disk.found();
    }
    EXPECT_EQ(disk.answer("10 OPEN\"I\",1,\"DATA\"\n20 IF NOT EOF(1) THEN LINE INPUT#1,L$:GOTO 20\n"
                          "30 PRINT L$:INPUT#1,L$\nRUN\n"),
              "?END OF FILE IN 30");
}

TEST(Disk, TellsItsErrorsInWords) {
    DiskMachine disk(0, 35, 10);
    disk.rows("FORMAT\nY10 REM\nSAVE\"P\"\nOPEN\"O\",1,\"D\":CLOSE\n");
    const struct {
        const char *typed, *answer;
    } cases[] = {
        {"LOAD\"NONE\"\n", "?NOT FOUND"},
        {"OPEN\"O\",1,\"P\"\n", "?FILE EXISTS"},
        {"SAVE\"D\"\n", "?FILE EXISTS"},
        {"NAME\"D\" AS \"P\"\n", "?FILE EXISTS"},
        {"DIR 3\n", "?NO DISK"},
        {"LOAD\"TOOLONGNAME\"\n", "?BAD FILE NAME"},
        {"OPEN\"I\",4,\"D\"\n", "?BAD FILE NUMBER"},
        {"PRINT#2,1\n", "?FILE NOT OPEN"},
        {"OPEN\"O\",1,\"D\":KILL\"D\"\n", "?FILE OPEN"},
        {"CLOSE:OPEN\"I\",1,\"D\":PRINT#1,1\n", "?BAD FILE MODE"},
        {"CLOSE:OPEN\"O\",1,\"D\":PRINT#1,1/0\n", "?DIVISION BY ZERO"},
        {"CLOSE:OPEN\"R\",1,\"D\":FIELD 1,200 AS A$,57 AS B$\n", "?FIELD OVERFLOW"},
        {"GET 1\n", "?END OF FILE"},
        {"PUT 1,0\n", "?BAD RECORD NUMBER"},
        {"PUT 1,331\n", "?DISK FULL"}, // a sector more than there are
        {"PRINT LOF(1)\n", " 0"},
        {"FIELD 1,9 AS A\n", "?TYPE MISMATCH"},
        {"10 CLOSE:OPEN\"R\",1,\"R\",5:FIELD 1,5 AS A$(9):LSET A$(9)=\"FIELD\":PUT 1:B$=A$(9)\n"
         "20 RSET A$(9)=\"\":FOR I=1 TO 50:C$=\"A\"+STR$(I):NEXT:GET 1,1:PRINT A$(9);B$\n30 "
         "CLOSE:KILL\"R\"\n"
         "RUN\n",
         "FIELDFIELD"},
        {"CLOSE:OPEN\"R\",1,\"D\",257\n", "?ILLEGAL FUNCTION CALL"},
        {"DEF FNA(X)=X\n", "?ILLEGAL DIRECT"},
        {"PRINT FNA(1)\n", "?UNDEFINED FUNCTION"},
        {"PRINT &8\n", "?SYNTAX ERROR"},
        {"PRINT USR4(1)\n", "?ILLEGAL FUNCTION CALL"},
        {"A$=\"AB\":MID$(A$,3)=\"C\"\n", "?ILLEGAL FUNCTION CALL"},
        {"ERROR 99\n", "?UNPRINTABLE ERROR"},
        {"CLOSE:NEW\n10 ON ERROR GOTO 20:KILL\"NONE\"\n20 PRINT ERR;ERL:END\nRUN\n", " 58  10"},
        {"NEW\n10 CLEAR 999:OPEN\"O\",1,\"D\"\n20 PRINT#1,STRING$(255,65):GOTO 20\nRUN\n",
         "?DISK FULL IN 20"},
        {"SAVE\"MORE\"\n", "?DISK FULL"},
        {"KILL\"D\":PRINT\"GONE\"\n", "GONE"},
        {"DIR=3:PRINT DIR\n", " 3"},
    };
    for (const auto& [typed, answer] : cases) EXPECT_EQ(disk.answer(typed), answer) << typed;
    EXPECT_EQ(disk.free_blocks(), 66U);
    EXPECT_EQ(disk.found(), "P 0 8");
    wd1771_write_protect(0, true);
    for (const char* typed : {"SAVE\"P\"\n", "KILL\"P\"\n", "FORMAT\nY"})
        EXPECT_EQ(disk.answer(typed), "?WRITE PROTECTED") << typed;
}

/// Images of the host's making, and what FORMAT makes of the same without a directory.
TEST(Disk, TakesImagesOfTheHost) {
    const struct {
        disk_layout layout;
        unsigned tracks, sectors;
    } cases[] = {{DISK_PLAIN, 35, 10}, {DISK_PLAIN, 68, 10}, {DISK_PLAIN, 80, 10},
                 {DISK_PLAIN, 35, 18}, {DISK_PLAIN, 80, 18}, {DISK_JV3, 40, 10},
                 {DISK_JV3, 80, 10},   {DISK_FIXED, 76, 10}};
    std::string listing, problem;
    for (int i = 1; i <= 300; ++i)
        listing += std::to_string(i) + " A=A+" + std::to_string(i) + "\n";
    listing += "999 PRINT A\n"; // 300 * 301 / 2
    BasicProblem basic;
    DiskBytes program = *basic_encode(listing, basic);
    program.erase(program.begin());
    for (const auto& [layout, tracks, sectors] : cases) {
        SCOPED_TRACE(std::to_string(layout) + ": " + std::to_string(tracks) + " x " +
                     std::to_string(sectors));
        auto image = disk_blank(layout, tracks, sectors, problem);
        ASSERT_TRUE(image) << problem;
        DiskMachine disk(0, tracks, sectors, image->image);
        ASSERT_EQ(disk_format(*image, problem), 1) << problem;
        disk.rows("FORMAT\nY");
        EXPECT_EQ(wd1771_disk(0).image, image->image);

        auto made = disk_mount(std::move(*image), problem);
        ASSERT_TRUE(made) << problem;
        const DiskBytes data = {'4', '2', '\r'};
        ASSERT_EQ(disk_put(*made, *disk_name("data.txt"), FILE_DATA, data, problem), 1);
        ASSERT_EQ(disk_put(*made, *disk_name("sum.bas"), FILE_PROGRAM, program, problem), 1);
        disk.insert(made->image.image);
        std::string dir;
        for (const std::string& row : disk.rows("DIR\n")) dir += row + "\n";
        EXPECT_NE(dir.find("DATA    /TXT T   1  SUM     /BAS B"), std::string::npos) << dir;
        EXPECT_EQ(disk.answer("LOAD\"SUM/BAS\"\nRUN\n"), " 45150");
        EXPECT_EQ(disk.answer("1000 OPEN\"I\",1,\"DATA/TXT\":INPUT#1,B:PRINT B\nRUN\n"), " 42");
        disk.rows("SAVE\"BACK\"\nKILL\"SUM/BAS\"\n");
        disk.take_out_and_back();
        EXPECT_EQ(disk.answer("RUN\"BACK\"\n"), " 42");
        const auto back = disk_mount(wd1771_disk(0), problem);
        ASSERT_TRUE(back) << problem;
        EXPECT_TRUE(disk_check(*back).empty());
        DiskBytes file = disk_contents(*back, *disk_find(*back, "back")).value_or(DiskBytes());
        file.insert(file.begin(), 0xFF);
        EXPECT_EQ(basic_decode(file, basic),
                  listing + "1000 OPEN\"I\",1,\"DATA/TXT\":INPUT#1,B:PRINT B\n");
    }
}

TEST(Disk, EveryActEndsAndKeepsToItsFileOnDamagedDisks) {
    FilledDisk disk;
    const std::string full = ",,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,:CLOSE";
    const std::string acts[] = {
        "DIR",
        "LOAD\"#\"",
        "RUN\"#\"",
        "MERGE\"#\"",
        "NEW\n1 OPEN\"I\",3,\"#\":PRINT LOF(3)\n2 IF NOT EOF(3)THEN INPUT#3,L$:GOTO 2\nRUN",
        "SAVE\"#\"",
        "SAVE\"#\",A",
        "KILL\"#\"",
        "NAME\"#\"TO\"Z\"",
        "OPEN\"O\",2,\"#\":PRINT#2" + full,
        "OPEN\"E\",1,\"#\":PRINT#1" + full,
        "OPEN\"R\",1,\"#\",99:PUT 1,50:CLOSE"};
    constexpr size_t FIRST_TO_WRITE = 5;
    std::mt19937 random(7);
    const auto any = [&](size_t count) { return size_t(random() % count); };
    int written = 0, refused = 0;
    DiskBytes& drive = drive_contents[0].change();
    for (int damage = 0; damage < 200; ++damage) {
        const bool write_protected = damage % 10 == 9;
        drive = disk.sound;
        wd1771_write_protect(0, write_protected);
        std::string told;
        for (size_t count = 1 + any(3); count > 0; --count) {
            const size_t places[] = {any(10), disk.map + any(12), disk.map + any(70),
                                     disk.entries + any(96), disk.entries + any(6) * ENTRY + 12};
            const size_t bytes[] = {any(256), any(12), any(70), 0xFF, 0xFE, 18, 0xC0 + any(7)};
            const size_t place = places[any(std::size(places))];
            drive[place] = uint8_t(bytes[any(std::size(bytes))]);
            told += std::to_string(place) + "=" + std::to_string(drive[place]) + " ";
        }
        for (int n = 0; n < 12; ++n) {
            const size_t act = any(std::size(acts));
            const char name = "ABCMNZ"[any(6)];
            std::string text = acts[act] + "\n";
            if (const size_t at = text.find("\"#\""); at < text.size()) text[at + 1] = name;
            told += text;
            const DiskBytes before = drive;
            const std::string answer = disk.answer(text);
            ASSERT_EQ(stray(disk, before, drive, name), before.size()) << told << answer;
            const bool changed = drive != before;
            ASSERT_FALSE(changed && (act < FIRST_TO_WRITE || write_protected)) << told;
            written += changed;
            refused += answer == "?DISK DAMAGED";
        }
    }
    EXPECT_GT(written, 200);
    EXPECT_GT(refused, 300);
}

TEST(Disk, CirclesAndBreakEndEveryAct) {
    FilledDisk disk;
    DiskBytes& drive = drive_contents[0].change();
    for (const char* name : {"A", "B", "C", "M"})
        drive[disk.map + disk.entry(name)[12]] = disk.entry(name)[12];
    const DiskBytes circles = drive;
    for (const char* act :
         {"LOAD\"A\"\n", "LOAD\"B\"\n", "LOAD\"M\"\n", "MERGE\"A\"\n", "MERGE\"B\"\n",
          "OPEN\"E\",1,\"C\"\n", "SAVE\"A\"\n", "KILL\"B\"\n", "OPEN\"I\",2,\"C\":PRINT LOF(2)\n"})
        EXPECT_EQ(disk.answer(act), "?DISK DAMAGED") << act;
    EXPECT_TRUE(drive == circles);
    for (const size_t place : {2, 3, 4}) { // of the boot sector
        drive = disk.sound;
        ++drive[place];
        EXPECT_EQ(disk.answer("LOAD\"A\"\n"), "?DISK DAMAGED") << place;
    }

    const std::string others = "C 2 3725, M 1 4096", all = "A 0 3962, B 2 4171, " + others;
    for (const std::string act :
         {"LOAD\"A\"\n", "LOAD\"B\"\n", "RUN\"M\"\n", "MERGE\"B\"\n", "OPEN\"E\",1,\"C\":PRINT\n",
          "SAVE\"N\"\n", "SAVE\"B\",A\n", "FORMAT\nY"}) {
        int frames = 3000;
        for (const bool pressed : {false, true}) {
            disk.rows("CLOSE\n");
            drive = disk.sound;
            disk.rows("LOAD\"A\"\n");
            EXPECT_NE(disk.machine.type(act, frames), pressed) << act;
            frames = disk.machine.frames() * 2 / 5;
        }
        disk.machine.platform().set_key(KEY_END, true); // BREAK
        EXPECT_TRUE(disk.machine.type("", 30)) << act;
        disk.machine.platform().release_all_keys();
        const auto rows = disk.machine.screen();
        EXPECT_EQ(rows[rows.size() - 3], "BREAK") << act;
        EXPECT_FALSE(act[0] == 'L' && memory[0x5802]) << act << "left a program in pieces";
        EXPECT_EQ(disk.found(), act[0] == 'F'            ? "not a disk of the disk ROM"
                                : act == "SAVE\"B\",A\n" ? "A 0 3962, " + others
                                                         : all);
        EXPECT_EQ(disk.answer("PRINT#1,1\n"), "?FILE NOT OPEN") << act;
    }
}

TEST(Disk, NoFileComesToAnotherDisk) {
    FilledDisk disk;
    DiskBytes& drive = drive_contents[0].change();
    disk.rows("FORMAT\nY");
    const DiskBytes filled = disk.sound, empty = drive;
    DiskBytes fuller = filled;
    fuller[disk.map + 69] = 0xC1;
    const std::string output = "OPEN\"O\",1,\"C\":PRINT#1,1", extend = "OPEN\"E\",1,\"C\"";
    const struct {
        const DiskBytes &opened, &changed;
        std::string open, act;
    } cases[] = {
        {filled, empty, output, "CLOSE"},
        {empty, empty, output, "CLOSE"}, // as it was before OPEN
        {filled, fuller, extend + ":PRINT#1,1", "SAVE\"N\""},
        {filled, filled, output + ",,,,,,,,,,,,,,,\"123456789012345678901234567890\"", "CLOSE"},
        {filled, empty, extend, "PRINT#1,,,,,,,,,,,,,,,,,,,,,,,,,,"},
        {filled, empty, "OPEN\"I\",1,\"C\"", "1 INPUT#1,A$\nGOTO 1"},
        {filled, empty, "OPEN\"R\",1,\"C\"", "GET 1"},
        {filled, empty, "OPEN\"R\",1,\"C\"", "PUT 1,2"},
        {filled, filled, "OPEN\"R\",1,\"C\":PUT 1,99", "PUT 1,2"}};
    for (const auto& [opened, changed, open, act] : cases) {
        drive = opened;
        disk.rows("NEW\n" + open + "\n");
        drive = changed;
        EXPECT_EQ(disk.answer(act + "\n").find("?DISK CHANGED"), 0U) << open << act;
        EXPECT_EQ(disk.answer("PRINT#1,1\n")[0], '?') << open << act;
        disk.rows("CLOSE\n");
        EXPECT_TRUE(drive == changed) << open << act;
    }
    // The same disk again, with another one between; files on disks of two sizes, the second with
    // blocks that the first has not.
    drive = filled;
    std::string problem;
    auto large = disk_blank(DISK_PLAIN, 80, 18, problem);
    ASSERT_EQ(disk_format(*large, problem), 1);
    auto made = *disk_mount(std::move(*large), problem);
    ASSERT_EQ(disk_put(made, *disk_name("BIG"), FILE_DATA, DiskBytes(75 * 2304), problem), 1);
    wd1771_attach(1, std::move(made.image.image), false);
    disk.rows("CLEAR 500:OPEN\"O\",1,\"N:1\":OPEN\"E\",2,\"C\":OPEN\"O\",3,\"D\"\n");
    for (int i = 0; i < 20; ++i) {
        disk.rows("PRINT#1,STRING$(254,49):PRINT#2,STRING$(254,50)\n");
        const DiskBytes own = std::exchange(drive, fuller);
        disk.rows("KILL\"B\"\n");
        drive = own;
    }
    disk.rows("KILL\"A\"\nPRINT#3,3:CLOSE\n");
    EXPECT_EQ(disk.found(), "B 2 4171, C 2 8825, M 1 4096, D 2 4");
    const auto second = disk_mount(wd1771_disk(1), problem);
    EXPECT_TRUE(disk_check(*second).empty());
    EXPECT_EQ(disk_find(*second, "N")->bytes, 20 * 255U);
    diskimg_detach(1, false);
}

TEST(Disk, StartsABootableDisk) {
    DiskMachine disk(0, 40, 10);
    disk.rows("FORMAT\nY");
    uint8_t* const boot = drive_contents[0].change().data();
    const uint8_t code[] = {0x3E, 0x2A, 0x32, 0x01, 0x44, 0xC9}; // LD A,2A / LD (4401),A / RET
    std::ranges::copy(code, boot + 0x10);
    disk.machine.boot(0);
    EXPECT_NE(memory[0x5710], 0x3E);
    boot[0] = 1;
    disk.machine.boot(0);
    EXPECT_TRUE(std::ranges::equal(code, std::span(memory + 0x5710, std::size(code))));
    EXPECT_EQ(memory[0x4401], 0x2A);

    disk.machine.platform().set_key(KEY_END, true); // BREAK, until MEM SIZE? is asked
    machine_change_cfg(machine_cfg[0], 1);
    ASSERT_TRUE(disk.machine.type("", 200));
    disk.machine.platform().release_all_keys();
    EXPECT_EQ(disk.machine.screen()[0], "MEM SIZE?");
    ASSERT_TRUE(disk.machine.type("\n"));
    EXPECT_NE(memory[0x4401], 0x2A) << "held BREAK keeps the disk from starting";
}

} // namespace
