#pragma once
/// Sound core: turns the machine's sound sources into 16-bit mono samples at 48000 Hz, and hands
/// them to the host in fragments of 960. For each fragment it asks the host whether to leave the
/// next one out, or to make two of it.
///
/// The sound clock is cycles per scan line x 15625 Hz; an update renders everything up to a given
/// processor cycle, so a source must be brought up to date before its state changes. A 50 Hz
/// high-pass removes the offset of the unsigned mix.

#include "sound/filter.h"
#include "wall/state_record.h"

#include <array>
#include <cstdint>

/// One source; allocated by its owner, linked by the core.
struct sound_source {
    const char* name;
    sound_source* next;
    /// Writes `count` samples.
    void (*render)(uint16_t* buffer, uint32_t count);
    void (*reset)();
};

constexpr int SOUND_RATE = 48000; ///< samples per second
constexpr uint32_t FRAGMENT_SAMPLES = 960;
constexpr uint32_t FRAGMENT_BYTES = FRAGMENT_SAMPLES * 2;

struct sound_core_state {
    /// The fragment being rendered, before the filter. Samples that an update rendered beyond it
    /// follow, and are moved to the front when it is finished.
    std::array<uint16_t, 2 * FRAGMENT_SAMPLES> sound_buffer = {};
    uint32_t sound_update_pos = 0; ///< samples of the fragment rendered so far
    uint32_t last_sample_pos = 0;  ///< time of the last update, in samples
    /// Samples that the fragment in the making had at the end of the last frame, 0 to 959.
    uint32_t begun_at_frame_end = 0;
    int32_t next_fragment_count = 1; ///< the last decision: 0, 1 or 2
    iir_filter hpfilter;
};
extern sound_core_state sound_core;
extern const state_record sound_core_record;

/// Appends a source; the list keeps its order.
void sound_add_source(sound_source* source);
/// Starts with an empty fragment and with the high-pass.
void sound_init();
/// Resets every source.
void sound_reset();
/// Renders up to the given processor cycle.
void sound_update(int64_t cycles);
/// The same, at the end of a frame; also notes how far the fragment is.
void sound_flush(int64_t cycles);
/// The fragment buffer as it stands.
uint16_t* sound_get_buffer_ptr();

// What the host changes beside its decisions.

/// As if the last decision had been `count`, 0 to 2.
void sound_set_fragment_count(int count);
/// No high-pass until the next sound_init.
void sound_remove_filter();
