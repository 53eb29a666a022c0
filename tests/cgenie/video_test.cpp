#include "cgenie/video.h"

#include "cgenie/crtc.h"
#include "cgenie/firmware_images.h"
#include "cgenie/memory/memory.h"
#include "cgenie/screen_setup.h"
#include "wall/machine_host.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {
using Changes = std::vector<std::pair<uint32_t, uint8_t>>;

void program(const Changes& changes = {}) {
    crtc_reset();
    for (uint32_t number = 0; number < 16; ++number) crtc_write_register(number, TEXT[number]);
    for (const auto& [number, value] : changes) crtc_write_register(number, value);
    for (int frame = 0; frame < 64; ++frame) crtc_vblank(); // until the placement has settled
}

/// The pixel that belongs at a place of the frame, worked out from there.
int expected_pixel(int x, int y) {
    const int columns = int(crtc.horizontal_displayed);
    const int background = video_graphic_background_selected;
    const int in_row = x - (384 - 8 * columns) / 2;
    const int in_picture = y - int(crtc.top_border);
    if (in_row < 0 || in_row >= 8 * columns || in_picture < 0) return background;
    const int row_lines = video_mode ? 2 : int(crtc.maximum_scan_line) + 1;
    const int row = in_picture / row_lines;
    const int line = in_picture % row_lines;
    if (row >= int(crtc.vertical_displayed)) return background;
    const int position = row * columns + in_row / 8;
    const int byte = memory[0x4000 + (position + int(crtc.start_address)) % 0x4000];
    if (video_mode) return hires_palette[(byte >> (6 - in_row % 8 / 2 * 2)) & 3];
    bool set = video_character_pattern(uint8_t(byte), uint32_t(line)) & (0x80 >> in_row % 8);
    const bool cursor_line =
        line >= int(crtc.cursor_start_line) && line <= int(crtc.cursor_end_line);
    if (crtc.cursor_visible && cursor_line &&
        position + int(crtc.start_address) + 0x4000 == int(crtc.cursor_address)) {
        set = !set;
    }
    return set ? memory[0xF000 + position % 0x400] % 16 : background;
}

} // namespace

TEST(Video, CharacterPatternSources) {
    for (uint32_t i = 0; i < 2048; ++i) current_charset[i] = uint8_t(i * 7 + i / 256);
    for (uint32_t i = 0; i < 1024; ++i) memory[0xF400 + i] = uint8_t(~(i * 7 + i / 256));
    memory[0xF800] = 0xFF; // what follows the character RAM is no pattern
    // For codes 00, 7F, 80, BF, C0, FF: b is the built-in set, r the character RAM.
    const std::pair<uint8_t, const char*> selections[] = {
        {0x00, "bbrrrr"}, {0x08, "bbrrbb"}, {0x10, "bbbbrr"}, {0x18, "bbbbbb"}};
    constexpr uint32_t codes[] = {0x00, 0x7F, 0x80, 0xBF, 0xC0, 0xFF};
    for (const auto& [selection, sources] : selections) {
        video_charset_select(uint8_t(selection | 0xE7)); // the other bits do not count
        EXPECT_EQ(video_charset_selected, selection);
        for (int i = 0; i < 6; ++i) {
            for (const uint32_t y : {0u, 7u, 8u, 31u}) {
                const uint32_t rom = codes[i] * 8 + y;
                const uint32_t ram = (codes[i] & 0x7F) * 8 + y;
                int expected = 0;
                if (sources[i] == 'b' && rom < 2048) expected = uint8_t(rom * 7 + rom / 256);
                if (sources[i] == 'r' && ram < 1024) expected = uint8_t(~(ram * 7 + ram / 256));
                EXPECT_EQ(video_character_pattern(uint8_t(codes[i]), y), expected)
                    << "selection " << int(selection) << " code " << codes[i] << " line " << y;
            }
        }
    }
}

TEST(Video, RendersEveryGeometryInsideTheFrame) {
    const std::pair<const char*, Changes> cases[] = {
        {"text", {}},
        {"cursor off", {{10, 0x20}}},
        {"cursor of a tall row", {{9, 11}, {10, 2}, {11, 30}}},
        {"wraps in the video RAM", {{12, 0x3F}, {13, 0xF0}, {14, 0x80}, {15, 0x00}}},
        {"no columns", {{1, 0}}},
        {"no rows", {{6, 0}}},
        {"odd number of columns", {{1, 33}}},
        {"as wide as the frame", {{1, 48}}},
        {"half a cell too wide", {{1, 49}}},
        {"a cell too wide", {{1, 50}}},
        {"widest", {{1, 255}, {6, 127}, {9, 31}}},
        {"one line a row", {{9, 0}, {6, 127}, {7, 127}}},
        {"higher than the frame", {{6, 50}, {7, 60}}},
    };
    fill_with_noise(1);
    for (const uint8_t mode : {0x04, 0x4C, 0x90, 0x38, 0x24, 0x20}) {
        for (const auto& [name, changes] : cases) {
            program(changes);
            EXPECT_EQ(video_get_screen_ram(), memory + 0x4000 + crtc.start_address);
            EXPECT_EQ(video_get_rows(), int(crtc.vertical_displayed));
            EXPECT_EQ(video_get_columns(), int(crtc.horizontal_displayed));
            latch(mode);
            std::fill(std::begin(frame_buffer), std::end(frame_buffer), uint8_t(0xAA));
            video_render_frame();
            int wrong = 0;
            for (int y = 0; y < SCREEN_HEIGHT; ++y) {
                for (int x = 0; x < SCREEN_WIDTH; ++x) wrong += pixel(x, y) != expected_pixel(x, y);
            }
            EXPECT_EQ(wrong, 0) << name << ", latch " << int(mode);
            uint8_t* const below = frame_buffer + 384 * 288;
            EXPECT_EQ(std::count(below, below + 384, video_graphic_background_selected), 384);
            EXPECT_EQ(std::count(below + 384, std::end(frame_buffer), 0xAA),
                      std::end(frame_buffer) - below - 384)
                << name;
        }
    }
}

TEST(Video, LoadsCharacterSets) {
    const auto holds = [](FirmwareImage image) {
        const auto bytes = firmware_bytes(image);
        return std::equal(bytes.begin(), bytes.end(), std::begin(current_charset),
                          std::end(current_charset));
    };
    video_set_charset(1);
    EXPECT_TRUE(holds(FirmwareImage::charset_german));
    video_set_charset(2);
    EXPECT_TRUE(holds(FirmwareImage::charset_emulator));
    video_set_charset(3);
    EXPECT_TRUE(holds(FirmwareImage::charset_original)) << "no other is named";

    machine_host.read_rom = [](rom_file, uint8_t* to, size_t) {
        std::fill_n(to, 100, uint8_t(0x5A));
        return 100;
    };
    video_set_charset(3);
    EXPECT_EQ(std::count(std::begin(current_charset), std::end(current_charset), 0x5A), 100);
    EXPECT_EQ(std::count(std::begin(current_charset), std::end(current_charset), 0), 1948);
    machine_host.read_rom = [](rom_file, uint8_t*, size_t) { return 0; };
    video_set_charset(3);
    EXPECT_EQ(std::count(std::begin(current_charset), std::end(current_charset), 0), 2048);
    machine_host.read_rom = machine_without_host().read_rom;
    video_set_charset(0);
    EXPECT_TRUE(holds(FirmwareImage::charset_original));
}
