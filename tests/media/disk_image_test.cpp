#include "media/files/drive_files.h"

#include "files/whole_file.h"
#include "platform/headless/headless.h"
#include "support/fake_host.h"
#include "support/posix.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <array>

namespace fs = std::filesystem;

namespace {

using Bytes = std::vector<uint8_t>;

class DiskImage : public testing::Test {
protected:
    DiskImage() {
        options_.data_directory = (folder_ / "data").string();
        host_ = std::make_unique<HeadlessPlatform>(options_);
        install_platform(*host_);
        testing::internal::CaptureStderr();
    }
    int read(uint32_t track, uint32_t number) {
        return disk_img_read_sector(disk_, drive_contents[0].view(), 0, track, number,
                                    sector_.data());
    }
    int write(uint32_t track, uint32_t number) {
        return disk_img_write_sector(disk_, drive_contents[0].change(), 0, track, number,
                                     sector_.data());
    }
    ~DiskImage() override { testing::internal::GetCapturedStderr(); }
    std::string write(const Bytes& bytes, const char* name = "a.dsk") {
        write_file(folder_ / name, bytes);
        return folder_ / name;
    }

    Folder folder_;
    HeadlessOptions options_;
    std::unique_ptr<HeadlessPlatform> host_;
    disk_record& disk_ = wd1771.disks[0];
    std::array<uint8_t, LARGEST_SECTOR> sector_ = {};
};

/// A plain image whose sectors begin with their number, low byte first; the directory is on 20.
Bytes plain(size_t size) {
    Bytes bytes(size, 0);
    for (size_t n = 0; n * 256 + 1 < size; ++n) {
        bytes[n * 256] = uint8_t(n);
        bytes[n * 256 + 1] = uint8_t(n >> 8);
    }
    bytes[2] = 20;
    return bytes;
}

/// An image with sector headers; data of entry n begin with n. Tracks stand in falling order.
Bytes with_headers(size_t size, unsigned tracks) {
    Bytes bytes(size, 0xFF);
    for (unsigned n = 0; n < tracks * 10; ++n) {
        bytes[n * 3] = uint8_t(tracks - 1 - n / 10);
        bytes[n * 3 + 1] = uint8_t(n % 10);
        if (8704 + n * 256 + 3 > size) break;
        bytes[8704 + n * 256] = uint8_t(n);
        bytes[8704 + n * 256 + 2] = 17;
    }
    return bytes;
}

Bytes with_geometry(uint32_t tracks, uint32_t sides, uint32_t sectors, uint32_t bytes_each) {
    Bytes bytes = plain(194640);
    const uint32_t values[] = {tracks, sides, sectors, bytes_each};
    for (unsigned n = 0; n < 16; ++n) bytes[n] = uint8_t(values[n / 4] >> (n % 4 * 8));
    return bytes;
}

Bytes shortened(Bytes bytes) {
    bytes.resize(bytes.size() - 80);
    return bytes;
}

TEST_F(DiskImage, GeometryFollowsFromSizeAndHeader) {
    const struct {
        const char* name;
        Bytes bytes;
        unsigned side_value, tracks, sectors, bytes_each, directory;
        bool accepted = true;
    } cases[] = {
        {"35 tracks", plain(89600), 1, 35, 10, 256, 20},
        {"18 tracks", plain(46080), 1, 18, 10, 256, 20},
        {"40 tracks", plain(102400), 1, 40, 10, 256, 20},
        {"68 tracks", plain(174080), 1, 68, 10, 256, 20},
        {"80 tracks", plain(204800), 1, 80, 10, 256, 20},
        {"80 tracks, cut", plain(200448), 1, 80, 10, 256, 20},
        {"headers, 35", with_headers(98304, 35), 1, 35, 10, 256, 17},
        {"headers, 40", with_headers(111104, 40), 1, 40, 10, 256, 17},
        {"headers, 80", with_headers(213504, 80), 1, 80, 10, 256, 17},
        {"headers, large", with_headers(375296, 80), 1, 80, 10, 256, 17},
        {"headers, no boot sector", Bytes(98304, 0xFF), 0, 0, 0, 0, 0, false},
        {"own header", with_geometry(76, 2, 10, 128), 1, 76, 10, 128, 21},
        {"own header, one side", with_geometry(40, 1, 9, 512), 0, 40, 9, 512, 21},
        {"own header, short", shortened(with_geometry(82, 1, 9, 256)), 0, 82, 9, 256, 21},
        {"three sides", with_geometry(40, 3, 10, 256), 0, 0, 0, 0, 0, false},
        {"no side", with_geometry(40, 0, 10, 256), 0, 0, 0, 0, 0, false},
        {"83 tracks", with_geometry(83, 1, 10, 256), 0, 0, 0, 0, 0, false},
        {"odd sectors", with_geometry(40, 1, 10, 1024), 0, 0, 0, 0, 0, false},
        {"20 tracks of 18", plain(92160), 1, 20, 18, 256, 21},
        {"two sides", plain(409600), 2, 80, 10, 256, 21},
        {"two sides of 18", plain(737280), 2, 80, 18, 256, 21},
        {"one track of 10", plain(2560), 1, 1, 10, 256, 21},
        {"the largest side", plain(368640), 1, 80, 18, 256, 21},
        {"one byte more", plain(368641), 2, 40, 18, 256, 21},
        {"two halves of a sector", plain(368896), 0, 0, 0, 0, 0, false},
        {"a sector", plain(256), 0, 0, 0, 0, 0, false},
        {"361 sectors", plain(92416), 0, 0, 0, 0, 0, false},
        {"no whole sectors", plain(92200), 0, 0, 0, 0, 0, false},
        {"nothing", {}, 0, 0, 0, 0, 0, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_EQ(diskimg_attach(0, write(c.bytes)), c.accepted ? 1 : 0);
        ASSERT_EQ(diskimg_inserted(disk_), c.accepted);
        if (!c.accepted) continue;
        EXPECT_EQ(disk_.side_value, c.side_value);
        EXPECT_EQ(disk_.tracks, c.tracks);
        EXPECT_EQ(disk_.sectors, c.sectors);
        EXPECT_EQ(disk_.bytes_per_sector, c.bytes_each);
        EXPECT_EQ(disk_.directory_track, c.directory);
        EXPECT_EQ(read(0, c.sectors), 0);
    }
    for (const char* name : {"", "gone.dsk", "."}) {
        EXPECT_EQ(diskimg_attach(0, name), 0) << name;
    }
}

TEST_F(DiskImage, SectorsAreWhereTheLayoutPutsThem) {
    ASSERT_EQ(diskimg_attach(0, write(plain(102400))), 1);
    ASSERT_EQ(read(39, 9), 1);
    EXPECT_EQ(sector_[0] | sector_[1] << 8, 399);
    EXPECT_EQ(read(40, 0), 0) << "behind the end";
    EXPECT_EQ(read(0xFFFFFFFF, 9), 0);

    ASSERT_EQ(diskimg_attach(0, write(plain(92160))), 1);
    ASSERT_EQ(read(1, 17), 1);
    EXPECT_EQ(sector_[0], 35);

    const std::string cut = write(plain(200448), "cut.dsk");
    ASSERT_EQ(diskimg_attach(0, cut), 1); // 783 sectors of 800
    ASSERT_EQ(read(78, 2), 1);
    EXPECT_EQ(sector_[0] | sector_[1] << 8, 782);
    for (const uint32_t track : {78, 79}) {
        ASSERT_EQ(read(track, 9), 1);
        EXPECT_EQ(sector_[0], 0xE5) << "as formatting leaves it";
    }
    EXPECT_EQ(diskimg_detach(0, true), 1);
    EXPECT_EQ(fs::file_size(cut), 204800U);

    Bytes bytes = with_headers(98304, 35);
    bytes[5 * 3] = 33; // entry 5 was sector 5 of track 34; now there are two of 33, 5
    ASSERT_EQ(diskimg_attach(0, write(bytes)), 1);
    ASSERT_EQ(read(33, 5), 1);
    EXPECT_EQ(sector_[0], 5) << "the first of two";
    EXPECT_EQ(read(34, 5), 0) << "missing";

    ASSERT_EQ(diskimg_attach(0, write(with_geometry(40, 1, 10, 512))), 1);
    ASSERT_EQ(read(0, 1), 1);
    EXPECT_EQ(sector_[256 - 80], 3) << "512 bytes behind the 80 of the header";
}

TEST_F(DiskImage, ChangesGoBackToTheFileAtOneStroke) {
    const Bytes before = plain(102400);
    const std::string path = write(before);
    fs::permissions(path, fs::perms(0640));
    fs::create_symlink(path, folder_ / "link.dsk");
    for (const bool save : {false, true}) {
        ASSERT_EQ(diskimg_attach(0, (folder_ / "link.dsk").string()), 1);
        EXPECT_FALSE(disk_.modified);
        sector_.fill(0xAB);
        ASSERT_EQ(write(39, 9), 1);
        EXPECT_TRUE(disk_.modified);
        EXPECT_EQ(diskimg_detach(0, save), 1);
        EXPECT_FALSE(diskimg_inserted(disk_));
        Bytes expected = before;
        if (save) std::fill(expected.end() - 256, expected.end(), 0xAB);
        EXPECT_EQ(read_file(path), expected);
    }
    EXPECT_TRUE(fs::is_symlink(folder_ / "link.dsk"));
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0640));
    ASSERT_EQ(diskimg_attach(0, path), 1);
    wd1771_write_protect(0, true);
    ASSERT_EQ(write(0, 0), 1);
    EXPECT_FALSE(disk_.modified) << "protected";
}

