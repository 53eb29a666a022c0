#pragma once
/// Stretches pictures of 32 bits per pixel. Sharp, a pixel of the target has the mean colour of the
/// area that it covers: pixels keep their edges, and all of them get the same width, be the factor
/// whole or not. Smooth, colours are interpolated between the middles of pixels; a picture that
/// becomes smaller is always smooth.

#include "platform/geometry.h"

#include <cstdint>
#include <vector>

/// Where a picture goes that is stretched into `target`, both in pixels of the screen: with `whole`
/// to its largest whole multiple, in the target's middle, if the target has room for it at all. A
/// target that misses a whole multiple only by the rounding of coordinates becomes it.
Rectangle stretched_area(const Rectangle& target, Size picture, bool whole);

class PictureScaler {
public:
    /// Gets ready for pictures of the size `from`. Both sizes must be positive.
    void prepare(Size from, Size to, bool smooth);
    /// Takes a picture, in rows without padding; it must stay while rows are asked for.
    void begin(const uint32_t* pixels);
    /// Writes the row `y` of the stretched picture, as wide as `to`.
    void row(int y, uint32_t* out);

private:
    /// A mixture of a pixel and the next one.
    struct Tap {
        int at = 0;
        uint32_t next = 0; ///< share of the next one, of 256
    };
    struct Row {
        int at = -1; ///< in the picture; -1: none
        std::vector<uint32_t> pixels;
    };

    static std::vector<Tap> taps(int from, int to, bool smooth);
    const uint32_t* stretched_row(int at);

    Size from_, to_;
    bool smooth_ = false;
    bool plain_columns_ = false; ///< nothing is mixed
    std::vector<Tap> columns_, rows_;
    const uint32_t* pixels_ = nullptr;
    Row kept_[2]; ///< rows of the picture in their new width, even ones in the first
};
