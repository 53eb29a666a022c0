#pragma once
/// Pictures as they are recorded: rows of palette indices or colours with the header that they have
/// in a file.

#include <cstddef>
#include <cstdint>
#include <vector>

/// Device-independent bitmap header, as it stands in a BMP file.
struct bitmap_header {
    uint32_t size = 40;
    int32_t width = 0;
    int32_t height = 0; ///< negative: rows top-down
    uint16_t planes = 1;
    uint16_t bits = 0; ///< 1, 8 or 32 per pixel
    uint32_t compression = 0;
    uint32_t image_size = 0;
    int32_t x_pixels_per_metre = 0;
    int32_t y_pixels_per_metre = 0;
    uint32_t colours_used = 0;
    uint32_t colours_important = 0;
};
static_assert(sizeof(bitmap_header) == 40);

constexpr size_t PALETTE_ENTRY_BYTES = 4; ///< blue, green, red, 0

struct dib {
    int width = 0;
    int height = 0;
    bitmap_header header;
    std::vector<uint8_t> palette; ///< empty at 32 bits
    std::vector<uint8_t> pixels;  ///< rows of width x bits / 8 bytes, top row first
};