TEST_F(DiskImage, ADiskThatCannotBeWrittenIsRescued) {
    const std::string longest = std::string(251, 'x') + ".dsk",
                      cut = std::string(242, 'x') + "-1.dsk";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"game.dsk", "game.dsk"},
        {"game.dsk", "game-1.dsk"},
        {"v1.2.dsk", "v1.2.dsk"},
        {"v1.2.dsk", "v1.2-1.dsk"},
        {"v1.2.dsk", "v1.2-2.dsk"},
        {".dsk", ".dsk"},
        {".dsk", ".dsk-1"},
        {longest, cut.substr(0, 242) + "xx.dsk"},
        {longest, cut}};
    for (const auto& [name, rescue] : cases) {
        const std::string path = write(plain(102400), ("sub/" + name).c_str());
        ASSERT_EQ(diskimg_attach(0, path), 1);
        write(1, 1);
        const Bytes expected = wd1771_disk(0).image;
        fs::remove_all(folder_ / "sub"); // vanishes while it is in the drive
        EXPECT_EQ(diskimg_detach(0, true), 0);
        EXPECT_FALSE(diskimg_inserted(disk_));
        const fs::path file = folder_ / "data/rescue" / rescue;
        EXPECT_NE(fake_host.status[3].find(file.string()), std::string::npos)
            << fake_host.status[3];
        EXPECT_EQ(read_file(file), expected);
    }
    ASSERT_EQ(diskimg_attach(0, write(plain(102400), "sub/a.dsk")), 1);
    fs::remove_all(folder_.path());
    write_file(folder_ / "data", {});
    EXPECT_EQ(diskimg_detach(0, true), 0);
    EXPECT_NE(fake_host.status[3].find("its contents are lost"), std::string::npos);
}

