#pragma once
/// What a recording of a cassette has on it, heard without the machine: 1200 bits a second, each of
/// which begins with a change of level; a one changes a second time in its middle. The speed may be
/// up to a third off. A recording that is too weak or too noisy gives less, or nothing.

#include "media/wav_samples.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

class SoundDecoder {
public:
    /// `level` as tape_set_compare_level has it.
    SoundDecoder(const wav_format& wav, int level);

    /// The samples that come next, as bytes of the file; an incomplete one at the end is left out.
    void take(std::span<const uint8_t> samples);
    /// A cassette image of all that was found up to now. Each piece begins with a short leader.
    std::span<const uint8_t> image() const { return image_; }
    /// When a byte of the image comes on the tape, in milliseconds.
    uint32_t place(size_t byte) const { return byte < places_.size() ? places_[byte] : 0; }

private:
    void level_changed();
    void half_bit();
    void bit(bool one);
    void keep(uint8_t byte, uint64_t sample);
    void lose();

    wav_format wav_;
    int32_t middle_, width_;
    double nominal_;       ///< samples of half a bit
    double half_;          ///< the same at the speed that is heard
    uint64_t sample_ = 0;  ///< how many have come
    uint64_t changed_ = 0; ///< where the level changed last
    bool low_ = false;
    bool is_half_ = false;     ///< of a one the first half has come
    uint32_t bits_ = 0;        ///< the last ones
    uint32_t leader_bits_ = 0; ///< alternating ones in a row
    uint64_t leader_ = 0;      ///< where they began
    bool in_data_ = false;     ///< behind a sync byte
    int bit_count_ = 0;        ///< of the byte that is heard
    std::vector<uint8_t> image_;
    std::vector<uint32_t> places_; ///< of its bytes
};
