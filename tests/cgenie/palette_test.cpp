#include "cgenie/palette.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {
// Hue in degrees and luminance level of every colour, Southern and Northern.
const long double HUES[2][16] = {
    {0, 275, 32.5, 335, 152.5, 215, 120, 0, 0, 275, 32.5, 335, 152.5, 215, 120, 0},
    {0, 270, 90, 0, 152.5, 215, 120, 180, 335, 335, 32.5, 359, 0, 270, 32.5, 0}};
const long double LEVELS[2][16] = {
    {4.5, 4.5, 4.5, 3.5, 4, 4.5, 3.5, 3, 4.5, 4, 3, 3, 4.5, 3, 3, 2.4L},
    {3, 4.5, 3, 4.5, 4.5, 4.5, 3.5, 4.5, 3, 4.5, 3.5, 3.5, 3.5, 3.5, 3, 5}};

int rounded(long double value, int low, int high) {
    return int(std::clamp<long double>(value + 0.5L, low, high));
}
int clamped(double value) { return int(std::clamp(std::floor(value), 0.0, 255.0)); }

TEST(Palette, EntriesFollowFromPhaseAndLevel) {
    for (const uint32_t standard : {0u, 1u}) {
        for (const uint32_t saturation : {0u, 51u, 75u, 100u, 127u, 200u, 1000u}) {
            calculate_palette(standard);
            display_params.interlaced_line = saturation;
            palette_set_saturation(saturation);
            for (int i = 0; i < PALETTE_ENTRIES; ++i) {
                SCOPED_TRACE(testing::Message() << standard << "/" << saturation << "% " << i);
                const long double hue = i < 16 ? HUES[standard][i] : 0;
                const long double y = i < 16 ? (LEVELS[standard][i] - 2) * 85 * 11 / 10 : 5;
                const long double amplitude = hue == 0 ? 0 : saturation * 128 / 100;
                const long double u = amplitude * std::cos(hue * 3.14159265L / 180);
                const long double v = amplitude * std::sin(hue * 3.14159265L / 180);
                EXPECT_EQ(yuv_palette[i].y, rounded(y, 0, 255));
                EXPECT_EQ(yuv_palette[i].u, rounded(u, -128, 127));
                EXPECT_EQ(yuv_palette[i].v, rounded(v, -128, 127));
                const long double components[3] = {
                    y + v / 0.877283L, y - 0.39465L * u - 0.5806L * v, y + u / 0.492111L};
                for (int c : {0, 1, 2}) {
                    EXPECT_EQ(video_get_palette_value(i, c), rounded(components[c], 0, 255)) << c;
                    const int dimmed = cgpalette[i][c] * int(saturation) / 80;
                    EXPECT_EQ(cgpalette[17 + i][c], saturation < 80 ? dimmed : 16);
                    EXPECT_EQ(cgpalette[34 + i][c], 16) << "beyond the entries";
                }
            }
        }
    }
}

TEST(Palette, KnobsOfTheTelevision) {
    using P = display_parameters;
    // White, dark grey and black of luminance 233.75, 37.4 and 5, all without chroma.
    const struct {
        uint32_t P::*knob;
        uint32_t value;
        int white, grey, black;
    } cases[] = {{&P::brightness, 60, 255, 63, 31}, {&P::brightness, 0, 106, 0, 0},
                 {&P::contrast, 0, 128, 128, 128},  {&P::contrast, 25, 181, 82, 66},
                 {&P::contrast, 100, 255, 0, 0},    {&P::gamma, 0, 214, 5, 0},
                 {&P::gamma, 100, 244, 98, 36},     {&P::gamma, 50, 234, 37, 5}};
    for (const auto& c : cases) {
        palette_get_default_config(&display_params);
        display_params.*c.knob = c.value;
        calculate_palette(0);
        const int seen[] = {cgpalette[0][0], cgpalette[15][1], yuv_palette[16].y};
        EXPECT_TRUE(seen[0] == c.white && seen[1] == c.grey && seen[2] == c.black) << &c - cases;
    }
}

TEST(CompositeFilter, WholePictureFollowsTheFormula) {
    constexpr int WIDTH = 32, HEIGHT = 40, STRIDE = 35;
    calculate_palette(0);
    palette_set_saturation(120);
    std::mt19937 random(1);
    std::vector<uint8_t> source(WIDTH * (HEIGHT + 1));
    for (auto& index : source) index = uint8_t(random() % PALETTE_ENTRIES);
    std::vector<yuv_pixel> result(STRIDE * HEIGHT, yuv_pixel{1, 2, 3, 4});
    video_yuv_filter(source.data(), result.data(), WIDTH, HEIGHT, STRIDE);
    const auto pixel = [&](int x, int y) {
        return yuv_palette[source[y * WIDTH + std::max(x, 0)]];
    };
    double luminance = 0;
    for (int y = 0; y < HEIGHT; ++y) {
        for (int x = 0; x < STRIDE; ++x) {
            const yuv_pixel found = result[y * STRIDE + x];
            ASSERT_EQ(found.pad, x < WIDTH ? 0 : 4) << "beyond the line nothing is written";
            if (x >= WIDTH) continue;
            const double level = pixel(x, y).y;
            luminance = x == 0 ? level : level - std::trunc((level - luminance) * 35 / 100);
            double u = 0, v = 0;
            for (const int row : {y, y + 1}) {
                for (const int column : {(x & ~1) - 2, x & ~1, x | 1, x | 1}) {
                    // Left of the line its own first pixel stands for both lines.
                    u += pixel(column, column < 0 ? y : row).u;
                    v += pixel(column, column < 0 ? y : row).v;
                }
            }
            ASSERT_EQ(found.y, luminance) << x << "," << y;
            ASSERT_EQ(found.u, std::floor(u / 8)) << x << "," << y;
            ASSERT_EQ(found.v, std::floor(v / 8)) << x << "," << y;
        }
    }
}

TEST(CompositeFilter, ConvertsEveryChromaInPlace) {
    constexpr size_t COUNT = 65536, KEPT = 37; // the count is no multiple of anything
    for (const int y : {0, 1, 100, 127, 128, 254, 255}) {
        std::vector<uint32_t> words(COUNT);
        auto* pixels = reinterpret_cast<yuv_pixel*>(words.data());
        for (size_t i = 0; i < COUNT; ++i) {
            pixels[i] = {uint8_t(y), int8_t(i & 255), int8_t(i >> 8), 0x55};
        }
        yuv_to_rgb(pixels, words.data(), COUNT - KEPT);
        for (size_t i = 0; i < COUNT - KEPT; ++i) {
            const double u = int8_t(i & 255), v = int8_t(i >> 8);
            const int red = clamped(y + (v * 74711 + 32768) / 65536);
            const int green = clamped(y + (u * -25863 + v * -38049 + 65536) / 65536);
            const int blue = clamped(y + (u * 132973 + 32768) / 65536);
            ASSERT_EQ(words[i], uint32_t(red << 16 | green << 8 | blue)) << y << " " << i;
        }
        for (size_t i = COUNT - KEPT; i < COUNT; ++i) ASSERT_EQ(pixels[i].pad, 0x55);
    }
}
} // namespace
