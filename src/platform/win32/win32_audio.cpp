#include "platform/win32/win32_audio.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace {

constexpr WORD CHANNELS = 1;
constexpr WORD SAMPLE_BITS = 16;
constexpr WORD SAMPLE_BYTES = SAMPLE_BITS / 8;
/// DirectSound mixes ahead in steps of so many milliseconds; the cursors move by them.
constexpr int MIXING_STEP = 10;
constexpr DWORD SILENCE_INTERVAL = 100; ///< ms; much less than the ring's second

constexpr std::pair<HRESULT, const char*> RESULTS[] = {
    {DSERR_ALLOCATED, "another program has the sound device to itself"},
    {DSERR_BADFORMAT, "the sound device does not have this format"},
    {DSERR_BUFFERLOST, "the sound device is lost"},
    {DSERR_BUFFERTOOSMALL, "the sound device needs a larger buffer"},
    {DSERR_INVALIDPARAM, "DirectSound does not take these values"},
    {DSERR_NODRIVER, "there is no sound device"},
    {DSERR_OTHERAPPHASPRIO, "another program has the sound device to itself"},
    {DSERR_OUTOFMEMORY, "there is not enough memory"},
    {DSERR_PRIOLEVELNEEDED, "DirectSound needs a higher cooperative level"},
    {DSERR_UNSUPPORTED, "DirectSound cannot do this"},
};

WAVEFORMATEX mono(int rate) {
    WAVEFORMATEX format{};
    format.wFormatTag = WAVE_FORMAT_PCM;
    format.nChannels = CHANNELS;
    format.nSamplesPerSec = DWORD(rate);
    format.nAvgBytesPerSec = DWORD(rate) * SAMPLE_BYTES;
    format.nBlockAlign = SAMPLE_BYTES;
    format.wBitsPerSample = SAMPLE_BITS;
    return format;
}

/// The bytes of a buffer while it is locked.
class Region {
public:
    Region(IDirectSoundBuffer& buffer, DWORD offset, DWORD bytes) : buffer_(buffer) {
        const HRESULT result =
            buffer_.Lock(offset, bytes, &first_, &first_bytes_, &second_, &second_bytes_, 0);
        locked_ = SUCCEEDED(result);
    }
    Region(const Region&) = delete;
    Region& operator=(const Region&) = delete;
    ~Region() {
        if (locked_) buffer_.Unlock(first_, first_bytes_, second_, second_bytes_);
    }
    void silence() {
        if (!locked_) return;
        std::fill_n(static_cast<uint8_t*>(first_), first_bytes_, uint8_t(0));
        if (second_) std::fill_n(static_cast<uint8_t*>(second_), second_bytes_, uint8_t(0));
    }

private:
    IDirectSoundBuffer& buffer_;
    void* first_ = nullptr;
    void* second_ = nullptr;
    DWORD first_bytes_ = 0;
    DWORD second_bytes_ = 0;
    bool locked_ = false;
};

} // namespace

bool Win32Audio::worked(HRESULT result) {
    result_ = result;
    return SUCCEEDED(result);
}

std::string Win32Audio::error() {
    if (SUCCEEDED(result_)) return {};
    for (const auto& [result, text] : RESULTS) {
        if (result == result_) return text;
    }
    char text[32];
    std::snprintf(text, sizeof text, "DirectSound error %08lX",
                  static_cast<unsigned long>(result_));
    return text;
}

bool Win32Audio::library_available() {
    result_ = DS_OK;
    if (!library_) library_.emplace(L"dsound.dll");
    return library_->find("DirectSoundCreate", create_);
}

bool Win32Audio::create_device() {
    release_device();
    return create_ && worked(create_(nullptr, ComResult(device_), nullptr));
}

bool Win32Audio::set_cooperative() {
    return worked(device_->SetCooperativeLevel(context_.window, DSSCL_EXCLUSIVE));
}

bool Win32Audio::create_primary() {
    DSBUFFERDESC description{};
    description.dwSize = sizeof description;
    description.dwFlags = DSBCAPS_PRIMARYBUFFER;
    return worked(device_->CreateSoundBuffer(&description, ComResult(primary_), nullptr));
}

bool Win32Audio::set_format(int rate, int) {
    const WAVEFORMATEX format = mono(rate);
    rate_ = rate;
    return worked(primary_->SetFormat(&format));
}

uint32_t Win32Audio::block_bytes() {
    return device_ ? uint32_t(rate_ * MIXING_STEP / 1000 * SAMPLE_BYTES) : 0;
}

/// Heard also while another window is the active one; whether the machine runs then is the shell's.
bool Win32Audio::create_ring(uint32_t bytes, int rate) {
    release_ring();
    WAVEFORMATEX format = mono(rate);
    DSBUFFERDESC description{};
    description.dwSize = sizeof description;
    description.dwFlags = DSBCAPS_GETCURRENTPOSITION2 | DSBCAPS_GLOBALFOCUS;
    description.dwBufferBytes = bytes;
    description.lpwfxFormat = &format;
    if (!device_ || !worked(device_->CreateSoundBuffer(&description, ComResult(ring_), nullptr))) {
        return false;
    }
    ring_bytes_ = bytes;
    Region(*ring_, 0, bytes).silence();
    start_silencing();
    return true;
}

