#include "platform/bitmap_reader.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace {
constexpr uint32_t OPAQUE_BLACK = 0xFF000000;
} // namespace

BitmapReader::BitmapReader(const BitmapView& picture) : picture_(picture) {
    colours_.fill(OPAQUE_BLACK);
    if (picture.bits > 8 || !picture.palette) return;
    for (int n = 0; n < 1 << picture.bits; ++n) {
        const uint8_t* entry = picture.palette + ptrdiff_t{4} * n;
        colours_[size_t(n)] =
            OPAQUE_BLACK | uint32_t(entry[2]) << 16 | uint32_t(entry[1]) << 8 | entry[0];
    }
}

void BitmapReader::read(int y, int first, int count, uint32_t* out) const {
    const size_t row_bytes = size_t(picture_.width) * size_t(picture_.bits) / 8;
    const uint8_t* row = picture_.pixels + size_t(y) * row_bytes;
    if (picture_.bits == 32) {
        std::memcpy(out, row + size_t(first) * 4, size_t(count) * 4);
        std::for_each(out, out + count, [](uint32_t& pixel) { pixel |= OPAQUE_BLACK; });
        return;
    }
    if (picture_.bits == 8) {
        std::transform(row + first, row + first + count, out,
                       [this](uint8_t pixel) { return colours_[pixel]; });
        return;
    }
    for (int n = first; n < first + count; ++n) {
        *out++ = colours_[row[n / 8] >> (7 - n % 8) & 1];
    }
}
