#include "core/pacing/run_ahead.h"

#include "cgenie/video.h"
#include "core/frame_driver.h"
#include "core/machine_mute.h"
#include "core/machine_state.h"
#include "wall/machine_host.h"
#include "z80/z80.h"
#include "z80/z80_watch.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr size_t PICTURE = size_t(SCREEN_WIDTH) * (SCREEN_HEIGHT + 1);

machine_state parked; ///< kept, so that its memory is used again

/// The last picture that the beam engine has finished. It presents them in the middle of a frame,
/// and then draws over them.
struct {
    bool finished = false;
    std::array<uint8_t, PICTURE> pixels = {};
} beam_picture;

void keep_picture(int) {
    beam_picture.finished = true;
    std::copy_n(frame_buffer, PICTURE, beam_picture.pixels.begin());
}

void run(uint32_t frames) {
    beam_picture.finished = false;
    if (g_bCycleBasedEngine) machine_host.frame = keep_picture;
    // What the user will answer is not known yet.
    machine_host.save_question = [] { return SAVE_NOT_YET; };
    z80_state.breakpoint_enabled = 0;
    const auto watched = std::exchange(z80_watch.run, nullptr); // what is not yet is no hit
    for (; frames > 0; --frames) {
        if (machine_run() != MACHINE_FRAME) break;
    }
    z80_watch.run = watched;
    if (beam_picture.finished) std::ranges::copy(beam_picture.pixels, frame_buffer);
}

} // namespace

void look_ahead(uint32_t frames, void (*show)()) {
    machine_save(parked);
    const z80_record processor = z80_state; // with the fields that are not state
    {
        const MachineMute nobody_notices;
        run(std::min(frames, MOST_FRAMES_AHEAD));
        if (!g_bCycleBasedEngine || beam_picture.finished) show();
        machine_load(parked);
    }
    z80_state = processor;
    // A disk that has two owners would be copied at the next write to it.
    parked.media.fill({});
}
