#include "core/pacing/pacing.h"

#include "core/frame_driver.h"
#include "core/machine.h"
#include "core/machine_events.h"
#include "core/pacing/run_ahead.h"
#include "core/pacing/speed.h"
#include "media/tape_audio.h"
#include "platform/platform.h"
#include "sound/output/sound_ring.h"
#include "sound/output/wav_capture.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <algorithm>
#include <cstdio>

bool g_Timer = true;
int g_bRecordingVideo = 0;
uint32_t frames_ahead = 0;
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
    .show_ahead = [] {},
    .run_frame = machine_run,
};

namespace {

constexpr uint32_t FALLBACK_REFRESH = 100;  ///< Hz, when the host does not know
constexpr int64_t MICROSECONDS = 1'000'000; ///< in a second

/// How far the step of the present frame has come.
enum class Step : uint8_t { none, run, shown };
Step step = Step::none;

constexpr uint32_t TURBO = 0; ///< as a stretch
/// How many times as long as it should a frame lasts; see frame_stretch.
uint32_t stretch = 1;
PictureUse picture_use = PictureUse::shown;
bool beam_has_shown = false; ///< during the present frame, in turbo

/// When the speed has changed, the speed report measures a shorter period, so that the title is
/// true again soon; in turbo always.
struct {
    bool runs = false;
    int64_t start = 0; ///< in counts of the clock
} short_period;

void look_at_clock() { pacing.elapsed_counter = platform().clock().counter(); }

bool picture_is_due() {
    return pacing.elapsed_counter >= pacing.next_frame || g_bRecordingVideo != 0;
}

/// A replay has no keys that it could answer earlier.
bool runs_ahead() {
    const bool has_keys = pacing_host.run_frame == machine_run;
    return frames_ahead > 0 && has_keys && g_Timer && stretch != TURBO;
}

int64_t frame_time() { return pacing.frame_period * stretch; }

/// By how much the emulation is more than one frame period ahead of real time; 0 when it is not.
int64_t microseconds_ahead() {
    if (!g_Timer || stretch == TURBO) return 0;
    const int64_t ahead = pacing.elapsed_temp - pacing.elapsed_counter - frame_time() + 1;
    const int64_t frequency = pacing.two_seconds / 2;
    return ahead <= 0 ? 0 : (ahead * MICROSECONDS + frequency - 1) / frequency;
}

void measure_again() {
    pacing.ticks = 0;
    pacing.last_total_frames = pacing.total_frames;
}

void measure_from_now() {
    short_period = {true, pacing.elapsed_counter};
    pacing.next_measure = pacing.elapsed_counter + pacing.two_seconds / 4;
    measure_again();
}

/// Follows a change of the speed. What it has gained or lost is not made up for.
void follow_speed() {
    const uint32_t now = frame_stretch();
    if (now == stretch) return;
    stretch = now;
    look_at_clock();
    pacing.next_frame = pacing.elapsed_counter;
    pacing.elapsed_temp = pacing.elapsed_counter + 2 * frame_time(); // the next frame waits in full
    measure_from_now();
    sound_fade(stretch != 1, FadeReason::speed);
}

void show_speed(int speed, int pictures) {
    char title[80];
    std::snprintf(title, sizeof title, "%1.3f Mhz CPU at %d%% (%d Hz video)",
                  double(z80_state.clock_hz) / 1e6, speed, pictures);
    pacing_host.title(title);
    if (int64_t recorded = 0; sound_is_saving(&recorded)) {
        StatusBarText("Saving to WAV: %6.1f kbyte so far...", double(recorded) / 1024.0);
    }
}

/// `count` things in the period that has just been measured: how many there would be in `time`.
int rate(int64_t count, int64_t time) {
    const int64_t measured = pacing.elapsed_counter - short_period.start;
    return int((count * time + measured / 2) / measured);
}

void report_short_period_when_due() {
    if (pacing.elapsed_counter < pacing.next_measure) return;
    const int64_t hundred_frames = pacing.frame_period * 100;
    show_speed(rate(pacing.ticks, hundred_frames),
               rate(pacing.total_frames - pacing.last_total_frames, pacing.two_seconds / 2));
    if (stretch == TURBO) return measure_from_now();
    short_period.runs = false;
    pacing.next_measure = pacing.elapsed_counter + pacing.two_seconds;
    measure_again();
    --pacing.last_total_frames; // the usual report comes before the frame's picture
}

void report_speed_when_due() {
    if (pacing.elapsed_counter < pacing.next_measure) return;
    pacing.next_measure += pacing.two_seconds;
    show_frame_rate();
    measure_again();
}

void update_screen_as(PictureUse use) {
    picture_use = use;
    update_screen(1);
    picture_use = PictureUse::shown;
}

/// Shows the frame, at most at the display's refresh rate. The beam engine presents its frames
/// itself.
void update_screen_when_due() {
    const bool turbo = stretch == TURBO;
    const bool beam_decides = turbo && g_bCycleBasedEngine && !g_bRecordingVideo;
    if (beam_decides ? !beam_has_shown : !picture_is_due()) return;
    const bool ahead = runs_ahead();
    if (!g_bCycleBasedEngine) update_screen_as(ahead ? PictureUse::drawn : PictureUse::shown);
    ++pacing.total_frames;
    pacing.next_frame += pacing.frame_interval;
    if (turbo) pacing.next_frame = std::max(pacing.next_frame, pacing.elapsed_counter);
    if (g_bRecordingVideo) pacing_host.capture_frame();
    if (ahead) look_ahead(frames_ahead, pacing_host.show_ahead);
}

/// In turbo the beam engine would present far more pictures than can be seen.
PictureUse use_of_turbo_picture() {
    look_at_clock();
    if (beam_has_shown || !picture_is_due()) return PictureUse::dropped;
    beam_has_shown = true;
    return PictureUse::shown;
}

int run_paced_frame() {
    beam_has_shown = false;
    if (runs_ahead()) picture_use = PictureUse::drawn;
    if (stretch == TURBO) picture_use = PictureUse::dropped;
    const int end = run_with_answers(pacing_host.run_frame);
    picture_use = PictureUse::shown;
    return end;
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
        if (run_with_answers(pacing_host.run_frame) != MACHINE_FRAME) return;
        run_timed_events();
        if (pacing_host.has_canvas()) update_screen(1);
    }
}

