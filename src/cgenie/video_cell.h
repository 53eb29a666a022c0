#pragma once
/// Eight pixels at once: what the full-frame renderer and the beam engine share of the video
/// circuit. A pattern byte selects between two colours that stand in all eight bytes of a word; a
/// graphics byte becomes four pairs of equal pixels.

#include "cgenie/memory/memory.h"
#include "cgenie/video.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

constexpr uint32_t CELL_WIDTH = 8;
constexpr uint32_t VIDEO_RAM_START = 0x4000;
constexpr uint32_t VIDEO_RAM_MASK = 0x3FFF;
constexpr uint32_t COLOUR_RAM_MASK = 0x3FF;

/// FF in the byte of every pixel whose bit is set, in the order of memory.
constexpr std::array<uint64_t, 256> PATTERN_MASKS = [] {
    std::array<uint64_t, 256> masks = {};
    for (uint32_t pattern = 0; pattern < masks.size(); ++pattern) {
        std::array<uint8_t, CELL_WIDTH> pixels = {};
        for (uint32_t x = 0; x < CELL_WIDTH; ++x) pixels[x] = pattern & (0x80u >> x) ? 0xFF : 0;
        masks[pattern] = std::bit_cast<uint64_t>(pixels);
    }
    return masks;
}();

inline uint8_t video_ram(uint32_t offset) {
    return memory[VIDEO_RAM_START + (offset & VIDEO_RAM_MASK)];
}

inline uint8_t colour_ram(uint32_t offset) {
    return memory[COLOUR_RAM_START + (offset & COLOUR_RAM_MASK)] & 0x0F;
}

/// Where the patterns of each quarter of the code space come from, by character set selection.
/// The character RAM holds the codes from 80 on, so its table begins 80 x 8 bytes earlier.
inline const uint8_t* const (&selected_patterns())[4] {
    constexpr uint8_t* rom = current_charset;
    constexpr uint8_t* ram = memory + CHARACTER_RAM_START - 0x80 * 8;
    static constexpr const uint8_t* patterns[4][4] = {
        {rom, rom, ram, ram}, {rom, rom, ram, rom}, {rom, rom, rom, ram}, {rom, rom, rom, rom}};
    return patterns[(video_charset_selected >> 3) & 3];
}

/// Rows longer than 8 lines go on into the next character's pattern, and are blank after the last.
inline uint8_t pattern_line(const uint8_t* const (&patterns)[4], uint32_t code, uint32_t y) {
    const uint32_t index = code * 8 + y;
    return index < CHARSET_SIZE ? patterns[code >> 6][index] : 0;
}

inline uint64_t in_every_pixel(unsigned index) { return index * 0x0101010101010101u; }

inline void draw_pattern(uint8_t* pixels, uint8_t pattern, uint8_t colour, uint64_t background) {
    const uint64_t mask = PATTERN_MASKS[pattern];
    const uint64_t cell = (in_every_pixel(colour) & mask) | (background & ~mask);
    std::memcpy(pixels, &cell, sizeof cell);
}

/// FF in both bytes of every graphics pixel that has the bit `plane` (0 or 1) of its two bits set.
constexpr std::array<uint64_t, 256> plane_masks(uint32_t plane) {
    std::array<uint64_t, 256> masks = {};
    for (uint32_t value = 0; value < masks.size(); ++value) {
        std::array<uint8_t, CELL_WIDTH> pixels = {};
        for (uint32_t x = 0; x < CELL_WIDTH; ++x) {
            pixels[x] = value >> (6 - (x & 6)) & 1u << plane ? 0xFF : 0;
        }
        masks[value] = std::bit_cast<uint64_t>(pixels);
    }
    return masks;
}
constexpr std::array<uint64_t, 256> LOW_PLANE = plane_masks(0);
constexpr std::array<uint64_t, 256> HIGH_PLANE = plane_masks(1);

/// The background colour, and what each plane (and both together) changes in it by exclusive or; in
/// every pixel.
struct GraphicsColours {
    uint64_t background, low, high, both;
};
inline GraphicsColours graphics_colours() {
    const auto& colour = hires_palette;
    const auto changed = uint8_t(colour[0] ^ colour[1] ^ colour[2] ^ colour[3]);
    return {in_every_pixel(colour[0]), in_every_pixel(colour[0] ^ colour[1]),
            in_every_pixel(colour[0] ^ colour[2]), in_every_pixel(changed)};
}

inline void draw_graphics(uint8_t* pixels, uint8_t value, const GraphicsColours& colours) {
    const uint64_t low = LOW_PLANE[value];
    const uint64_t high = HIGH_PLANE[value];
    const uint64_t cell = colours.background ^ (colours.low & low) ^ (colours.high & high) ^
                          (colours.both & low & high);
    std::memcpy(pixels, &cell, sizeof cell);
}
