#include "platform/web/web_audio.h"

#include "platform/web/web_page.h"

#include <algorithm>
#include <cstddef>
#include <utility>

std::string WebAudio::error() { return ask_page("sound.problem").value_or(""); }

bool WebAudio::create_device() {
    release_device();
    return call_page("sound.open") != 0;
}

/// The worklet makes the device's rate of it; the browser knows best how much to take at a time.
bool WebAudio::set_format(int rate, int /*block*/) {
    rate_ = rate;
    return true;
}

uint32_t WebAudio::block_bytes() { return uint32_t(call_page("sound.blockBytes")); }

bool WebAudio::create_ring(uint32_t bytes, int rate) {
    if (rate != rate_ || call_page("sound.createRing", bytes, rate) == 0) return false;
    ring_.assign(bytes, 0);
    silent_to_ = 0;
    return true;
}

bool WebAudio::lock(uint32_t offset, uint32_t bytes, std::span<uint8_t>& first,
                    std::span<uint8_t>& second) {
    if (offset >= ring_.size() || bytes > ring_.size() || call_page("sound.isLost") != 0) {
        return false;
    }
    const std::span<uint8_t> whole(ring_);
    const size_t before_end = std::min<size_t>(bytes, ring_.size() - offset);
    first = locked_[0] = whole.subspan(offset, before_end);
    second = locked_[1] = whole.first(bytes - before_end);
    return true;
}

bool WebAudio::unlock() {
    for (std::span<uint8_t>& written : locked_) {
        if (written.empty()) continue;
        give_page("sound.write", written, uint32_t(written.data() - ring_.data()));
        written = {};
    }
    return true;
}

bool WebAudio::play() {
    if (!std::exchange(playing_, true)) call_page("sound.play", true);
    return true;
}

void WebAudio::stop() {
    if (std::exchange(playing_, false)) call_page("sound.play", false);
}

int32_t WebAudio::position() {
    if (ring_.empty()) return -1;
    const auto taken = int64_t(call_page("sound.position"));
    if (taken < 0) return -1;
    silence_taken(taken);
    return int32_t(taken % int64_t(ring_.size()));
}

void WebAudio::seek(uint32_t offset) {
    if (offset >= ring_.size()) return;
    call_page("sound.seek", offset);
    silent_to_ = offset;
}

uint32_t WebAudio::underruns() { return uint32_t(call_page("sound.underruns")); }

void WebAudio::restore() { call_page("sound.restore"); }

void WebAudio::release_ring() { ring_.clear(); }

void WebAudio::release_device() {
    release_ring();
    playing_ = false;
    call_page("sound.close");
}

/// As the worklet does it, so that what is asked for next is only what has not been heard.
void WebAudio::silence_taken(int64_t taken) {
    const auto size = int64_t(ring_.size());
    for (int64_t at = std::max(silent_to_, taken - size); at < taken;) {
        const int64_t offset = at % size;
        const int64_t run = std::min(taken - at, size - offset);
        std::fill_n(ring_.begin() + offset, run, uint8_t(0));
        at += run;
    }
    silent_to_ = taken;
}
