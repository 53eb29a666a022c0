#pragma once
#include "platform/audio.h"

struct WebAudio final : public Audio {
    bool library_available() override { return false; }
    std::string error() override { return {}; }
    bool create_device() override { return false; }
    bool set_cooperative() override { return false; }
    bool create_primary() override { return false; }
    bool set_format(int /*rate*/, int /*block*/) override { return false; }
    uint32_t block_bytes() override { return 0; }
    bool create_ring(uint32_t /*bytes*/, int /*rate*/) override { return false; }
    bool has_ring() override { return false; }
    bool lock(uint32_t /*offset*/, uint32_t /*bytes*/, std::span<uint8_t>& /*first*/,
              std::span<uint8_t>& /*second*/) override {
        return false;
    }
    bool unlock() override { return false; }
    bool play() override { return false; }
    void stop() override {}
    int32_t position() override { return -1; }
    void seek(uint32_t /*offset*/) override {}
    uint32_t underruns() override { return 0; }
    void restore() override {}
    void release_ring() override {}
    void release_device() override {}
};
