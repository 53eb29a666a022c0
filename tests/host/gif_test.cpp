#include "host/recording/gif.h"

#include "support/host_files.h"
#include "support/picture.h"

#include <algorithm>
#include <functional>
#include <random>

namespace {
using Bytes = std::vector<uint8_t>;

Picture draw(int width, int height, const std::function<int(int x, int y)>& pixel) {
    Picture picture{width, height, {}, {}};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            picture.pixels.push_back(uint8_t(pixel(x, y)));
        }
    }
    return picture;
}

Bytes test_colours() {
    Bytes colours;
    for (int i = 0; i < 256; ++i) {
        colours.insert(colours.end(), {uint8_t(i), uint8_t(255 - i), uint8_t(i * 7)});
    }
    return colours;
}

/// 64 x 64 or fewer pixels in which no pair of neighbours occurs twice: for each odd step, 256
/// additions of it modulo 256 pass every value once.
Picture distinct_pairs(int width, int height) {
    int value = 0;
    return draw(width, height, [&, count = 0](int, int) mutable {
        const int pixel = value;
        value = (value + count++ / 256 * 2 + 1) & 0xFF;
        return pixel;
    });
}

class GifTest : public HostFilesTest {
protected:
    Bytes save(const Picture& picture) {
        EXPECT_EQ(gif_save("test.gif", picture.width, picture.height, picture.pixels.data(),
                           test_colours().data()),
                  1);
        return read_file("test.gif");
    }

    /// Bytes of the codes of the only image.
    size_t bytes_of_codes(const Picture& picture) {
        const Bytes file = save(picture);
        size_t bytes = 0;
        for (size_t at = 792; file.at(at) != 0; at += file[at] + 1U) bytes += file[at];
        return bytes;
    }
    void expect_decoded(const Picture& picture) {
        save(picture);
        const Picture seen = read_gif("test.gif");
        EXPECT_EQ(seen.width, picture.width);
        EXPECT_EQ(seen.height, picture.height);
        EXPECT_TRUE(seen.pixels == picture.pixels);
        EXPECT_TRUE(std::ranges::equal(seen.colours, test_colours()));
    }
};
} // namespace

TEST_F(GifTest, AnotherDecoderSeesThePicture) {
    std::mt19937 random(1982);
    const auto text = [&](int x, int y) {
        const int cell = (y / 8 * 48 + x / 8) * 37 % 61;
        return cell > 20 && (cell * 0x9E37 >> ((x ^ y * 3) & 7) & 1) ? cell & 15 : 16;
    };
    struct {
        const char* name;
        Picture picture;
    } const cases[] = {
        {"one pixel", draw(1, 1, [](int, int) { return 200; })},
        {"black", draw(384, 288, [](int, int) { return 0; })},
        {"text", draw(384, 288, text)},
        {"text, giant", draw(768, 576, [&](int x, int y) { return text(x / 2, y / 2); })},
        {"gradient", draw(384, 288, [](int x, int y) { return x * 2 / 3 + y; })},
        {"noise", draw(384, 288, [&](int, int) { return int(random() & 0xFF); })},
        {"two colours of noise", draw(384, 288, [&](int, int) { return int(random() & 16); })},
        {"odd size", draw(37, 301, [&](int x, int) { return x & int(random() & 3); })},
        {"one column", draw(1, 1000, [](int, int y) { return y / 98; })},
        {"ends at a clear", distinct_pairs(17, 181)},
    };
    for (const auto& [name, picture] : cases) {
        SCOPED_TRACE(name);
        expect_decoded(picture);
    }
    // Runs of one colour and runs of few colours: among so many, some clear the table with the very
    // code after which a decoder widens its codes.
    for (int n = 0; n < 120; ++n) {
        SCOPED_TRACE(n);
        const int run = int(random() % 40) + 1;
        const int used = int(random() % 8) + 2;
        int colour = 0;
        expect_decoded(draw(384, 288, [&](int, int) {
            if (random() % unsigned(run) == 0) colour = int(random()) % used;
            return colour & 0xFF;
        }));
        if (HasFailure()) return;
    }
}

TEST_F(GifTest, HeadersBlocksAndTrailerStandWhereTheyShould) {
    const Bytes file = save(draw(300, 258, [](int x, int y) { return x * y; }));
    Bytes start{'G', 'I', 'F', '8', '7', 'a', 0x2C, 1, 2, 1, 0xF7, 0, 0};
    const Bytes colours = test_colours();
    start.insert(start.end(), colours.begin(), colours.end());
    start.insert(start.end(), {',', 0, 0, 0, 0, 0x2C, 1, 2, 1, 0, 8});
    ASSERT_EQ(start.size(), 792U);
    EXPECT_TRUE(std::equal(start.begin(), start.end(), file.begin()));

    size_t at = start.size();
    size_t blocks = 0;
    for (; file.at(at) != 0; at += file[at] + 1U, ++blocks) {
        if (file.at(at + file[at] + 1U) != 0) {
            EXPECT_TRUE(file[at] == 251 || file[at] == 252) << "sub-block " << blocks;
        }
    }
    EXPECT_GT(blocks, 100U);
    ASSERT_EQ(file.size(), at + 2);
    EXPECT_EQ(file[at + 1], ';');
}

// The width after a clear is 9 bits and grows with code 255, 767 and 1791. Strings of one colour
// grow to 96 pixels: 256, 0, 258 to 352, 1103 times 352, 304 and 257; in the giant picture a clear
// comes with emission 3837, after one single pixel. Of distinct pairs, each five bytes in a store
// of 15379, 3077 single pixels go out before the clear.
TEST_F(GifTest, StringsGrowTo96PixelsAndAFullStoreForcesAClear) {
    const auto black = [](int, int) { return 0; };
    EXPECT_EQ(bytes_of_codes(draw(384, 288, black)), 1525U);  // 12198 bits
    EXPECT_EQ(bytes_of_codes(draw(768, 576, black)), 6473U);  // 51779 bits
    EXPECT_EQ(bytes_of_codes(distinct_pairs(64, 64)), 5542U); // 44330 bits
}
