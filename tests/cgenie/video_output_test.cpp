#include "cgenie/video_output.h"

#include "cgenie/palette.h"
#include "cgenie/video.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {
void draw_noise() {
    std::mt19937 noise(2);
    for (int i = 0; i < SCREEN_WIDTH * (SCREEN_HEIGHT + 1); ++i) {
        frame_buffer[i] = uint8_t(noise() % PALETTE_ENTRIES);
    }
}

/// The filtered frame, all lines at once.
std::vector<uint32_t> composite_picture() {
    constexpr size_t count = size_t(SCREEN_WIDTH) * SCREEN_HEIGHT;
    std::vector<yuv_pixel> filtered(count);
    std::vector<uint32_t> colours(count);
    video_yuv_filter(frame_buffer, filtered.data(), SCREEN_WIDTH, SCREEN_HEIGHT, SCREEN_WIDTH);
    yuv_to_rgb(filtered.data(), colours.data(), count);
    return colours;
}

/// A pixel of a second line, half as bright when `half`.
uint8_t second(uint8_t index, bool half) { return half ? uint8_t(index + 17) : index; }
uint32_t second(uint32_t colour, bool half) { return half ? colour >> 1 & 0x7F7F7F : colour; }

/// Checks one form of the output against the pixel of the frame that each of its pixels shows.
template <typename Pixel>
void expect_scaled(const std::vector<Pixel>& source, int width, bool black_odd, Pixel black) {
    const int scale = width / SCREEN_WIDTH;
    const size_t count = size_t(width) * SCREEN_HEIGHT * scale;
    std::vector<uint8_t> canvas(count * sizeof(Pixel) + 16, 0xEE);
    video_resize_frame(canvas.data(), 1, width, sizeof(Pixel) == 4 ? 66 : 0, black_odd);
    const bool half = display_params.interlaced_line == 40;
    size_t wrong = 0;
    for (size_t i = 0; i < count; ++i) {
        const size_t x = i % size_t(width), y = i / size_t(width);
        Pixel expected = source[y / scale * SCREEN_WIDTH + x / scale];
        if (scale == 2 && y % 2 == 1) expected = black_odd ? black : second(expected, half);
        Pixel pixel;
        std::memcpy(&pixel, &canvas[i * sizeof pixel], sizeof pixel);
        wrong += pixel != expected;
    }
    const char* form = sizeof(Pixel) == 4 ? " blurred" : " plain";
    EXPECT_EQ(wrong, 0u) << width << form << (black_odd ? " with black lines" : "");
    EXPECT_EQ(canvas[count * sizeof(Pixel)], 0xEE) << "wrote past the canvas, " << width << form;
}
} // namespace

TEST(VideoOutput, ScalesTheFrame) {
    calculate_palette(0);
    draw_noise();
    const std::vector<uint8_t> plain(frame_buffer, frame_buffer + SCREEN_WIDTH * SCREEN_HEIGHT);
    const std::vector<uint32_t> blurred = composite_picture();
    for (const int form : {0, 1, 2, 3, 4, 5, 6, 7}) {
        display_params.interlaced_line = form & 4 ? 40 : 80;
        const int width = form & 2 ? 768 : 384;
        expect_scaled<uint8_t>(plain, width, form & 1, 16);
        expect_scaled<uint32_t>(blurred, width, form & 1, 0);
    }
    palette_get_default_config(&display_params);
}

TEST(VideoOutput, FiltersWhateverHasChanged) {
    calculate_palette(0);
    draw_noise();
    const auto expect_filtered = [](const char* change) {
        std::vector<uint32_t> canvas(size_t(SCREEN_WIDTH) * SCREEN_HEIGHT);
        video_resize_frame(reinterpret_cast<uint8_t*>(canvas.data()), 0, SCREEN_WIDTH, 1, 0);
        EXPECT_TRUE(canvas == composite_picture()) << change;
    };
    expect_filtered("all");
    for (const int line : {0, 1, 100, 101, 287, 288}) { // the last is only below another
        frame_buffer[line * SCREEN_WIDTH + 7 * line % SCREEN_WIDTH] ^= 3;
        expect_filtered(std::to_string(line).c_str());
    }
    palette_set_saturation(20);
    expect_filtered("saturation");
    calculate_palette(1);
    expect_filtered("standard");
    palette_set_saturation(palette_get_default_saturation());
}