bool Win32Audio::lock(uint32_t offset, uint32_t bytes, std::span<uint8_t>& first,
                      std::span<uint8_t>& second) {
    if (!ring_ || offset >= ring_bytes_ || bytes > ring_bytes_) return false;
    void* regions[2] = {};
    DWORD sizes[2] = {};
    if (!worked(ring_->Lock(offset, bytes, &regions[0], &sizes[0], &regions[1], &sizes[1], 0))) {
        return false;
    }
    for (size_t n = 0; n < 2; ++n) locked_[n] = {static_cast<uint8_t*>(regions[n]), sizes[n]};
    first = locked_[0];
    second = locked_[1];
    written_ = (offset + bytes) % ring_bytes_;
    return true;
}

bool Win32Audio::unlock() {
    const auto [first, second] = std::exchange(locked_, {});
    return ring_ && worked(ring_->Unlock(first.data(), DWORD(first.size()), second.data(),
                                         DWORD(second.size())));
}

bool Win32Audio::play() {
    if (playing_) return true;
    if (!primary_ || !worked(primary_->Play(0, 0, DSBPLAY_LOOPING))) return false;
    if (ring_ && !worked(ring_->Play(0, 0, DSBPLAY_LOOPING))) return false;
    return playing_ = true;
}

void Win32Audio::stop() {
    if (ring_) ring_->Stop();
    if (primary_) primary_->Stop();
    playing_ = false;
}

std::optional<Win32Audio::Cursors> Win32Audio::cursors() {
    Cursors at;
    if (!ring_ || !worked(ring_->GetCurrentPosition(&at.play, &at.write))) return {};
    return at;
}

int32_t Win32Audio::distance(DWORD from, DWORD to) const {
    const DWORD forward = (to + ring_bytes_ - from) % ring_bytes_;
    return int32_t(forward) - (forward >= ring_bytes_ / 2 ? int32_t(ring_bytes_) : 0);
}

int32_t Win32Audio::position() {
    const std::optional<Cursors> at = cursors();
    if (!at) return -1;
    if (playing_ && distance(at->write, written_) < 0) ++underruns_;
    return int32_t(at->write);
}

/// The play cursor is what can be set; the write cursor keeps its distance.
void Win32Audio::seek(uint32_t offset) {
    const std::scoped_lock lock(silencing_);
    const std::optional<Cursors> at = cursors();
    if (!at || offset >= ring_bytes_) return;
    const DWORD taken = (at->write + ring_bytes_ - at->play) % ring_bytes_;
    const DWORD play = (offset + ring_bytes_ - taken) % ring_bytes_;
    silence_heard(at->play);
    silence_heard(play);
    worked(ring_->SetCurrentPosition(play));
}

void Win32Audio::restore() {
    if (primary_) primary_->Restore();
    if (!ring_ || !worked(ring_->Restore())) return;
    Region(*ring_, 0, ring_bytes_).silence();
    if (std::exchange(playing_, false)) play();
}

void Win32Audio::release_ring() {
    end_silencing();
    ring_.reset();
}

void Win32Audio::release_device() {
    release_ring();
    primary_.reset();
    device_.reset();
    playing_ = false;
}

/// Silences what was heard since the last time. After a longer while than half the ring nothing is
/// done: the program was held up, and the ring is silent or being written anew.
void Win32Audio::silence_heard(DWORD play) {
    const int32_t heard = distance(silent_, play);
    if (heard > 0) Region(*ring_, silent_, DWORD(heard)).silence();
    silent_ = play;
}

void Win32Audio::start_silencing() {
    silent_ = 0;
    timer_ = CreateThreadpoolTimer(silence, this, nullptr);
    FILETIME at_once{};
    if (timer_) SetThreadpoolTimer(timer_, &at_once, SILENCE_INTERVAL, 0);
}

void Win32Audio::end_silencing() {
    if (!timer_) return;
    SetThreadpoolTimer(timer_, nullptr, 0, 0);
    WaitForThreadpoolTimerCallbacks(timer_, TRUE);
    CloseThreadpoolTimer(std::exchange(timer_, nullptr));
}

/// On a thread of Windows.
void CALLBACK Win32Audio::silence(PTP_CALLBACK_INSTANCE, void* audio, PTP_TIMER) {
    auto& self = *static_cast<Win32Audio*>(audio);
    const std::scoped_lock lock(self.silencing_);
    DWORD play = 0;
    DWORD write = 0;
    if (SUCCEEDED(self.ring_->GetCurrentPosition(&play, &write))) self.silence_heard(play);
}
