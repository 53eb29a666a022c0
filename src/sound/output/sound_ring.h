#pragma once
/// Where the machine's sound goes: the output driver's ring, the sound of a film, and the WAV
/// recording. Decides whether the machine leaves a fragment out or doubles one, so that it stays a
/// few fragments ahead of what is being heard.
///
/// A recording sets the pace itself, to miss nothing; the driver then goes without the fragments
/// that would put it too far ahead.

#include "sound/sound_core.h"

#include <cstdint>

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
    /// Lets the samples that the device has not taken yet fade away. Null for a driver that nobody
    /// hears, which goes on as ever.
    void (*fade_out)() = nullptr;
    /// Silence, and the device at its distance behind what is written next. False, and nothing
    /// happens, while it still plays what fade_out has left.
    bool (*begin_again)() = nullptr;
};

constexpr uint32_t RING_BYTES = 96000;

/// Makes this the output of the machine's sound.
void sound_output_connect();
/// Closes the active driver and makes `driver` the active one.
void sound_register_driver(const sound_driver_table* driver);
/// The driver that plays nothing, "No sound"; its position is unknown.
void sound_null_driver_init();
/// Ends WAV capture, closes the driver, takes the core's filter away.
void sound_close();
/// Silence while the program stands still.
void sound_pause();
void sound_resume();

/// Who wants the sound away.
enum class FadeReason : uint8_t {
    held = 1, ///< the machine stands still, or other moments of it are shown
    speed = 2 ///< it runs faster or slower than real time
};
/// With `out`, the sound that plays fades away within FADE_SAMPLES, and no more comes. Without it,
/// and when nobody else wants silence, it fades in again with the next fragment. Meanwhile the
/// machine leaves its fragments out, unless a recording wants them. "No sound" takes no notice.
void sound_fade(bool out, FadeReason reason = FadeReason::held);
constexpr uint32_t FADE_SAMPLES = 480; ///< 10 ms
/// The volume of sample `n` of a fade in: FADE_SAMPLES beyond its end. Fading out, n runs back.
inline int16_t faded(int16_t sample, uint32_t n) {
    return n >= FADE_SAMPLES ? sample : int16_t(sample * int32_t(n) / int32_t(FADE_SAMPLES));
}

/// Starts to keep finished fragments for the pictures of a film. Until sound_end_film, one fragment
/// is rendered for each picture. While a WAV file is recorded too, every fragment is rendered, and
/// the film leaves out those that it has no picture for.
void sound_start_film();
void sound_end_film();
/// The next finished fragment, for one picture, in order; silence when there is none. Stands until
/// the next update.
const uint16_t* sound_take_film_fragment();
