#pragma once
/// The default audio device by SDL. Its thread takes the ring's data as the device asks for them;
/// SDL converts to what the device wants. The audio system starts with the first device, and ends
/// with it.

#include "platform/audio.h"

#include <atomic>
#include <cstdint>
#include <vector>

class SdlAudio final : public Audio {
public:
    SdlAudio() = default;
    SdlAudio(const SdlAudio&) = delete;
    SdlAudio& operator=(const SdlAudio&) = delete;
    ~SdlAudio() override;

    bool library_available() override;
    std::string error() override;
    bool create_device() override;
    bool set_cooperative() override { return started_; }
    bool create_primary() override { return started_; }
    bool set_format(int rate, int block) override;
    uint32_t block_bytes() override;
    bool create_ring(uint32_t bytes, int rate) override;
    bool has_ring() override { return !ring_.empty(); }
    /// Until unlock the device waits; the regions are the ring itself.
    bool lock(uint32_t offset, uint32_t bytes, std::span<uint8_t>& first,
              std::span<uint8_t>& second) override;
    bool unlock() override;
    bool play() override;
    void stop() override;
    int32_t position() override;
    void seek(uint32_t offset) override;
    uint32_t underruns() override { return underruns_; }
    void restore() override;
    void release_ring() override;
    void release_device() override;

private:
    static void fill(void* audio, uint8_t* stream, int bytes);
    void take(std::span<uint8_t> stream);
    bool open();
    void close();
    bool lost() const;
    void replace_ring(std::vector<uint8_t> ring);

    bool started_ = false; ///< SDL's audio
    bool playing_ = false;
    int rate_ = 0;
    int block_ = 0; ///< samples
    uint32_t device_ = 0;
    std::vector<uint8_t> ring_;
    std::atomic<uint32_t> read_ = 0; ///< byte offset up to which the device has taken data
    size_t written_ = 0;             ///< byte offset up to which the ring was written last
    std::atomic<uint32_t> underruns_ = 0;
};
