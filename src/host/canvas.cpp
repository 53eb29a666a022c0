#include "host/canvas.h"

#include "cgenie/palette.h"

#include <algorithm>
#include <exception>

dib canvas;

namespace {
enum PaletteByte : size_t { BLUE, GREEN, RED };

size_t palette_entries(int bits) { return bits <= 8 ? size_t(1) << bits : 0; }
} // namespace

int dib_create(dib& bitmap, int width, int height, int bits) {
    dib_destroy(bitmap);
    const size_t row_bytes = size_t(width) * size_t(bits) / 8;
    try {
        bitmap.palette.assign(palette_entries(bits) * PALETTE_ENTRY_BYTES, 0);
        bitmap.pixels.assign(row_bytes * size_t(height), 0);
    } catch (const std::exception&) { // out of memory, or more than a vector can ever hold
        dib_destroy(bitmap);
        return 0;
    }
    bitmap.width = width;
    bitmap.height = height;
    bitmap.header.width = width;
    bitmap.header.height = -height;
    bitmap.header.bits = uint16_t(bits);
    return 1;
}

void dib_destroy(dib& bitmap) { bitmap = dib(); }

int dib_create_monopalette(dib& bitmap, int variant) {
    if (bitmap.header.bits > 8) {
        return 0;
    }
    const size_t entries = bitmap.palette.size() / PALETTE_ENTRY_BYTES;
    for (size_t i = 0; i < entries; ++i) {
        const uint8_t grey = uint8_t(i * 255 / (entries - 1));
        uint8_t* entry = &bitmap.palette[i * PALETTE_ENTRY_BYTES];
        entry[BLUE] = variant != 0 ? uint8_t(i / 2) : grey;
        entry[GREEN] = grey;
        entry[RED] = variant != 0 ? uint8_t(i) : grey;
    }
    return 1;
}

int dib_create_rgb_palette(dib& bitmap) {
    if (bitmap.header.bits <= 1 || bitmap.header.bits > 8) {
        return 0;
    }
    const size_t entries = bitmap.palette.size() / PALETTE_ENTRY_BYTES;
    for (size_t i = 0; i < entries; ++i) {
        uint8_t* entry = &bitmap.palette[i * PALETTE_ENTRY_BYTES];
        entry[BLUE] = video_get_palette_value(int(i), 2);
        entry[GREEN] = video_get_palette_value(int(i), 1);
        entry[RED] = video_get_palette_value(int(i), 0);
    }
    return 1;
}

void dib_clear_buffer(dib& bitmap) {
    std::fill(bitmap.pixels.begin(), bitmap.pixels.end(), uint8_t(0));
}
