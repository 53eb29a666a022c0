#include "core/frame_driver.h"

#include "cgenie/crtc.h"
#include "cgenie/input.h"
#include "cgenie/video_beam.h"
#include "core/machine.h"
#include "core/machine_events.h"
#include "media/wd1771.h"
#include "sound/sound_core.h"
#include "wall/machine_host.h"
#include "z80/z80.h"
#include "z80/z80_watch.h"

frame_record frame_state;

namespace {

constexpr uint32_t FALLBACK_FRAMES = 50; ///< per second

constexpr state_field fields[] = {
    {"leftover", sizeof(frame_record::leftover)},
    {"left", sizeof(frame_record::left)},
    {"begun", sizeof(frame_record::begun)},
    {"cycle_based", sizeof(frame_record::cycle_based)},
    {"unused", sizeof(frame_record::unused)},
};

/// More than any frame has, and than any instruction uses.
constexpr int32_t MOST_LEFT = FASTEST_CLOCK / LOWEST_SCREEN_FREQUENCY;

const char* fault(const frame_record& frame) {
    return first_fault({{"leftover", frame.leftover <= 0 && frame.leftover >= -MOST_LEFT},
                        {"left", frame.left <= MOST_LEFT && frame.left >= -MOST_LEFT},
                        {"begun", frame.begun <= 1},
                        {"cycle_based", is_bool(frame.cycle_based)}});
}

void begin_frame() {
    if (frame_state.begun) return;
    frame_state.begun = 1;
    input_begin_frame();
    frame_state.left = frame_budget() + (g_bCycleBasedEngine ? 0 : leftover);
}

void end_frame() {
    frame_state.begun = 0;
    input_end_frame();
    if (!g_bCycleBasedEngine) {
        leftover = frame_state.left;
        crtc_vblank();
    }
    machine_look_for_prompt();
    led_update(wd1771_is_active());
    sound_flush(z80_state.t_count);
    machine_log_frame();
}

/// Runs what is left of the frame, or up to the armed breakpoint; with a breakpoint armed, the
/// processor runs an instruction at a time.
int32_t run_cycles(int32_t cycles) {
    if (g_bCycleBasedEngine) return video_run_cycles(cycles);
    if (!z80_state.breakpoint_enabled) return z80_run(cycles);
    do {
        cycles += z80_run(0);
    } while (cycles > 0 && !z80_state.waits && !cpu_breakpoint_arrives());
    return cycles;
}

/// The same with watches armed. The breakpoint is then one of them.
int32_t run_watched_cycles(int32_t cycles) {
    uint8_t& at_breakpoint = z80_watch.memory[z80_state.breakpoint];
    const uint8_t bits = at_breakpoint;
    if (z80_state.breakpoint_enabled) at_breakpoint |= WATCH_EXECUTE;
    cycles = g_bCycleBasedEngine ? video_run_cycles(cycles) : z80_watch.run(cycles);
    at_breakpoint = bits;
    return cycles;
}

/// Runs on, and tells what was hit. False when the machine is to stand there. `reached` says
/// whether it has come to the breakpoint.
bool run_and_tell(bool& reached) {
    if (!z80_watch.run) {
        frame_state.left = run_cycles(frame_state.left);
        reached = frame_state.left > 0 && !z80_state.waits;
        return true;
    }
    frame_state.left = run_watched_cycles(frame_state.left);
    reached = frame_state.left > 0 && z80_state.breakpoint_enabled && cpu_breakpoint_arrives();
    return !z80_watch.hit_count || !machine_host.watch_hit();
}

} // namespace

constexpr state_record frame_state_record = {"frame_state", &frame_state, sizeof frame_state,
                                             fields, fault_of<frame_record, fault>};

uint32_t frames_per_second() {
    const uint32_t frequency = machine_cfg[active_machine_cfg].screen_frequency;
    return frequency ? frequency : FALLBACK_FRAMES;
}

int32_t frame_budget() { return int32_t(z80_state.clock_hz) / int32_t(frames_per_second()); }

int machine_run() {
    begin_frame();
    // Something other than an instruction (a load, a reset) may have moved the program counter.
    bool reached = z80_state.breakpoint_enabled && cpu_breakpoint_arrives();
    while (frame_state.left > 0) {
        if (reached && machine_host.breakpoint_reached()) return MACHINE_STANDS;
        const bool goes_on = run_and_tell(reached);
        if (z80_state.waits) return MACHINE_WAITS;
        if (!goes_on && frame_state.left > 0) return MACHINE_STANDS;
    }
    end_frame();
    return MACHINE_FRAME;
}

int machine_step() {
    begin_frame();
    frame_state.left = g_bCycleBasedEngine
                           ? video_step(frame_state.left)
                           : frame_state.left + (z80_watch.run ? z80_watch.run : z80_run)(0);
    if (z80_state.waits) return MACHINE_WAITS;
    if (frame_state.left > 0) return MACHINE_STANDS;
    end_frame();
    return MACHINE_FRAME;
}
