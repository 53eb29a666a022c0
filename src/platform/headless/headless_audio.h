#pragma once
/// Silent audio: a ring whose position follows the platform's clock while it plays, or is what the
/// driver sets. Every step can be told to fail.

#include "platform/audio.h"

#include <bitset>
#include <functional>
#include <optional>
#include <vector>

enum class AudioStep : unsigned char {
    library,
    device,
    cooperative,
    primary,
    format,
    ring,
    play,
    unlock,
    count
};

class HeadlessAudio final : public Audio {
public:
    /// `now` gives the time in nanoseconds without making it pass.
    explicit HeadlessAudio(std::function<int64_t()> now) : now_(std::move(now)) {}

    bool library_available() override { return works(AudioStep::library); }
    std::string error() override { return error_text; }
    bool create_device() override { return device = works(AudioStep::device); }
    bool set_cooperative() override { return works(AudioStep::cooperative); }
    bool create_primary() override { return works(AudioStep::primary); }
    bool set_format(int rate, int block) override;
    uint32_t block_bytes() override { return block; }
    bool create_ring(uint32_t bytes, int rate) override;
    bool has_ring() override { return !ring.empty(); }
    bool lock(uint32_t offset, uint32_t bytes, std::span<uint8_t>& first,
              std::span<uint8_t>& second) override;
    bool unlock() override { return works(AudioStep::unlock); }
    bool play() override;
    void stop() override;
    int32_t position() override;
    void seek(uint32_t offset) override;
    uint32_t underruns() override { return times_run_dry; }
    void restore() override;
    void release_ring() override { ring.clear(); }
    void release_device() override { device = false; }

    // For whoever drives the run.
    void fail(AudioStep step, bool fails = true) { failing_[size_t(step)] = fails; }

    std::string error_text; ///< why steps fail
    std::optional<int32_t> fixed_position;
    bool lost = false; ///< the device, until it is restored
    bool device = false;
    bool playing = false;
    int rate = 0;
    uint32_t block = 0; ///< as if a device took so many bytes at a time
    uint32_t times_run_dry = 0;
    int plays = 0; ///< starts
    int stops = 0;
    int restores = 0;
    std::vector<uint8_t> ring;

private:
    bool works(AudioStep step) const { return !failing_[size_t(step)]; }
    int64_t played_bytes() const;

    std::function<int64_t()> now_;
    std::bitset<size_t(AudioStep::count)> failing_;
    int64_t before_ = 0; ///< bytes played before the last start
    int64_t started_ = 0;
};
