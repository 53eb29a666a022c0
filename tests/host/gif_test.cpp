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

    /// The codes of the only image. The width after a clear is 9 bits and grows with code 255, 767
    /// and 1791.
    static std::vector<int> read_codes(const Bytes& file) {
        Bytes stream;
        for (size_t at = 792; file.at(at) != 0; at += file[at] + 1U) {
            stream.insert(stream.end(), file.begin() + long(at) + 1,
                          file.begin() + long(at) + 1 + file[at]);
        }
        std::vector<int> codes;
        int width = 9;
        int since_clear = 0;
        for (size_t bit = 0; codes.empty() || codes.back() != 257;) {
            int code = 0;
            for (int i = 0; i < width; ++i, ++bit) {
                code |= (stream.at(bit / 8) >> bit % 8 & 1) << i;
            }
            codes.push_back(code);
            since_clear = code == 256 ? 0 : since_clear + 1;
            width = since_clear < 255 ? 9 : since_clear < 767 ? 10 : since_clear < 1791 ? 11 : 12;
        }
        return codes;
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

TEST_F(GifTest, StringsOfOneColourGrowTo96PixelsAndTheLastCodeForcesAClear) {
    // Emission n writes n pixels up to 96 and stores code 257 + n, so 4656 pixels pass until the
    // code of 96 pixels, 352, repeats. A clear comes with emission 3837, after one single pixel.
    const auto expect_growth = [](std::vector<int>& codes, int repeats) {
        codes.insert(codes.end(), {256, 0});
        for (int code = 258; code <= 352; ++code) {
            codes.push_back(code);
        }
        codes.insert(codes.end(), size_t(repeats), 352);
    };
    std::vector<int> expected;
    expect_growth(expected, 1103); // 384 x 288 - 4656 = 1103 x 96 + 48
    expected.insert(expected.end(), {257 + 47, 257});
    EXPECT_EQ(read_codes(save(draw(384, 288, [](int, int) { return 0; }))), expected);

    expected.clear();
    expect_growth(expected, 3837 - 96);
    expected.push_back(0);
    expect_growth(expected, 769); // 768 x 576 - 4656 - 3741 x 96 - 1 - 4656 = 769 x 96 + 95
    expected.insert(expected.end(), {257 + 94, 257});
    EXPECT_EQ(read_codes(save(draw(768, 576, [](int, int) { return 0; }))), expected);
}

TEST_F(GifTest, AFullStringStoreForcesAClear) {
    // Every string is a pair of five bytes in the store: 1 + 5 x 3076 is the first offset beyond
    // 15379. One more single pixel goes out before the clear.
    const Picture picture = distinct_pairs(64, 64);
    std::vector<int> expected{256};
    expected.insert(expected.end(), picture.pixels.begin(), picture.pixels.begin() + 3077);
    expected.push_back(256);
    expected.insert(expected.end(), picture.pixels.begin() + 3077, picture.pixels.end());
    expected.push_back(257);
    EXPECT_EQ(read_codes(save(picture)), expected);
}
