#include "media/disk_system.h"
#include "media/files/drive_files.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <set>
#include <span>

namespace {

/// The program, run in a folder of its own.
class DiskProgram : public testing::Test {
protected:
    int run(const std::string& arguments) {
        const std::string line = "cd '" + folder.path().string() + "' && '" DISK_PROGRAM "' " +
                                 arguments + " >out 2>err";
        return std::system(line.c_str()) / 256;
    }
    /// What the program puts out, standard error behind standard output.
    std::string told(const std::string& arguments) {
        run(arguments);
        return read("out") + read("err");
    }
    std::string read(const std::string& name) const { return read_text(folder / name); }
    void write(const std::string& name, const std::string& text) const {
        write_text(folder / name, text);
    }
    const Folder folder;
};

TEST_F(DiskProgram, MakesTheImagesThatTheEmulatorKnows) {
    const struct {
        const char* options;
        size_t size;                ///< 0: refused
        unsigned tracks, formatted; ///< 0: no directory
    } cases[] = {
        {"", 102400, 40, 40},
        {"--tracks 35", 89600, 35, 35},
        {"--tracks 68", 174080, 68, 40},
        {"--tracks=80", 204800, 80, 80},
        {"--tracks 35 --sectors 18", 161280, 35, 35},
        {"--sectors 18", 184320, 40, 40},
        {"--tracks 80 --sectors 18", 368640, 80, 80},
        {"--layout jv3 --tracks 35", 98304, 35, 35},
        {"--layout jv3", 111104, 40, 40},
        {"--layout jv3 --tracks 80", 213504, 80, 80},
        {"--layout cgd", 194640, 76, 40},
        {"--tracks 18 --blank", 46080, 18, 0},
        {"--blank", 102400, 40, 0},
        {"--tracks 18", 0, 0, 0},               // FORMAT fails, too
        {"--tracks 36", 0, 0, 0},               // taken for 20 tracks of 18
        {"--tracks 76", 0, 0, 0},               // taken for a geometry header
        {"--tracks 82 --sectors 18", 0, 0, 0},  // taken for two sides
        {"--layout jv3 --sectors 18", 0, 0, 0}, // always 10
        {"--layout cgd --tracks 40", 0, 0, 0},  // not a size of that layout
    };
    const std::string file = (folder / "disk.dsk").string();
    for (const auto& [options, size, tracks, formatted] : cases) {
        SCOPED_TRACE(options);
        std::filesystem::remove(file);
        ASSERT_EQ(run(std::string("create disk.dsk ") + options), size ? 0 : 1) << read("err");
        ASSERT_EQ(std::filesystem::exists(file), size != 0);
        if (!size) continue;
        ASSERT_EQ(diskimg_attach(0, file), 1);
        const disk_image disk = wd1771_disk(0);
        EXPECT_EQ(disk.size, size);
        EXPECT_EQ(disk.tracks, tracks);
        uint8_t boot[256];
        ASSERT_EQ(disk_img_read_sector(disk, 0, tracks - 1, disk.sectors - 1, boot), 1);
        ASSERT_EQ(disk_img_read_sector(disk, 0, 0, 0, boot), 1);
        const uint8_t T = uint8_t(formatted), D = T / 2, S = uint8_t(disk.sectors);
        const DiskBytes system = {0, 0xFE, D, T, S, 'T', 'D', 'O', 'S', '1', 0};
        const DiskBytes none(system.size(), 0xE5);
        EXPECT_TRUE(std::ranges::equal(std::span(boot, system.size()), T ? system : none));
        EXPECT_EQ(run("check disk.dsk"), T ? 0 : 1);
    }
    EXPECT_EQ(run("create out"), 1) << "is there";
    EXPECT_EQ(run("create --force disk.dsk"), 0);
    EXPECT_EQ(run("create --force ."), 1);
}

TEST_F(DiskProgram, BringsFilesToTheDiskAndBack) {
    ASSERT_EQ(run("create d"), 0);
    const std::string listing = "10 PRINT\"HI\"\n", code("\x01\x04\x00\x70\x3E\x2A", 6);
    const std::string tokens("\xFF\x0B\x58\x0A\x00\xB2\"HI\"\0\0\0", 13);
    write("hello.bas", listing);
    write("Notes.Txt", "one\ntwo\r\nthree\r");
    write("game.cmd", code);
    write("empty", "");
    for (const char* file : {"hello.bas", "Notes.Txt", "game.cmd", "empty"})
        EXPECT_EQ(run(std::string("put d ") + file), 0) << read("err");
    EXPECT_EQ(told("put d Notes.Txt raw/x --type data"), "");
    EXPECT_EQ(told("list d"), "HELLO/BAS     basic      12    1\n"
                              "NOTES/TXT     data       14    1\n"
                              "GAME/CMD      code        6    1\n"
                              "EMPTY         data        0    0\n"
                              "RAW/X         data       15    1\n"
                              "93440 bytes in 73 blocks free\n");
    const struct {
        const char* arguments;
        std::string out;
    } got[] = {{"HELLO/BAS -", tokens},
               {"hello.bas - --text", listing},
               {"notes/txt -", "one\rtwo\rthree\r"},
               {"notes.txt - --text", "one\ntwo\nthree\n"},
               {"Game.Cmd -", code},
               {"EMPTY -", ""},
               {"raw/x -", "one\ntwo\r\nthree\r"}};
    for (const auto& [arguments, out] : got) {
        EXPECT_EQ(run(std::string("get d ") + arguments), 0) << arguments << read("err");
        EXPECT_EQ(read("out"), out) << arguments;
    }
    EXPECT_EQ(run("put - 2>/dev/null"), 2);
    EXPECT_EQ(run("put d - again/bas < hello.bas"), 0) << read("err");
    EXPECT_EQ(run("get d again.bas"), 0);
    EXPECT_EQ(read("again.bas"), tokens);
    EXPECT_EQ(run("put --force d again.bas hello/bas"), 0);
    EXPECT_EQ(run("rename d hello.bas 'a\\x81'"), 0) << read("err");
    EXPECT_EQ(run("delete d again/bas"), 0);
    EXPECT_EQ(run("check d"), 0);
    EXPECT_EQ(told("list d").substr(0, 41), "A\\x81         basic      12    1\nNOTES/TX");

    write("long", std::string(73 * 1280 + 1, 'x'));
    write("bad.bas", "10 A\nB\n");
    const std::string before = read("d");
    const struct {
        const char* arguments;
        int status;
        const char* error; ///< without the program's name
    } refused[] = {
        {"put d game.cmd", 1, "d: GAME/CMD exists; --force replaces it"},
        {"put d long", 1, "d: the disk is full"},
        {"put d bad.bas", 1, "bad.bas:2: no line number"},
        {"put d missing", 1, "cannot read missing"},
        {"put d long waytoolong", 2, "\"waytoolong\" is no name for a file of the disk"},
        {"put d long 'A B'", 2, "\"A B\" is no name for a file of the disk"},
        {"put d long /BAS", 2, "\"/BAS\" is no name for a file of the disk"},
        {"put d long A:1", 2, "\"A:1\" is no name for a file of the disk"},
        {"get d none", 1, "d: no file none"},
        {"get d raw/x long", 1, "long exists; --force replaces it"},
        {"get d raw/x /dev/full", 1, "cannot write /dev/full: No space left on device"},
        {"get d game/cmd - --text", 1, "d: GAME/CMD: no text"},
        {"delete d none", 1, "d: no file none"},
        {"rename d raw/x game/cmd", 1, "d: GAME/CMD is there already"},
        {"list long", 1, "long: not the size or the header of a disk image"},
        {"list missing", 1, "cannot read missing"},
        {"create e --sectors 11", 2, "bad value for --sectors: 11"},
        {"create e --layout xyz", 2, "bad value for --layout: xyz"},
    };
    for (const auto& [arguments, status, error] : refused) {
        EXPECT_EQ(run(arguments), status) << arguments;
        EXPECT_EQ(read("err"), std::string("tarvelin-disk: ") + error + "\n") << arguments;
    }
    for (const char* wrong : {"", "list", "list d d", "explode d", "list --force d", "--nothing"})
        EXPECT_EQ(run(wrong), 2) << wrong;
    EXPECT_EQ(read("d"), before);
    EXPECT_EQ(run("get d raw/x /dev/null") + run("--help"), 0);
}

/// A disk with files of one block and of more.
DiskSystem busy_disk(std::string& problem) {
    auto image = disk_blank(DISK_PLAIN, 35, 10, problem);
    EXPECT_EQ(disk_format(*image, problem), 1);
    auto disk = *disk_mount(std::move(*image), problem);
    const struct {
        const char* name;
        size_t length;
    } files[] = {{"A", 1}, {"B/TXT", 1281}, {"C", 4000}, {"D", 0}, {"E", 1280}, {"F", 256}};
    for (const auto& [name, length] : files)
        EXPECT_EQ(disk_put(disk, *disk_name(name), FILE_DATA, DiskBytes(length, name[0]), problem),
                  1);
    EXPECT_EQ(disk_delete(disk, *disk_find(disk, "A"), problem), 1);
    return disk;
}

TEST(DiskSystem, FillsTheDirectoryAndTheDiskToTheLast) {
    std::string problem;
    auto image = disk_blank(DISK_PLAIN, 35, 10, problem);
    ASSERT_EQ(disk_format(*image, problem), 1);
    auto disk = *disk_mount(std::move(*image), problem);
    EXPECT_EQ(disk_put(disk, *disk_name("BIG"), FILE_DATA, DiskBytes(67 * 1280, 7), problem), 1);
    EXPECT_EQ(disk_free_blocks(disk), 0U);
    for (int i = 1; i < 144; ++i)
        ASSERT_EQ(disk_put(disk, *disk_name(std::to_string(i)), FILE_DATA, {}, problem), 1);
    EXPECT_EQ(disk_put(disk, *disk_name("MORE"), FILE_DATA, {}, problem), 0);
    EXPECT_EQ(problem, "the directory is full");
    EXPECT_EQ(disk_put(disk, *disk_name("7"), FILE_DATA, {1}, problem), 0);
    EXPECT_EQ(problem, "the disk is full");
    EXPECT_EQ(disk_put(disk, *disk_name("BIG"), FILE_CODE, DiskBytes(66 * 1280, 7), problem), 1);
    EXPECT_EQ(disk_put(disk, *disk_name("7"), FILE_DATA, {1}, problem), 1);
    EXPECT_TRUE(disk_check(disk).empty());
    EXPECT_EQ(disk_files(disk).size(), 144U);
}

TEST(DiskSystem, NamesTheFaults) {
    std::string problem;
    const DiskSystem sound = busy_disk(problem);
    const size_t boot = 0, map = 17 * 2560,
                 entries = map + 256; // A deleted, B 2-3, C 4-7, E 8, F 9
    const struct {
        std::vector<std::pair<size_t, uint8_t>> bytes;
        const char* fault;
    } cases[] = {
        {{{boot + 3, 34}}, "the boot sector has 34 tracks"},
        {{{map, 0xFF}}, "block 0 of the system is not reserved"},
        {{{map + 35, 0xFF}}, "block 35 of the system is not reserved"},
        {{{map + 70, 0}}, "the map goes on behind the last block, at 70"},
        {{{map + 50, 70}}, "block 50 has a link to nowhere"},
        {{{map + 50, 0xC6}}, "block 50 has a link to nowhere"},
        {{{map + 50, 0xC5}}, "block 50 belongs to no file"},
        {{{map + 7, 4}}, "C has a chain of blocks that does not end"},
        {{{map + 7, 4}}, "C has block 4 twice"},
        {{{map + 5, 8}}, "E has block 8, which is one of C"},
        {{{map + 3, 0xFF}}, "B/TXT has a chain of blocks that does not end"},
        {{{entries + 44, 0xA0}}, "C has a chain of blocks that does not end"},
        {{{entries + 61, 1}}, "D is empty, and has a length"},
        {{{entries + 16, 'b'}}, "b/TXT is no name of a file"},
        {{{entries + 32, 'E'}}, "E is there twice"},
        {{{entries + 43, 3}}, "C has the type 3"},
        {{{entries + 47, 9}}, "C has an entry that does not end with zeros"},
        {{{entries + 16 * 9, 'X'}}, "entry 9 stands behind the end of the directory"},
    };
    EXPECT_TRUE(disk_check(sound).empty());
    for (const auto& [bytes, fault] : cases) {
        disk_image image = sound.image;
        for (const auto& [place, byte] : bytes) image.image[place] = byte;
        const auto disk = disk_mount(std::move(image), problem);
        ASSERT_TRUE(disk) << fault << ": " << problem;
        std::string all;
        for (const DiskFault& each : disk_check(*disk)) all += each.text + "\n";
        EXPECT_NE(all.find(std::string(fault) + "\n"), std::string::npos) << fault << "\n" << all;
    }
}

/// Whatever a byte of the system is: everything ends, and what is written to a disk that passes
/// for sound leaves it sound and the other files as they are.
TEST(DiskSystem, OutlivesEveryFaultyByte) {
    std::string problem;
    const DiskSystem sound = busy_disk(problem);
    std::vector<size_t> places;
    for (size_t i = 0; i < 256; ++i) places.push_back(i);
    for (size_t i = 0; i < 2560; ++i) places.push_back(17 * 2560 + i);
    const auto harmful = [](const DiskSystem& disk) {
        return std::ranges::any_of(disk_check(disk), &DiskFault::harmful);
    };
    unsigned written = 0, refused = 0;
    for (const size_t place : places) {
        const uint8_t old = sound.image.image[place];
        std::set<uint8_t> values = {0, 2, 7, uint8_t(old ^ 1), 0x22, 0xC3, 0xE5, 0xFF};
        if (place > 17 * 2560 + 512) values = {0x22, 0xE5}; // no file there
        for (const uint8_t value : values) {
            disk_image image = sound.image;
            image.image[place] = value;
            auto disk = disk_mount(std::move(image), problem);
            if (!disk) continue;
            const auto before = disk_files(*disk);
            std::vector<std::optional<DiskBytes>> contents;
            for (const DiskFile& file : before) contents.push_back(disk_contents(*disk, file));
            const bool faulty = harmful(*disk);
            const int put =
                disk_put(*disk, *disk_name("NEW"), FILE_CODE, DiskBytes(3000, 1), problem);
            const int renamed =
                before.empty() ? put : disk_rename(*disk, before[0], *disk_name("Z"), problem);
            const int gone = before.size() < 2 ? put : disk_delete(*disk, before[1], problem);
            ASSERT_EQ(put, !faulty) << place << " " << int(value) << problem;
            ASSERT_EQ(renamed + gone, 2 * put) << place << " " << int(value) << problem;
            ASSERT_EQ(harmful(*disk), faulty) << place << " " << int(value);
            (faulty ? refused : written) += 1;
            if (faulty) continue;
            for (size_t i = 2; i < before.size(); ++i) {
                const auto now = disk_find(*disk, disk_name_text(before[i].name));
                ASSERT_TRUE(now && disk_contents(*disk, *now) == contents[i]) << place;
            }
        }
    }
    EXPECT_GT(written, 1000U);
    EXPECT_GT(refused, 500U);
}

TEST(DiskSystem, OutlivesAFaultySectorTable) {
    std::string problem;
    auto image = disk_blank(DISK_JV3, 35, 10, problem);
    ASSERT_EQ(disk_format(*image, problem), 1);
    ASSERT_TRUE(disk_mount(*image, problem));
    for (size_t place = 0; place < 8704; place += place < 1050 ? 1 : 99) {
        for (const int value : {0, 0xFF}) {
            DiskBytes bytes = image->image;
            bytes[place] = uint8_t(value);
            auto changed = disk_image_of(std::move(bytes), problem);
            auto disk = changed ? disk_mount(std::move(*changed), problem) : std::nullopt;
            if (disk) disk_put(*disk, *disk_name("X"), FILE_DATA, DiskBytes(9999), problem);
        }
    }
}

} // namespace
