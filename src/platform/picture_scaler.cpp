#include "platform/picture_scaler.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int WHOLE = 256;  ///< all of a mixture
constexpr int ROUNDING = 2; ///< pixels that rounded coordinates may be wrong by, at both ends

uint32_t mixed(uint32_t first, uint32_t second, uint32_t share) {
    constexpr uint32_t ODD = 0xFF00FF;
    const uint32_t rest = WHOLE - share;
    const uint32_t odd = ((first & ODD) * rest + (second & ODD) * share) >> 8 & ODD;
    const uint32_t even = ((first >> 8 & ODD) * rest + (second >> 8 & ODD) * share) & ~ODD;
    return odd | even;
}

/// Pixels that are mixed at a time. In a block of its own, of a known size, processors mix many
/// channels with one instruction.
constexpr size_t BLOCK = 8;
constexpr size_t BLOCK_BYTES = BLOCK * sizeof(uint32_t);

void mix_block(const uint32_t* first, const uint32_t* second, uint16_t share, uint32_t* out) {
    uint8_t one[BLOCK_BYTES];
    uint8_t other[BLOCK_BYTES];
    uint8_t both[BLOCK_BYTES];
    std::memcpy(one, first, BLOCK_BYTES);
    std::memcpy(other, second, BLOCK_BYTES);
    for (size_t n = 0; n < BLOCK_BYTES; ++n) {
        both[n] = uint8_t(uint16_t(one[n] * (WHOLE - share) + other[n] * share) >> 8);
    }
    std::memcpy(out, both, BLOCK_BYTES);
}

void mix_row(const uint32_t* first, const uint32_t* second, uint32_t share, size_t pixels,
             uint32_t* out) {
    size_t n = 0;
    for (; n + BLOCK <= pixels; n += BLOCK) {
        mix_block(first + n, second + n, uint16_t(share), out + n);
    }
    for (; n < pixels; ++n) out[n] = mixed(first[n], second[n], share);
}

/// A rectangle of the size in the middle of the area.
Rectangle in_the_middle(const Rectangle& area, Size size) {
    const int left = area.left + (area.width() - size.width) / 2;
    const int top = area.top + (area.height() - size.height) / 2;
    return {left, top, left + size.width, top + size.height};
}

} // namespace

Rectangle stretched_area(const Rectangle& target, Size picture, bool whole) {
    if (picture.width <= 0 || picture.height <= 0) return target;
    const int fits = std::min(target.width() / picture.width, target.height() / picture.height);
    const int near = (target.width() + ROUNDING) / picture.width;
    const Size multiple = {near * picture.width, near * picture.height};
    const bool meets = std::abs(target.width() - multiple.width) <= ROUNDING &&
                       std::abs(target.height() - multiple.height) <= ROUNDING;
    if (near > 0 && meets) return in_the_middle(target, multiple);
    if (!whole || fits < 1) return target;
    return in_the_middle(target, {fits * picture.width, fits * picture.height});
}

/// Exact in whole numbers, so that equal places have equal mixtures.
std::vector<PictureScaler::Tap> PictureScaler::taps(int from, int to, bool smooth) {
    std::vector<Tap> taps(size_t(std::max(to, 0)));
    for (int n = 0; n < to; ++n) {
        Tap& tap = taps[size_t(n)];
        if (smooth || to < from) {
            // The middle of the pixel, counted from the middle of the first one, in 1 / (2 * to).
            const int64_t last = int64_t{2} * to * (from - 1);
            const int64_t place = std::clamp((int64_t{2} * n + 1) * from - to, int64_t{0}, last);
            tap = {int(place / (2 * to)), uint32_t(place % (2 * to) * WHOLE / (2 * to))};
        } else {
            // The pixel covers `from` parts, of which a pixel of the picture has `to`.
            const int64_t left = int64_t{n} * from;
            const int at = int(left / to);
            const int64_t beyond = left + from - int64_t{at + 1} * to;
            tap = {at, uint32_t(std::max<int64_t>(beyond, 0) * WHOLE / from)};
        }
        if (tap.at + 1 >= from) tap.next = 0;
    }
    return taps;
}

void PictureScaler::prepare(Size from, Size to, bool smooth) {
    if (from == from_ && to == to_ && smooth == smooth_) return;
    from_ = from;
    to_ = to;
    smooth_ = smooth;
    columns_ = taps(from.width, to.width, smooth);
    rows_ = taps(from.height, to.height, smooth);
    plain_columns_ = std::ranges::all_of(columns_, [](const Tap& tap) { return tap.next == 0; });
    for (Row& row : kept_) row.pixels.resize(columns_.size());
}

void PictureScaler::begin(const uint32_t* pixels) {
    pixels_ = pixels;
    for (Row& row : kept_) row.at = -1;
}

const uint32_t* PictureScaler::stretched_row(int at) {
    Row& row = kept_[at % 2];
    if (row.at == at) return row.pixels.data();
    row.at = at;
    const uint32_t* source = pixels_ + ptrdiff_t{at} * from_.width;
    if (plain_columns_) {
        std::ranges::transform(columns_, row.pixels.begin(),
                               [source](const Tap& tap) { return source[tap.at]; });
    } else {
        std::ranges::transform(columns_, row.pixels.begin(), [source](const Tap& tap) {
            const uint32_t* pixel = source + tap.at;
            return tap.next ? mixed(pixel[0], pixel[1], tap.next) : *pixel;
        });
    }
    return row.pixels.data();
}

void PictureScaler::row(int y, uint32_t* out) {
    const auto [at, share] = rows_[size_t(y)];
    const uint32_t* first = stretched_row(at);
    if (!share) {
        std::memcpy(out, first, columns_.size() * sizeof(uint32_t));
        return;
    }
    mix_row(first, stretched_row(at + 1), share, columns_.size(), out);
}
