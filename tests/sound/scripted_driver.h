#pragma once
/// An output driver that records what it gets and answers positions as it is told.

#include "sound/output/sound_ring.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <vector>

struct ScriptedDriver {
    std::function<int32_t()> position = [] { return -1; };
    std::vector<std::array<int16_t, FRAGMENT_SAMPLES>> fragments;
    std::vector<uint32_t> offsets;
    uint32_t next_offset = 0; ///< where the core should write next
    std::string calls;
};
inline ScriptedDriver scripted;

inline constexpr sound_driver_table scripted_driver = {
    "scripted",
    [] { return 0; },
    [] { scripted.calls += "close "; },
    [](const uint16_t* samples, uint32_t offset, uint32_t bytes) {
        auto& fragment = scripted.fragments.emplace_back();
        EXPECT_EQ(bytes, sizeof fragment);
        EXPECT_EQ(offset, scripted.next_offset);
        std::copy_n(samples, fragment.size(), fragment.begin());
        scripted.offsets.push_back(offset);
        scripted.next_offset = (offset + bytes) % 96000;
        return 0;
    },
    [] { scripted.calls += "reset "; },
    [] { scripted.calls += "pause "; },
    [] { scripted.calls += "resume "; },
    [] { return scripted.position(); }};

/// The standard machine's sound clock is 141 x 15625 Hz. Sample p begins at the first cycle whose
/// time is at least p - 1/2 samples.
constexpr int64_t SOUND_CLOCK = 2203125;
inline int64_t cycle_of_sample(int64_t p) {
    return ((2 * p - 1) * SOUND_CLOCK + 2 * SOUND_RATE - 1) / (2 * SOUND_RATE);
}
inline int64_t sample_at(int64_t cycle) {
    return (2 * cycle * SOUND_RATE + SOUND_CLOCK) / (2 * SOUND_CLOCK);
}

/// Lets `samples` samples of time pass.
inline void advance(int64_t samples) {
    sound_update(z80_state.t_count = cycle_of_sample(sample_at(z80_state.t_count) + samples));
}

/// A core at the start of time, 5 fragments ahead ever since, with an empty record.
inline void start_scripted_core() {
    z80_init(2216750);
    z80_state.t_count = 0;
    sound_core = {};
    sound_resume();
    sound_register_driver(&scripted_driver);
    sound_init();
    scripted = {};
    scripted.position = [] { return int32_t((scripted.next_offset + 96000 - 5 * 1920) % 96000); };
    for (int poll = 0; poll < 100; ++poll) machine_host.fragment_decision(1);
}