int64_t paced_frame_step() {
    follow_speed();
    if (step == Step::none) {
        if (run_paced_frame() != MACHINE_FRAME) return 0;
        platform().keyboard().release_tapped();
        run_timed_events();
        step = Step::run;
    }
    look_at_clock();
    if (const int64_t ahead = microseconds_ahead()) return ahead;
    show_paced_frame();
    step = Step::none;
    pacing.elapsed_temp += frame_time();
    return 0;
}

PictureUse use_of_picture() {
    return picture_use == PictureUse::dropped ? use_of_turbo_picture() : picture_use;
}

bool paced_frame_waits() { return step == Step::run; }

void show_paced_frame() {
    if (step != Step::run) return;
    step = Step::shown;
    ++pacing.ticks;
    if (!short_period.runs) report_speed_when_due();
    update_screen_when_due();
    if (short_period.runs) report_short_period_when_due();
    speed_watch_tape();
    if (pacing_host.run_frame == machine_run) machine_apply(event_kind::tape_moves);
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
    short_period.runs = false;
    look_at_clock();
    pacing.next_frame = pacing.elapsed_counter;
    pacing.next_measure = pacing.elapsed_counter + pacing.two_seconds;
    pacing.ticks = pacing.last_total_frames = pacing.total_frames = 0;
    pacing.elapsed_temp = pacing.elapsed_counter;
}

void show_frame_rate() {
    show_speed(pacing.ticks * 50 / int(frames_per_second()),
               (pacing.total_frames - pacing.last_total_frames) >> 1);
}
