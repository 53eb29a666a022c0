#pragma once
/// The page's sound. The ring is here; the page gets a copy of what is written, and hands it to the
/// worklet that plays it. Where the browser does not let sound begin before the user has touched
/// the page, the position is unknown until then.

#include "platform/audio.h"

#include <vector>

class WebAudio final : public Audio {
public:
    bool library_available() override { return true; }
    std::string error() override;
    bool create_device() override;
    bool set_cooperative() override { return true; }
    bool create_primary() override { return true; }
    bool set_format(int rate, int block) override;
    uint32_t block_bytes() override;
    bool create_ring(uint32_t bytes, int rate) override;
    bool has_ring() override { return !ring_.empty(); }
    bool lock(uint32_t offset, uint32_t bytes, std::span<uint8_t>& first,
              std::span<uint8_t>& second) override;
    bool unlock() override;
    bool play() override;
    void stop() override;
    int32_t position() override;
    void seek(uint32_t offset) override;
    uint32_t underruns() override;
    void restore() override;
    void release_ring() override;
    void release_device() override;

private:
    void silence_taken(int64_t taken);

    int rate_ = 0;
    std::vector<uint8_t> ring_;
    std::span<uint8_t> locked_[2];
    int64_t silent_to_ = 0; ///< in bytes, as the page counts them
    bool playing_ = false;
};
