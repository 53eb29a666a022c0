#include "host/screenshot.h"

#include "cgenie/palette.h"
#include "host/status.h"
#include "support/host_files.h"

#include <climits>

namespace {
using Bytes = std::vector<uint8_t>;

uint32_t number_at(const Bytes& file, size_t at) {
    return file[at] | file[at + 1] << 8 | file[at + 2] << 16 | uint32_t(file[at + 3]) << 24;
}

class BmpTest : public HostFilesTest {
protected:
    void SetUp() override {
        HostFilesTest::SetUp();
        CreateStatusBar();
    }
};
} // namespace

TEST_F(BmpTest, FilesOfEveryDepthHoldHeaderPaletteAndRowsFromTheBottom) {
    struct {
        int width, height, bits;
        uint32_t palette_size, file_size;
    } const cases[] = {
        {384, 288, 32, 0, 442422},
        {384, 288, 8, 1024, 111670},
        {384, 288, 1, 8, 13886},
        {768, 576, 8, 1024, 443446},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.width) + " pixels, " + std::to_string(c.bits) + " bits");
        dib bitmap;
        ASSERT_EQ(dib_create(bitmap, c.width, c.height, c.bits), 1);
        uint32_t noise = 1;
        for (Bytes* bytes : {&bitmap.palette, &bitmap.pixels}) {
            for (uint8_t& byte : *bytes) {
                noise = noise * 1664525 + 1013904223;
                byte = uint8_t(noise >> 24);
            }
        }
        ASSERT_EQ(dib_save_to_file(bitmap, "shot.bmp"), 1);
        EXPECT_EQ(host->status_text(3), "Screenshot saved: shot.bmp");

        const Bytes file = read_file("shot.bmp");
        ASSERT_EQ(file.size(), c.file_size);
        EXPECT_EQ(file[0], 'B');
        EXPECT_EQ(file[1], 'M');
        // File size, reserved, pixel offset; header size, width, height, planes and bits.
        const uint32_t expected[13] = {c.file_size,
                                       0,
                                       54 + c.palette_size,
                                       40,
                                       uint32_t(c.width),
                                       uint32_t(c.height),
                                       uint32_t(1 | c.bits << 16)};
        for (size_t i = 0; i < 13; ++i) {
            EXPECT_EQ(number_at(file, 2 + 4 * i), expected[i]) << "at " << 2 + 4 * i;
        }
        EXPECT_EQ(Bytes(file.begin() + 54, file.begin() + 54 + c.palette_size), bitmap.palette);
        const long row = (c.width * c.bits + 31) / 32 * 4;
        for (long y = 0; y < c.height; ++y) {
            const auto in_file = file.end() - (y + 1) * row;
            ASSERT_TRUE(std::equal(in_file, in_file + row, bitmap.pixels.begin() + y * row))
                << "row " << y;
        }
        EXPECT_EQ(bitmap.header.height, -c.height);
    }
}

TEST(CanvasTest, PalettesFollowTheDepth) {
    dib bitmap;
    ASSERT_EQ(dib_create(bitmap, 384, 288, 1), 1);
    EXPECT_EQ(bitmap.pixels, Bytes(13824, 0));
    EXPECT_EQ(dib_create_rgb_palette(bitmap), 0);
    EXPECT_EQ(dib_create_monopalette(bitmap, 0), 1);
    EXPECT_EQ(bitmap.palette, (Bytes{0, 0, 0, 0, 255, 255, 255, 0}));

    ASSERT_EQ(dib_create(bitmap, 384, 288, 8), 1);
    EXPECT_EQ(dib_create_monopalette(bitmap, 0), 1);
    EXPECT_EQ(Bytes(bitmap.palette.begin() + 4 * 100, bitmap.palette.begin() + 4 * 101),
              (Bytes{100, 100, 100, 0}));
    cgpalette[5][0] = 0x11;
    cgpalette[5][1] = 0x22;
    cgpalette[5][2] = 0x33;
    EXPECT_EQ(dib_create_rgb_palette(bitmap), 1);
    EXPECT_EQ(Bytes(bitmap.palette.begin() + 20, bitmap.palette.begin() + 24),
              (Bytes{0x33, 0x22, 0x11, 0}));

    ASSERT_EQ(dib_create(bitmap, 384, 288, 32), 1);
    EXPECT_TRUE(bitmap.palette.empty());
    EXPECT_EQ(dib_create_monopalette(bitmap, 0), 0);
    EXPECT_EQ(dib_create_rgb_palette(bitmap), 0);
    bitmap.pixels.assign(bitmap.pixels.size(), 0xAA);
    dib_clear_buffer(bitmap);
    EXPECT_EQ(bitmap.pixels, Bytes(442368, 0));

    EXPECT_EQ(dib_create(bitmap, INT_MAX, INT_MAX, 32), 0) << "more than any memory";
    EXPECT_TRUE(bitmap.pixels.empty());
}
