#include "host/screenshot.h"

#include "cgenie/crtc.h"
#include "cgenie/memory/memory.h"
#include "cgenie/video.h"
#include "host/status.h"
#include "support/host_files.h"

namespace {
using Bytes = std::vector<uint8_t>;

void touch(const std::string& path) { std::ofstream file(path); }

/// No two 16 KB banks, nor neighbouring pages, hold the same byte at the same place.
uint8_t memory_pattern(uint32_t address) {
    return uint8_t(address * 7 + address / 256 * 13 + address / 0x4000 * 101);
}

class ScreenshotTest : public HostFilesTest {
protected:
    void SetUp() override {
        HostFilesTest::SetUp();
        CreateStatusBar();
    }
};
} // namespace

TEST_F(ScreenshotTest, NamesTakeTheFirstFreeNumber) {
    EXPECT_EQ(get_next_fname("gif", ""), "Tarvelin0000.gif");
    touch("Tarvelin0000.gif");
    touch("Tarvelin0001.gif");
    EXPECT_EQ(get_next_fname("gif", ""), "Tarvelin0002.gif");
    EXPECT_EQ(get_next_fname("bmp", ""), "Tarvelin0000.bmp");
    EXPECT_EQ(get_next_fname("gif", "./100%s"), "./100%s0000.gif");
    std::filesystem::remove("Tarvelin0000.gif");
    EXPECT_EQ(get_next_fname("gif", ""), "Tarvelin0000.gif");
}

TEST_F(ScreenshotTest, TheDepthDecidesTheFormat) {
    dib bitmap;
    for (const int bits : {1, 32}) {
        ASSERT_EQ(dib_create(bitmap, 384, 288, bits), 1);
        EXPECT_EQ(gif_write(bitmap, "shot"), 0) << bits << " bits";
        EXPECT_FALSE(std::filesystem::exists("shot0000.gif"));
        EXPECT_EQ(dib_save(bitmap, "shot"), 1);
    }
    EXPECT_EQ(host->status_text(3), "Screenshot saved: shot0001.bmp");
    EXPECT_EQ(std::filesystem::file_size("shot0001.bmp"), 442422U);

    ASSERT_EQ(dib_create(bitmap, 384, 288, 8), 1);
    for (size_t i = 0; i < bitmap.palette.size(); ++i) {
        bitmap.palette[i] = uint8_t(i / 4 + i % 4 * 64);
    }
    EXPECT_EQ(gif_write(bitmap, "shot"), 1);
    EXPECT_EQ(gif_write(bitmap, "shot"), 1);
    EXPECT_EQ(host->status_text(3), "Screenshot saved: shot0001.gif");
    const Bytes file = read_file("shot0001.gif");
    EXPECT_EQ(file, read_file("shot0000.gif"));
    ASSERT_GT(file.size(), 781U);
    for (size_t i = 0; i < 256; ++i) {
        const Bytes rgb{uint8_t(i + 128), uint8_t(i + 64), uint8_t(i)};
        EXPECT_TRUE(std::equal(rgb.begin(), rgb.end(), &file[13 + 3 * i])) << "colour " << i;
    }
    // The name is announced before the file turns out to be impossible.
    EXPECT_EQ(gif_write_as("missing/shot.gif", bitmap), 0);
    EXPECT_EQ(host->status_text(3), "Screenshot saved: missing/shot.gif");
}

TEST_F(ScreenshotTest, DumpsReplaceAnExtensionOfThreeCharacters) {
    struct {
        const char* base;
        const char* dump;
    } const cases[] = {
        {"C:\\games\\demo", "C:\\games\\demo.v80"},
        {"kept.v80", "kept.v80"},
        {"game.cas", "game.v80"},
        {"page.html", "page.html.v80"},
        {"a.b", "a.b.v80"},
        {"", ".v80"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(memory_save_video_ram(c.base), 1) << c.base;
        ASSERT_TRUE(std::filesystem::exists(c.dump)) << c.base;
        EXPECT_EQ(std::filesystem::file_size(c.dump), 1024U) << c.base;
        std::filesystem::remove(c.dump);
    }
    EXPECT_EQ(memory_save_video_ram("missing/demo"), 0);
    EXPECT_TRUE(std::filesystem::is_empty("."));
}

TEST_F(ScreenshotTest, DumpsShowTheScreenMemoryAndWrapAtItsEnd) {
    for (uint32_t address = 0; address < MEMORY_SIZE; ++address) {
        memory[address] = memory_pattern(address);
    }
    for (const uint32_t start : {0x0000U, 0x0400U, 0x1234U, 0x3C00U, 0x3C01U, 0x3FFFU}) {
        SCOPED_TRACE("start address " + std::to_string(start));
        crtc_write_register(12, uint8_t(start >> 8));
        crtc_write_register(13, uint8_t(start));
        memory_save_video_ram("screen");
        Bytes expected;
        for (uint32_t i = 0; i < 1024; ++i) {
            expected.push_back(memory_pattern(0x4000 + (start + i) % 0x4000));
        }
        const Bytes dump = read_file("screen.v80");
        EXPECT_EQ(dump, expected);
        ASSERT_FALSE(dump.empty());
        EXPECT_EQ(dump[0], *video_get_screen_ram());
    }
}
