#pragma once
/// The canvas: the host bitmap that the frame is drawn into, source of the window's picture, of
/// screenshots and of video.

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

extern dib canvas;

/// Replaces the bitmap by a black one of the given shape. 0 when there is no memory.
int dib_create(dib& bitmap, int width, int height, int bits);
/// Frees the pixels; the record is as new.
void dib_destroy(dib& bitmap);
/// Ramp from black, for up to 8 bits per pixel: grey for variant 0, else tinted. 0 for more bits.
int dib_create_monopalette(dib& bitmap, int variant);
/// The machine's palette, for 8 bits per pixel; 0 for others.
int dib_create_rgb_palette(dib& bitmap);
/// All pixels to 0.
void dib_clear_buffer(dib& bitmap);
