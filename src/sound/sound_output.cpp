#include "sound/sound_output.h"

#include "platform/platform.h"
#include "platform/report.h"
#include "sound/sound_core.h"

#include <algorithm>
#include <cstdio>
#include <span>

namespace {

constexpr int LOCK_FAILED = 1; ///< results of a write
constexpr int UNLOCK_FAILED = 2;
constexpr int RETRY_INTERVAL = SOUND_RATE / FRAGMENT_SAMPLES; ///< fragments, one second

bool device_exists = false;
bool registered = false;
int lost_fragments = 0; ///< since the device was there, or was tried again

int32_t unknown_position() {
    std::fputs("Warning: DSound secondary buffer is null.\n", stderr);
    return -1;
}

/// The result of every step that fails.
int failed(const char* text, const char* title = "Error", MessageIcon icon = MessageIcon::error) {
    report({.text = text,
            .reason = platform().audio().error(),
            .remedy = "The program runs without sound; Options, Sound tries again.",
            .title = title,
            .icon = icon});
    return 0;
}

int library_missing() { return failed("Missing DSOUND.DLL", "Fatal error!", MessageIcon::none); }

const sound_driver_table dsound_driver = {
    "DirectSound", [] { return dsound_init(SOUND_RATE); },
    dsound_close,  dsound_write,
    dsound_reset,  dsound_pause,
    dsound_resume, dsound_get_current_position,
};

/// What an earlier start has left. The driver must not be the active one when it is registered
/// again: the core would close what has just been made.
void forget_earlier_output() {
    if (registered) sound_null_driver_init();
    dsound_close();
}

int lose_fragment(Audio& audio) {
    if (++lost_fragments >= RETRY_INTERVAL) {
        lost_fragments = 0;
        audio.restore();
    }
    return LOCK_FAILED;
}

} // namespace

int dsound_init(int rate) {
    Audio& audio = platform().audio();
    forget_earlier_output();
    if (!audio.library_available()) return library_missing();
    if (!audio.create_device()) return failed("DirectSoundCreate failed");
    device_exists = true;
    if (!audio.set_cooperative()) return failed("SetCooperativeLevel failed");
    if (!audio.create_primary()) return failed("CreateSoundBuffer for primary buffer failed");
    if (!audio.set_format(rate)) return failed("SetFormat on primary bufer failed");
    dsound_create_secondary_buffer(rate);
    sound_register_driver(&dsound_driver);
    registered = true;
    if (!audio.play()) return failed("Play primary buffer failed");
    return 1;
}

int dsound_create_secondary_buffer(int rate) {
    Audio& audio = platform().audio();
    audio.stop();
    audio.release_ring();
    if (!audio.create_ring(RING_BYTES, rate)) return failed("CreateSoundBuffer failed");
    dsound_resume();
    return 1;
}

int dsound_write(const uint16_t* samples, uint32_t offset, uint32_t bytes) {
    Audio& audio = platform().audio();
    if (!audio.has_ring()) return 0;
    std::span<uint8_t> first;
    std::span<uint8_t> second;
    if (!audio.lock(offset, bytes, first, second)) return lose_fragment(audio);
    lost_fragments = 0;
    const auto* data = reinterpret_cast<const uint8_t*>(samples);
    std::copy_n(data, first.size(), first.begin());
    std::copy_n(data + first.size(), second.size(), second.begin());
    if (!audio.unlock()) return UNLOCK_FAILED;
    audio.play();
    return 0;
}

int32_t dsound_get_current_position() {
    Audio& audio = platform().audio();
    return audio.has_ring() ? audio.position() : unknown_position();
}

void dsound_pause() { platform().audio().stop(); }
void dsound_resume() { platform().audio().play(); }

void dsound_reset() {
    Audio& audio = platform().audio();
    if (audio.has_ring()) audio.restore();
}

void dsound_close() {
    registered = false;
    if (!device_exists) return;
    Audio& audio = platform().audio();
    audio.release_ring();
    audio.release_device();
    device_exists = false;
}
