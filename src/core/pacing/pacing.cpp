#include "core/pacing/pacing.h"

#include "core/frame_driver.h"
#include "core/machine.h"
#include "core/machine_events.h"
#include "media/tape_audio.h"
#include "platform/platform.h"
#include "sound/output/wav_capture.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <cstdio>

bool g_Timer = true;
int g_bRecordingVideo = 0;
std::string last_file_name = "Tarvelin";
int64_t event_shutdown_timout = EVENT_DISARMED;
int64_t event_screenshot_timout = EVENT_DISARMED;
pacing_state pacing;
pacing_calls pacing_host = {
    .title = [](const char*) {},
    .has_canvas = [] { return false; },
    .save_screenshot = [] {},
    .capture_frame = [] {},
    .answer_question = [] { return false; },
    .frame_ran = [] {},
};

namespace {

constexpr uint32_t FALLBACK_REFRESH = 100;  ///< Hz, when the host does not know
constexpr int64_t MICROSECONDS = 1'000'000; ///< in a second

/// How far the step of the present frame has come.
enum class Step : uint8_t { none, run, shown };
Step step = Step::none;

void look_at_clock() { pacing.elapsed_counter = platform().clock().counter(); }

/// By how much the emulation is more than one frame period ahead of real time; 0 when it is not.
int64_t microseconds_ahead() {
    if (!g_Timer) return 0;
    const int64_t ahead = pacing.elapsed_temp - pacing.elapsed_counter - pacing.frame_period + 1;
    const int64_t frequency = pacing.two_seconds / 2;
    return ahead <= 0 ? 0 : (ahead * MICROSECONDS + frequency - 1) / frequency;
}

void report_speed_when_due() {
    if (pacing.elapsed_counter < pacing.next_measure) return;
    pacing.next_measure += pacing.two_seconds;
    show_frame_rate();
    pacing.ticks = 0;
    pacing.last_total_frames = pacing.total_frames;
}

/// Shows the frame, at most at the display's refresh rate. The beam engine presents its frames
/// itself.
void update_screen_when_due() {
    if (pacing.elapsed_counter < pacing.next_frame && !g_bRecordingVideo) return;
    if (!g_bCycleBasedEngine) update_screen(1);
    ++pacing.total_frames;
    pacing.next_frame += pacing.frame_interval;
    if (g_bRecordingVideo) pacing_host.capture_frame();
}

} // namespace

int run_with_answers(int (*run)()) {
    int end = run();
    while (end == MACHINE_WAITS && pacing_host.answer_question()) end = run();
    if (end == MACHINE_FRAME) pacing_host.frame_ran();
    return end;
}

void run_timed_events() {
    if (z80_state.t_count >= event_shutdown_timout) {
        platform().events().post_quit(0);
        return;
    }
    if (z80_state.t_count < event_screenshot_timout || !pacing_host.has_canvas()) return;
    pacing_host.save_screenshot();
    event_screenshot_timout = EVENT_DISARMED;
}

void take_late_screenshot() {
    if (z80_state.t_count < event_screenshot_timout) return;
    if (event_screenshot_timout >= event_shutdown_timout || !pacing_host.has_canvas()) return;
    update_screen(1); // no frame has been shown yet
    pacing_host.save_screenshot();
    event_screenshot_timout = EVENT_DISARMED;
}

void do_some_frames(int count) {
    for (int frame = 0; frame < count; ++frame) {
        if (run_with_answers(machine_run) != MACHINE_FRAME) return;
        run_timed_events();
        if (pacing_host.has_canvas()) update_screen(1);
    }
}

int64_t paced_frame_step() {
    if (step == Step::none) {
        if (run_with_answers(machine_run) != MACHINE_FRAME) return 0;
        platform().keyboard().release_tapped();
        run_timed_events();
        step = Step::run;
    }
    look_at_clock();
    if (const int64_t ahead = microseconds_ahead()) return ahead;
    show_paced_frame();
    step = Step::none;
    pacing.elapsed_temp += pacing.frame_period;
    return 0;
}

bool paced_frame_waits() { return step == Step::run; }

void show_paced_frame() {
    if (step != Step::run) return;
    step = Step::shown;
    ++pacing.ticks;
    report_speed_when_due();
    update_screen_when_due();
    machine_apply(event_kind::tape_moves);
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
    timer_recalibrate_fps(frames_per_second());
}

void timer_recalibrate_fps(uint32_t screen_frequency) {
    pacing.frame_period = pacing.two_seconds / (int64_t(screen_frequency) * 2);
    reset_timer();
}

void reset_timer() {
    step = Step::none;
    look_at_clock();
    pacing.next_frame = pacing.elapsed_counter;
    pacing.next_measure = pacing.elapsed_counter + pacing.two_seconds;
    pacing.ticks = pacing.last_total_frames = pacing.total_frames = 0;
    pacing.elapsed_temp = pacing.elapsed_counter;
}

void show_frame_rate() {
    const int speed = pacing.ticks * 50 / int(frames_per_second());
    const int shown = (pacing.total_frames - pacing.last_total_frames) >> 1;
    char title[80];
    std::snprintf(title, sizeof title, "%1.3f Mhz CPU at %d%% (%d Hz video)",
                  double(z80_state.clock_hz) / 1e6, speed, shown);
    pacing_host.title(title);
    if (int64_t recorded = 0; sound_is_saving(&recorded)) {
        StatusBarText("Saving to WAV: %6.1f kbyte so far...", double(recorded) / 1024.0);
    }
}
