#pragma once
/// What both picture engines are tried with.

#include "cgenie/memory/memory.h"
#include "cgenie/video.h"

#include <array>
#include <cstdint>
#include <random>

/// R0 to R15: 72 clocks a line, 304 lines, 40 x 24 characters of 8 lines, cursor on lines 6 and 7
/// of offset 0125. The sync starts at line 248 and ends 7 lines later, inside its row, so that it
/// comes once a frame.
inline constexpr std::array<uint8_t, 16> TEXT = {70, 40, 49, 0x95, 38, 0, 24,   30,
                                                 0,  7,  6,  7,    1,  0, 0x41, 0x25};

inline void fill_with_noise(uint32_t seed) {
    std::mt19937 noise(seed);
    for (uint32_t i = RAM_START; i < MEMORY_SIZE; ++i) memory[i] = uint8_t(noise());
    for (uint8_t& line : current_charset) line = uint8_t(noise());
}

/// A port FF write, as far as the picture goes.
inline void latch(uint32_t value) {
    video_graphic_background(value & 0xC4);
    video_charset_select(value & 0x18);
    video_mode_select(value & 0x20);
}

inline int pixel(int x, int y) { return frame_buffer[y * SCREEN_WIDTH + x]; }
