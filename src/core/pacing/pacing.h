#pragma once
/// Pacing: keeps the machine in step with the host's clock, or faster or slower than that
/// (speed.h), limits screen updates to the display's refresh rate, looks ahead (run_ahead.h), and
/// serves the timed events of the command line.

#include <cstdint>
#include <string>

/// Wait for real time.
extern bool g_Timer;
/// A video capture is running: every frame is presented and handed to it (0 or 2).
extern int g_bRecordingVideo;
/// Run-ahead: frames that are run in advance of each that is shown, 0 to MOST_FRAMES_AHEAD. Films
/// and screenshots keep the true frames. Without effect in turbo and while nothing is paced.
extern uint32_t frames_ahead;
/// Base name, without extension, of screenshots; empty after a reset.
extern std::string last_file_name;

/// Absolute cycle counts of the timed events; EVENT_DISARMED when there is none. A screenshot waits
/// for a canvas.
constexpr int64_t EVENT_DISARMED = INT64_MAX;
extern int64_t event_shutdown_timout;
extern int64_t event_screenshot_timout;

/// Pacing state, in counts of the host's clock.
struct pacing_state {
    int64_t two_seconds;      ///< the measuring period
    int64_t frame_period;     ///< per emulated frame
    uint32_t frame_interval;  ///< per refresh of the display
    uint32_t monitor_refresh; ///< Hz
    int64_t elapsed_counter;  ///< "now": read after each frame
    int64_t elapsed_temp;     ///< where the emulated time stands
    int64_t next_frame;       ///< when the next screen update is due
    int64_t next_measure;     ///< when the next speed report is due
    int32_t ticks;            ///< frames since the last report
    int32_t total_frames;     ///< screen updates
    int32_t last_total_frames;
};
extern pacing_state pacing;

/// What pacing tells and asks the program around it.
struct pacing_calls {
    void (*title)(const char* text); ///< of the window, behind the product's name
    bool (*has_canvas)();            ///< there is one to draw into
    void (*save_screenshot)();       ///< of the canvas, under the next free name
    void (*capture_frame)();         ///< hands the canvas to the running video capture
    /// The machine waits for the answer to a question: whether there is one now.
    bool (*answer_question)();
    /// A frame of the live machine is complete, whether it was paced, single or ended by a step.
    void (*frame_ran)();
    /// Shows the picture of the machine as it is now and leaves the canvas as it is.
    void (*show_ahead)();
    /// Runs a whole frame: machine_run, or what plays a replay, which has its own moves of the
    /// tape.
    int (*run_frame)();
};
/// Without a host nothing is shown, and there is no canvas.
extern pacing_calls pacing_host;

/// Calls `run`, which is machine_run or machine_step. When the machine waits for an answer, the
/// question is put to the user and the run goes on with the answer; MACHINE_WAITS when there is
/// none yet. Every frame of the live machine ends here, and is told to pacing_host.frame_ran.
int run_with_answers(int (*run)());
/// Serves the timed events that are due, after a frame that was not paced.
void run_timed_events();
/// Runs frames and shows each, without pacing. Ends early at the breakpoint, and at a question that
/// has no answer yet.
void do_some_frames(int count);
/// Takes a timed screenshot that fell due before there was a canvas, unless the shutdown came
/// first.
void take_late_screenshot();
/// One frame, screen update included: the body of the idle loop. Runs the machine and returns the
/// microseconds after which to call again, where real time has to catch up first; then shows the
/// frame. 0 when the frame is complete, or the machine stands at the breakpoint.
int64_t paced_frame_step();
/// Whether a frame has been run and waits for real time before it is shown.
bool paced_frame_waits();
/// Shows the frame that waits, before anything else happens. The rest of its time still has to
/// pass.
void show_paced_frame();

/// What is to be done with a picture that the machine presents or is asked for.
enum class PictureUse : uint8_t {
    shown,
    drawn,  ///< into the canvas only: a later one is shown in its place
    dropped ///< in turbo, between two refreshes of the display
};
PictureUse use_of_picture();

/// Reads the clock's frequency and the display's refresh rate, and starts pacing for the active
/// configuration; once, when the platform is there.
void init_timers();
/// Starts pacing for so many frames per second, above 0.
void timer_recalibrate_fps(uint32_t screen_frequency);
/// Restarts pacing from now, so that halted time is not caught up. A frame that waits is over.
void reset_timer();
/// Writes the speed report into the window title.
void show_frame_rate();
