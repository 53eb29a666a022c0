#include "core/frame_driver.h"

#include "cgenie/crtc.h"
#include "cgenie/video_beam.h"
#include "core/machine.h"
#include "media/tape_audio.h"
#include "media/wd1771.h"
#include "platform/host_services.h"
#include "platform/platform.h"
#include "sound/sound_core.h"
#include "sound/wav_capture.h"
#include "z80/z80.h"

int32_t leftover = 0;
bool g_bCycleBasedEngine = false;
bool g_Timer = true;
int g_bRecordingVideo = 0;
std::string last_file_name = "Tarvelin";
int64_t event_shutdown_timout = EVENT_DISARMED;
int64_t event_screenshot_timout = EVENT_DISARMED;
pacing_state pacing;

namespace {

constexpr uint32_t FALLBACK_REFRESH = 100; ///< Hz, when the host does not know
constexpr uint32_t FALLBACK_FRAMES = 50;   ///< per second

uint32_t screen_frequency_of_active() {
    const uint32_t frequency = machine_cfg[active_machine_cfg].screen_frequency;
    return frequency ? frequency : FALLBACK_FRAMES;
}

void run_timed_events() {
    if (z80_state.t_count >= event_shutdown_timout) {
        platform().events().post_quit(0);
        return;
    }
    if (z80_state.t_count < event_screenshot_timout || !host_has_canvas()) return;
    host_save_screenshot();
    event_screenshot_timout = EVENT_DISARMED;
}

void look_at_clock() { pacing.elapsed_counter = platform().clock().counter(); }

/// Lets the emulation stand at most one frame period ahead of real time.
void wait_for_real_time() {
    while (pacing.elapsed_temp - pacing.elapsed_counter >= pacing.frame_period) {
        platform().clock().sleep_ms(1);
        look_at_clock();
    }
}

void report_speed_when_due() {
    if (pacing.elapsed_counter < pacing.next_measure) return;
    pacing.next_measure += pacing.two_seconds;
    show_frame_rate();
    pacing.ticks = 0;
    pacing.last_total_frames = pacing.total_frames;
}

/// At most at the display's refresh rate; the beam engine presents its own frames.
void update_screen_when_due() {
    if (pacing.elapsed_counter < pacing.next_frame && !g_bRecordingVideo) return;
    if (!g_bCycleBasedEngine) update_screen(1);
    ++pacing.total_frames;
    pacing.next_frame += pacing.frame_interval;
    if (g_bRecordingVideo) host_capture_frame();
}

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
    run_timed_events();
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

int32_t frame_budget() {
    return int32_t(z80_state.clock_hz) / int32_t(screen_frequency_of_active());
}

int machine_run() {
    begin_frame();
    // Something else than an instruction may have moved the program counter here.
    bool reached = z80_state.breakpoint_enabled && cpu_breakpoint_arrives();
    do {
        if (reached && host_breakpoint_reached()) return 0;
        frame_left = run_cycles(frame_left);
        reached = frame_left > 0;
    } while (reached);
    end_frame();
    return 1;
}

void machine_step() {
    begin_frame();
    frame_left = g_bCycleBasedEngine ? video_step(frame_left) : frame_left + z80_run(0);
    if (frame_left <= 0) end_frame();
}

void take_late_screenshot() {
    if (z80_state.t_count < event_screenshot_timout) return;
    if (event_screenshot_timout >= event_shutdown_timout || !host_has_canvas()) return;
    update_screen(1); // no frame has been shown yet
    host_save_screenshot();
    event_screenshot_timout = EVENT_DISARMED;
}

void do_some_frames(int count) {
    for (int frame = 0; frame < count; ++frame) {
        if (!machine_run()) return;
        if (host_has_canvas()) update_screen(1);
    }
}

void paced_frame_step() {
    if (!machine_run()) return;
    look_at_clock();
    if (g_Timer) wait_for_real_time();
    ++pacing.ticks;
    report_speed_when_due();
    update_screen_when_due();
    pacing.elapsed_temp += pacing.frame_period;
    tape_update_counter(z80_state.t_count);
}

void init_timers() {
    Clock& clock = platform().clock();
    const int64_t frequency = clock.frequency();
    const uint32_t refresh = clock.refresh_rate();
    pacing.monitor_refresh = refresh ? refresh : FALLBACK_REFRESH;
    look_at_clock();
    pacing.total_frames = pacing.last_total_frames = 0;
    pacing.frame_interval = uint32_t(frequency / pacing.monitor_refresh);
    pacing.next_frame = pacing.elapsed_counter;
    pacing.two_seconds = frequency * 2;
    pacing.next_measure = pacing.elapsed_counter + pacing.two_seconds;
    timer_recalibrate_fps(screen_frequency_of_active());
}

void timer_recalibrate_fps(uint32_t screen_frequency) {
    pacing.frame_period = pacing.two_seconds / (int64_t(screen_frequency) * 2);
    reset_timer();
}

void reset_timer() {
    look_at_clock();
    pacing.next_frame = pacing.elapsed_counter;
    pacing.next_measure = pacing.elapsed_counter + pacing.two_seconds;
    pacing.ticks = pacing.last_total_frames = pacing.total_frames = 0;
    pacing.elapsed_temp = pacing.elapsed_counter;
}

void show_frame_rate() {
    const int speed = pacing.ticks * 50 / int(screen_frequency_of_active());
    const int shown = (pacing.total_frames - pacing.last_total_frames) >> 1;
    ui_set_window_title("%1.3f Mhz CPU at %d%% (%d Hz video)", double(z80_state.clock_hz) / 1e6,
                        speed, shown);
    if (int64_t recorded = 0; sound_is_saving(&recorded)) {
        StatusBarText("Saving to WAV: %6.1f kbyte so far...", double(recorded) / 1024.0);
    }
}
