#include "media/files/sound_decoder.h"

#include "media/tape.h"

#include <algorithm>

namespace {

constexpr uint32_t HALF_BITS_PER_SECOND = 2400;
constexpr uint64_t MS_PER_SECOND = 1000;
constexpr size_t LARGEST_IMAGE = 1 << 20;
constexpr size_t SHORT_LEADER = 8;
/// Alternating bits in a row that are no chance; a leader has some two thousand.
constexpr uint32_t LEADER_BITS = 64;

// An interval between two changes, in halves of a bit.
constexpr double NOISE = 0.45;
constexpr double LONG = 1.5;
constexpr double SILENCE = 2.8;
constexpr double MOST_OFF = 1.4; ///< of the nominal speed
constexpr double SLOWNESS = 16;  ///< with which the speed is followed

} // namespace

SoundDecoder::SoundDecoder(const wav_format& wav, int level)
    : wav_(wav), middle_(wav.bits == 8 ? 128 : 0), width_(wav.bits == 8 ? level / 2 : level * 128),
      nominal_(double(wav.rate) / HALF_BITS_PER_SECOND), half_(nominal_) {}

void SoundDecoder::take(std::span<const uint8_t> samples) {
    const auto size = size_t(wav_sample_bytes(wav_));
    for (size_t at = 0; at + size <= samples.size(); at += size, ++sample_) {
        const int32_t value = wav_value(wav_, samples.data() + at);
        const bool changes = low_ ? value > middle_ + width_ : value <= middle_ - width_;
        if (!changes) continue;
        low_ = !low_;
        level_changed();
    }
}

void SoundDecoder::level_changed() {
    const auto interval = double(sample_ - changed_);
    changed_ = sample_;
    const double halves = interval / half_;
    if (halves < NOISE || halves > SILENCE) return lose();
    const bool is_long = halves > LONG;
    half_ += (interval / (is_long ? 2 : 1) - half_) / SLOWNESS;
    half_ = std::clamp(half_, nominal_ / MOST_OFF, nominal_ * MOST_OFF);
    if (!is_long) return half_bit();
    // A long one in the middle of a one: so far, the halves have been taken for the wrong ones.
    if (is_half_ && in_data_) lose();
    is_half_ = false;
    bit(false);
}

void SoundDecoder::half_bit() {
    is_half_ = !is_half_;
    if (!is_half_) bit(true);
}

void SoundDecoder::bit(bool one) {
    const bool alternates = one != ((bits_ & 1) != 0);
    bits_ = bits_ << 1 | (one ? 1 : 0);
    if (in_data_) {
        if (++bit_count_ % 8 == 0) keep(uint8_t(bits_), sample_);
        return;
    }
    if (alternates) {
        if (leader_bits_++ == 0) leader_ = sample_;
    } else if (leader_bits_ < LEADER_BITS) {
        leader_bits_ = 0;
    }
    if (leader_bits_ < LEADER_BITS || uint8_t(bits_) != TAPE_SYNC) return;
    for (size_t n = 0; n < SHORT_LEADER; ++n) keep(TAPE_LEADER, leader_);
    keep(TAPE_SYNC, sample_);
    in_data_ = true;
    bit_count_ = 0;
}

void SoundDecoder::keep(uint8_t byte, uint64_t sample) {
    if (image_.size() >= LARGEST_IMAGE) return;
    image_.push_back(byte);
    places_.push_back(uint32_t(sample * MS_PER_SECOND / wav_.rate));
}

void SoundDecoder::lose() {
    is_half_ = in_data_ = false;
    leader_bits_ = 0;
    half_ = nominal_;
}
