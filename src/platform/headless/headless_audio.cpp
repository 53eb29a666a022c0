#include "platform/headless/headless_audio.h"

#include <algorithm>

namespace {
constexpr int64_t NS_PER_SECOND = 1'000'000'000;
constexpr int64_t SAMPLE_BYTES = 2;
} // namespace

bool HeadlessAudio::set_format(int samples_per_second, int) {
    if (!works(AudioStep::format)) return false;
    rate = samples_per_second;
    return true;
}

bool HeadlessAudio::create_ring(uint32_t bytes, int samples_per_second) {
    if (!works(AudioStep::ring) || samples_per_second != rate) return false;
    ring.assign(bytes, 0);
    before_ = 0;
    started_ = now_();
    return true;
}

bool HeadlessAudio::lock(uint32_t offset, uint32_t bytes, std::span<uint8_t>& first,
                         std::span<uint8_t>& second) {
    if (lost || offset >= ring.size() || bytes > ring.size()) return false;
    const std::span<uint8_t> whole(ring);
    const size_t before_end = std::min<size_t>(bytes, ring.size() - offset);
    first = whole.subspan(offset, before_end);
    second = whole.first(bytes - before_end);
    return true;
}

bool HeadlessAudio::play() {
    if (!works(AudioStep::play)) return false;
    if (playing) return true;
    playing = true;
    started_ = now_();
    ++plays;
    return true;
}

void HeadlessAudio::stop() {
    if (!playing) return;
    before_ = played_bytes();
    playing = false;
    ++stops;
}

int64_t HeadlessAudio::played_bytes() const {
    if (!playing) return before_;
    const int64_t elapsed = now_() - started_;
    const int64_t samples =
        elapsed / NS_PER_SECOND * rate + elapsed % NS_PER_SECOND * rate / NS_PER_SECOND;
    return before_ + samples * SAMPLE_BYTES;
}

int32_t HeadlessAudio::position() {
    if (lost || ring.empty()) return -1;
    return fixed_position ? *fixed_position : int32_t(played_bytes() % int64_t(ring.size()));
}

void HeadlessAudio::seek(uint32_t offset) {
    before_ = offset;
    started_ = now_();
}

void HeadlessAudio::restore() {
    lost = false;
    ++restores;
}