TEST_F(DiskImage, AFileThatMayOnlyBeReadIsWriteProtected) {
    const std::string path = write(plain(102400));
    fs::permissions(folder_.path(), fs::perms(0755));
    fs::permissions(path, fs::perms(0444));
    const pid_t child = fork(); // the superuser may write everything
    if (child == 0) {
        const bool user = geteuid() != 0 || setuid(65534) == 0;
        const bool attached = user && diskimg_attach(0, path) && disk_.write_protected;
        const bool stored = attached && write(0, 0);
        _exit(stored && !disk_.modified ? 0 : 1);
    }
    int result = -1;
    waitpid(child, &result, 0);
    EXPECT_EQ(result, 0);
}

TEST_F(DiskImage, TellsWhatItFound) {
    const struct {
        Bytes bytes;
        const char* told;
    } cases[] = {
        {plain(92160), "IMAGE: Size in bytes: 92160.\nIMAGE: Tracks per side: 20.\n"
                       "IMAGE: Bytes per sector: 256.\nIMAGE: Sectors per track: 18.\n"
                       "IMAGE: Dir on track: 21.\nIMAGE. Read(1,2,3) from offset 02700.\n"},
        {plain(92416), ""},
        {with_geometry(40, 3, 10, 256), "IMAGE: Error! Unsupported image (194640) bytes.\n"},
        {Bytes(98304, 0xFF), "IMAGE: Error! Could not find boot sector.\n"},
    };
    for (const auto& [bytes, told] : cases) {
        const std::string path = write(bytes);
        testing::internal::GetCapturedStderr();
        testing::internal::CaptureStderr();
        diskimg_attach(0, path);
        disk_img_read_sector(wd1771_disk(0), 1, 2, 3, sector_.data()); // (2 x 18 + 3) x 256 = 2700h
        EXPECT_EQ(testing::internal::GetCapturedStderr(), told);
        testing::internal::CaptureStderr();
    }
}

} // namespace
