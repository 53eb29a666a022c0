#include "cgenie/video_output.h"

#include "cgenie/palette.h"
#include "cgenie/video.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {
constexpr size_t WIDE_LINE = 2 * SCREEN_WIDTH;

void blacken(uint8_t* indices) { std::fill_n(indices, WIDE_LINE, uint8_t(BLACK_INDEX)); }
void blacken(uint32_t* colours) { std::fill_n(colours, WIDE_LINE, 0); }

void dim(uint8_t* indices) {
    for (size_t x = 0; x < WIDE_LINE; ++x) indices[x] = uint8_t(indices[x] + PALETTE_ENTRIES);
}
void dim(uint32_t* colours) { palette_dim(colours, WIDE_LINE); }

/// Writes one line of the frame: as it is, or as two lines of double width, of which the second may
/// be black or dimmed. Returns the place of the next line.
template <typename Pixel>
uint8_t* write_line(uint8_t* destination, const Pixel* line, bool doubled, bool black_odd_line) {
    constexpr size_t LINE_BYTES = SCREEN_WIDTH * sizeof(Pixel);
    if (!doubled) {
        std::memcpy(destination, line, LINE_BYTES);
        return destination + LINE_BYTES;
    }
    Pixel wide[WIDE_LINE];
    for (int x = 0; x < SCREEN_WIDTH; ++x) wide[2 * x] = wide[2 * x + 1] = line[x];
    std::memcpy(destination, wide, sizeof wide);
    if (black_odd_line) {
        blacken(wide);
    } else if (palette_dims_lines()) {
        dim(wide);
    }
    std::memcpy(destination + sizeof wide, wide, sizeof wide);
    return destination + 2 * sizeof wide;
}

/// The last picture that has gone through the composite filter, and what came out. A cache, and no
/// part of the machine's state: every line is compared with it before it is used.
struct FilteredPicture {
    bool valid = false;
    yuv_pixel palette[std::size(yuv_palette)];
    uint8_t frame[SCREEN_HEIGHT + 1][SCREEN_WIDTH];
    uint32_t colours[SCREEN_HEIGHT][SCREEN_WIDTH];
};
FilteredPicture television;

bool palette_changed() {
    return std::memcmp(television.palette, yuv_palette, sizeof yuv_palette) != 0;
}

/// A line comes out as it did before unless it or the one below it has changed; in most programs
/// few do from one frame to the next.
void filter_changed_lines() {
    const bool all = !television.valid || palette_changed();
    bool changed = false; // of the line below
    for (int y = SCREEN_HEIGHT; y >= 0; --y) {
        const uint8_t* line = frame_buffer + y * SCREEN_WIDTH;
        const bool below_changed = changed;
        changed = all || std::memcmp(television.frame[y], line, SCREEN_WIDTH) != 0;
        if (changed) std::memcpy(television.frame[y], line, SCREEN_WIDTH);
        if (y == SCREEN_HEIGHT || !(changed || below_changed)) continue;
        yuv_pixel filtered[SCREEN_WIDTH];
        video_yuv_filter(line, filtered, SCREEN_WIDTH, 1, SCREEN_WIDTH);
        yuv_to_rgb(filtered, television.colours[y], SCREEN_WIDTH);
    }
    std::memcpy(television.palette, yuv_palette, sizeof yuv_palette);
    television.valid = true;
}
} // namespace

void video_resize_frame(uint8_t* destination, int, int width, int blur, int black_odd_lines) {
    const bool doubled = width == 2 * SCREEN_WIDTH;
    const bool black_odd = black_odd_lines != 0;
    if (blur) filter_changed_lines();
    for (int y = 0; y < SCREEN_HEIGHT; ++y) {
        if (blur) {
            destination = write_line(destination, television.colours[y], doubled, black_odd);
        } else {
            destination =
                write_line(destination, frame_buffer + y * SCREEN_WIDTH, doubled, black_odd);
        }
    }
}
