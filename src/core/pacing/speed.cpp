#include "core/pacing/speed.h"

#include "core/pacing/pacing.h"
#include "media/tape_audio.h"
#include "platform/platform.h"
#include "z80/z80.h"

namespace {

constexpr uint32_t SLOWEST = 4;
/// Without a look at the tape for so many frames, nothing is being loaded: the user can stop the
/// motor before the next program on the tape has gone by.
constexpr uint32_t PATIENCE = 25;

struct {
    int64_t frame_end = 0; ///< cycle of the last one
    uint32_t frames_unheard = PATIENCE;
} listening;

bool tape_plays() {
    return tape_audio.playing && tape_audio.rolling &&
           tape_audio.next_sample < tape_audio.wav.samples;
}

/// Alt with the key is the window system's.
bool key_is_held() {
    HostKeyboard& keys = platform().keyboard();
    return keys.is_down(KEY_F7) && !keys.is_down(KEY_ALT);
}

bool tape_is_loaded_fast() {
    return speed_choices.fast_tapes && tape_plays() && listening.frames_unheard < PATIENCE;
}

} // namespace

speed_choice speed_choices;

uint32_t frame_stretch() {
    if (!g_Timer) return 1;
    if (speed_choices.turbo || key_is_held() || tape_is_loaded_fast()) return 0;
    return speed_choices.slow;
}

void next_slow_motion() {
    speed_choices.slow = speed_choices.slow >= SLOWEST ? 1 : speed_choices.slow * 2;
}

void speed_watch_tape() {
    const bool heard = tape_plays() && tape_audio.tape_last_read_cycle > listening.frame_end;
    if (heard) {
        listening.frames_unheard = 0;
    } else if (listening.frames_unheard < PATIENCE) {
        ++listening.frames_unheard;
    }
    listening.frame_end = z80_state.t_count;
}
