#include "platform/sdl/sdl_audio.h"

#include <SDL.h>

#include <algorithm>
#include <utility>

namespace {
constexpr uint32_t SAMPLE_BYTES = 2;
} // namespace

SdlAudio::~SdlAudio() { release_device(); }

bool SdlAudio::library_available() { return SDL_GetNumAudioDrivers() > 0; }

std::string SdlAudio::error() { return SDL_GetError(); }

bool SdlAudio::create_device() {
    release_device();
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1"); // signals are the window's
    SDL_SetHint(SDL_HINT_APP_NAME, "Tarvelin");
    started_ = SDL_InitSubSystem(SDL_INIT_AUDIO) == 0;
    return started_;
}

bool SdlAudio::set_format(int rate, int block) {
    close();
    rate_ = rate;
    block_ = block;
    return open();
}

bool SdlAudio::open() {
    SDL_AudioSpec wanted{};
    wanted.freq = rate_;
    wanted.format = AUDIO_S16SYS;
    wanted.channels = 1;
    wanted.samples = uint16_t(block_);
    wanted.callback = fill;
    wanted.userdata = this;
    if (started_) device_ = SDL_OpenAudioDevice(nullptr, 0, &wanted, nullptr, 0);
    return device_ != 0;
}

void SdlAudio::close() {
    if (device_) SDL_CloseAudioDevice(device_);
    device_ = 0;
}

/// Whether the device was unplugged. SDL goes on taking data for it, which are not heard.
bool SdlAudio::lost() const {
    return !device_ || SDL_GetAudioDeviceStatus(device_) == SDL_AUDIO_STOPPED;
}

bool SdlAudio::create_ring(uint32_t bytes, int rate) {
    if (lost() || rate != rate_) return false;
    replace_ring(std::vector<uint8_t>(bytes));
    return true;
}

void SdlAudio::replace_ring(std::vector<uint8_t> ring) {
    if (device_) SDL_LockAudioDevice(device_);
    ring_ = std::move(ring);
    read_ = 0;
    written_ = 0;
    if (device_) SDL_UnlockAudioDevice(device_);
}

bool SdlAudio::lock(uint32_t offset, uint32_t bytes, std::span<uint8_t>& first,
                    std::span<uint8_t>& second) {
    if (lost() || offset >= ring_.size() || bytes > ring_.size()) return false;
    SDL_LockAudioDevice(device_);
    const std::span<uint8_t> whole(ring_);
    const size_t before_end = std::min<size_t>(bytes, ring_.size() - offset);
    first = whole.subspan(offset, before_end);
    second = whole.first(bytes - before_end);
    written_ = (offset + bytes) % ring_.size();
    return true;
}

bool SdlAudio::unlock() {
    SDL_UnlockAudioDevice(device_);
    return true;
}

bool SdlAudio::play() {
    if (!device_) return false;
    if (!playing_) SDL_PauseAudioDevice(device_, 0);
    playing_ = true;
    return true;
}

void SdlAudio::stop() {
    if (device_) SDL_PauseAudioDevice(device_, 1);
    playing_ = false;
}

int32_t SdlAudio::position() { return lost() || ring_.empty() ? -1 : int32_t(read_); }

uint32_t SdlAudio::block_bytes() { return lost() ? 0 : uint32_t(block_) * SAMPLE_BYTES; }

void SdlAudio::seek(uint32_t offset) {
    SDL_LockAudioDevice(device_);
    if (offset < ring_.size()) read_ = offset;
    SDL_UnlockAudioDevice(device_);
}

void SdlAudio::restore() {
    if (!lost()) return;
    close();
    if (open() && playing_) SDL_PauseAudioDevice(device_, 0);
}

void SdlAudio::release_ring() { replace_ring({}); }

void SdlAudio::release_device() {
    close();
    playing_ = false;
    if (started_) SDL_QuitSubSystem(SDL_INIT_AUDIO);
    started_ = false;
}

void SdlAudio::fill(void* audio, uint8_t* stream, int bytes) {
    static_cast<SdlAudio*>(audio)->take({stream, size_t(bytes)});
}

/// Called on the device's thread. What has been taken is replaced by silence, so that the ring does
/// not repeat its last second while the machine stands still.
void SdlAudio::take(std::span<uint8_t> stream) {
    if (ring_.empty()) {
        std::ranges::fill(stream, uint8_t(0));
        return;
    }
    size_t at = read_;
    const size_t written_ahead = (written_ + ring_.size() - at) % ring_.size();
    if (written_ahead < stream.size()) ++underruns_;
    while (!stream.empty()) {
        const size_t run = std::min(stream.size(), ring_.size() - at);
        const std::span<uint8_t> taken = std::span(ring_).subspan(at, run);
        std::ranges::copy(taken, stream.begin());
        std::ranges::fill(taken, uint8_t(0));
        stream = stream.subspan(run);
        at = (at + run) % ring_.size();
    }
    read_ = uint32_t(at);
}
