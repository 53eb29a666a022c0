#pragma once
/// Sound core: turns the machine's sound sources into 16-bit mono samples at 48000 Hz and hands
/// them to the output driver in fragments of 960, a few fragments ahead of what is being heard.
///
/// The sound clock is cycles per scan line x 15625 Hz; an update renders everything up to a given
/// processor cycle, so a source must be brought up to date before its state changes. A 50 Hz
/// high-pass removes the offset of the unsigned mix. Nothing is allocated on the sample path.
///
/// A recording sets the pace itself, to miss nothing; the driver then goes without the fragments
/// that would put it too far ahead.

#include <cstdint>

/// One source; allocated by its owner, linked by the core.
struct sound_source {
    const char* name;
    sound_source* next;
    /// Writes `count` samples.
    void (*render)(uint16_t* buffer, uint32_t count);
    void (*reset)();
};

/// What an output driver offers. Its ring holds 96000 bytes, one second.
struct sound_driver_table {
    const char* name;
    int (*init)();
    void (*close)();
    /// Puts `bytes` bytes of samples at byte `offset` of the ring, which wraps. 0 on success.
    int (*write)(const uint16_t* samples, uint32_t offset, uint32_t bytes);
    void (*reset)();
    void (*pause)();
    void (*resume)();
    /// Byte offset up to which the device has taken data, or -1 when unknown.
    int32_t (*get_current_position)();
};

constexpr int SOUND_RATE = 48000; ///< samples per second
constexpr uint32_t FRAGMENT_SAMPLES = 960;
constexpr uint32_t FRAGMENT_BYTES = FRAGMENT_SAMPLES * 2;
constexpr uint32_t RING_BYTES = 96000;

/// Appends a source; the list keeps its order.
void sound_add_source(sound_source* source);
/// Closes the active driver and makes `driver` the active one.
void sound_register_driver(const sound_driver_table* driver);
/// The driver that plays nothing, "No sound"; its position is unknown.
void sound_null_driver_init();
/// An empty fragment, the driver's reset, and the high-pass.
void sound_init();
/// The driver's reset, then every source's.
void sound_reset();
/// Ends WAV capture, closes the driver, frees the filters.
void sound_close();
/// Silence while the program stands still.
void sound_pause();
void sound_resume();
/// Renders up to the given processor cycle.
void sound_update(int64_t cycles);
/// The same, at the end of a frame.
void sound_flush(int64_t cycles);
/// Samples that the fragment in the making had at the end of the last frame, 0 to 959.
uint32_t sound_samples_begun();
/// The fragment buffer as it stands: the fragment in the making, before the filter, and behind it
/// what is left of the one before.
uint16_t* sound_get_buffer_ptr();

/// Starts to keep finished fragments for the pictures of a film. As long as it runs, only as many
/// are rendered as it has pictures; beside a WAV recording, which misses nothing, what is too much
/// for the film is left out of it.
void sound_start_film();
void sound_end_film();
/// The next finished fragment, for one picture, in order; silence when there is none. Stands until
/// the next update.
const uint16_t* sound_take_film_fragment();
