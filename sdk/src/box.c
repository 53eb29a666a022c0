#include "point.h"

#include <string.h>

/* The points of a byte whose bits are set in `mask`, in each row. */
static void fill_part(uint8_t *at, uint8_t mask, uint8_t pattern, uint8_t rows) {
    for (; rows; --rows, at += 40) *at = (*at & ~mask) | (pattern & mask);
}

void graphics_box(uint8_t x, uint8_t y, uint8_t width, uint8_t height, uint8_t colour) {
    const uint8_t rows = graphics_height(), pattern = point_pattern(colour);
    uint8_t end, first, behind; /* point behind the box, its bytes */
    uint8_t left_mask, right_mask;
    uint8_t *at;
    if (x >= GRAPHICS_WIDTH || y >= rows || !width || !height) return;
    if (width > GRAPHICS_WIDTH - x) width = GRAPHICS_WIDTH - x;
    if (height > rows - y) height = rows - y;
    end = x + width;
    first = x / 4;
    behind = end / 4;
    left_mask = 0xFF >> 2 * (x & 3);
    right_mask = ~(0xFF >> 2 * (end & 3));
    at = point_byte(x, y);
    if (first == behind) {
        fill_part(at, left_mask & right_mask, pattern, height);
        return;
    }
    if (right_mask) fill_part(at + (behind - first), right_mask, pattern, height);
    if (x & 3) {
        fill_part(at, left_mask, pattern, height);
        ++at;
        ++first;
    }
    if (first != behind) point_fill(at, pattern, behind - first, height);
}

void graphics_copy(uint8_t column, uint8_t y, uint8_t columns, uint8_t rows, const uint8_t *bytes) {
    uint8_t *at = point_byte(column * 4, y);
    for (; rows; --rows, at += 40, bytes += columns) memcpy(at, bytes, columns);
}
