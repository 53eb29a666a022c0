#pragma once
/// Sound by DirectSound, which is loaded when the sound is first switched on. The ring is a sound
/// buffer that loops; Windows mixes it into the default device. What the device has taken is
/// replaced by silence, so that the ring does not repeat its last second while the program is held
/// up or a dialog of Windows is open.

#include "platform/audio.h"
#include "platform/win32/win32_context.h"
#include "platform/win32/win32_library.h"

#include <array>
#include <mutex>
#include <optional>

#include <mmsystem.h>

#include <dsound.h>

class Win32Audio final : public Audio {
public:
    explicit Win32Audio(Win32Context& context) : context_(context) {}
    Win32Audio(const Win32Audio&) = delete;
    Win32Audio& operator=(const Win32Audio&) = delete;
    ~Win32Audio() override { release_device(); }

    bool library_available() override;
    std::string error() override;
    bool create_device() override;
    bool set_cooperative() override;
    bool create_primary() override;
    /// The block is DirectSound's own.
    bool set_format(int rate, int block) override;
    uint32_t block_bytes() override;
    bool create_ring(uint32_t bytes, int rate) override;
    bool has_ring() override { return ring_ != nullptr; }
    /// The regions are the ring itself; the device goes on.
    bool lock(uint32_t offset, uint32_t bytes, std::span<uint8_t>& first,
              std::span<uint8_t>& second) override;
    bool unlock() override;
    bool play() override;
    void stop() override;
    /// The write cursor.
    int32_t position() override;
    void seek(uint32_t offset) override;
    uint32_t underruns() override { return underruns_; }
    void restore() override;
    void release_ring() override;
    void release_device() override;

private:
    struct Cursors {
        DWORD play = 0;  ///< what is heard next
        DWORD write = 0; ///< the first byte that the device has not taken
    };

    bool worked(HRESULT result);
    std::optional<Cursors> cursors();
    /// Bytes from `from` to `to`, by the shorter way round the ring; negative when `to` lies
    /// behind.
    int32_t distance(DWORD from, DWORD to) const;
    void silence_heard(DWORD play);
    void start_silencing();
    void end_silencing();
    static void CALLBACK silence(PTP_CALLBACK_INSTANCE, void* audio, PTP_TIMER);

    Win32Context& context_;
    std::optional<Win32Library> library_;
    decltype(&DirectSoundCreate) create_ = nullptr;
    HRESULT result_ = DS_OK; ///< of the latest step
    ComPointer<IDirectSound> device_;
    ComPointer<IDirectSoundBuffer> primary_;
    ComPointer<IDirectSoundBuffer> ring_;
    int rate_ = 0;
    DWORD ring_bytes_ = 0;
    bool playing_ = false;
    std::array<std::span<uint8_t>, 2> locked_;
    DWORD written_ = 0; ///< byte offset up to which the ring was written last
    uint32_t underruns_ = 0;
    std::mutex silencing_; ///< held by whoever silences or moves the cursors
    DWORD silent_ = 0;     ///< byte offset up to which it has been made silent
    PTP_TIMER timer_ = nullptr;
};
