#pragma once
#include "platform/geometry.h"

#include <array>
#include <cstdint>

/// Reads the pixels of a picture as FFRRGGBB, whatever its depth. The picture must stay meanwhile.
class BitmapReader {
public:
    explicit BitmapReader(const BitmapView& picture);
    /// `count` pixels of the row `y`, from the pixel `first` on; all of them must exist.
    void read(int y, int first, int count, uint32_t* out) const;

private:
    BitmapView picture_;
    std::array<uint32_t, 256> colours_; ///< of up to 8 bits per pixel
};
