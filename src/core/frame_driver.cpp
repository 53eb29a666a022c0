#include "core/frame_driver.h"

#include "cgenie/crtc.h"
#include "cgenie/video_beam.h"
#include "core/machine.h"
#include "media/wd1771.h"
#include "sound/sound_core.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

int32_t leftover = 0;
bool g_bCycleBasedEngine = false;

namespace {

constexpr uint32_t FALLBACK_FRAMES = 50; ///< per second

/// The frame that stands at the breakpoint or between single steps.
bool frame_begun = false;
int32_t frame_left = 0; ///< cycles

void begin_frame() {
    if (frame_begun) return;
    frame_begun = true;
    frame_left = frame_budget() + (g_bCycleBasedEngine ? 0 : leftover);
}

void end_frame() {
    frame_begun = false;
    if (!g_bCycleBasedEngine) {
        leftover = frame_left;
        crtc_vblank();
    }
    machine_look_for_prompt();
    led_update(wd1771_is_active());
    sound_flush(z80_state.t_count);
}

/// Runs what is left of the frame, or up to the armed breakpoint; looking for it takes a step per
/// instruction.
int32_t run_cycles(int32_t cycles) {
    if (g_bCycleBasedEngine) return video_run_cycles(cycles);
    if (!z80_state.breakpoint_enabled) return z80_run(cycles);
    do {
        cycles += z80_run(0);
    } while (cycles > 0 && !cpu_breakpoint_arrives());
    return cycles;
}

} // namespace

uint32_t frames_per_second() {
    const uint32_t frequency = machine_cfg[active_machine_cfg].screen_frequency;
    return frequency ? frequency : FALLBACK_FRAMES;
}

int32_t frame_budget() { return int32_t(z80_state.clock_hz) / int32_t(frames_per_second()); }

int machine_run() {
    begin_frame();
    // Something else than an instruction may have moved the program counter here.
    bool reached = z80_state.breakpoint_enabled && cpu_breakpoint_arrives();
    do {
        if (reached && machine_host.breakpoint_reached()) return 0;
        frame_left = run_cycles(frame_left);
        reached = frame_left > 0;
    } while (reached);
    end_frame();
    return 1;
}

int machine_step() {
    begin_frame();
    frame_left = g_bCycleBasedEngine ? video_step(frame_left) : frame_left + z80_run(0);
    if (frame_left > 0) return 0;
    end_frame();
    return 1;
}
