#include "host/rewind.h"

#include "core/frame_driver.h"
#include "core/machine_state.h"
#include "core/pacing/pacing.h"
#include "host/commands.h"
#include "host/film_bar.h"
#include "host/joysticks.h"
#include "host/shell.h"
#include "monitor/monitor.h"
#include "platform/platform.h"
#include "sound/output/sound_ring.h"
#include "time/history.h"
#include "wall/machine_host.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int64_t MICROSECONDS = 1'000'000; ///< in a second
constexpr int WHEEL_NOTCH = 120;
constexpr int SHIFT_SPEED = 2; ///< times as fast as the machine runs
constexpr int CONTROL_SPEED = 4;
constexpr int HIGHEST_SPEED = 16;
constexpr int64_t DOUBLING_SECONDS = 3;
/// Periods that a slow host may be behind before it goes back more slowly.
constexpr int64_t LONGEST_DELAY = 10;

enum class Mode : uint8_t {
    off,
    held_key, ///< time runs backwards
    held_pad,
    open ///< the bar; the machine pauses
};

struct {
    Mode mode = Mode::off;
    bool paused_before = false; ///< by the user, when the bar was opened
    bool dragging = false;
    bool pad_was_down = false;
    std::optional<int64_t> wanted; ///< frame that the mouse is at
    int64_t began = 0;             ///< by the host's clock
    int64_t next_picture = 0;
    machine_state shown; ///< the machine of the past, as the history gave it
} now;

bool is_held() { return now.mode == Mode::held_key || now.mode == Mode::held_pad; }

int64_t second() { return frames_per_second(); }

bool history_can_be_used() {
    if (history_is_kept()) return true;
    StatusBarText("There is no history to go back in: \"Keep history\" in the Options is off.");
    return false;
}

// ---- what is seen ------------------------------------------------------------------------------

int speed() {
    HostKeyboard& keys = platform().keyboard();
    int times = 1;
    if (now.mode == Mode::held_key && keys.is_down(KEY_SHIFT)) times = SHIFT_SPEED;
    if (now.mode == Mode::held_key && keys.is_down(KEY_CONTROL)) times = CONTROL_SPEED;
    const int64_t doubling = DOUBLING_SECONDS * platform().clock().frequency();
    for (int64_t held = now.next_picture - now.began; held >= doubling; held -= doubling) {
        if (times < HIGHEST_SPEED) times *= 2;
    }
    return std::min(times, HIGHEST_SPEED);
}

std::vector<std::string> hints() {
    if (!is_held()) {
        return {"Arrows: frame, +Shift: second, +Ctrl: ten   Return: play on   Esc: present",
                "Arrows, Home, End   Return: play on   Esc: present",
                "Return: play on  Esc: present", "Return: play, Esc: back"};
    }
    if (history_position() == history_first()) return {"Here the history begins", "The beginning"};
    const std::string times = std::to_string(speed()) + "x back";
    return {times + "   Let go to play on from here   Esc: present", times + ", let go to play",
            times};
}

void show_bar() {
    film_bar_show({.first = history_first(),
                   .position = history_position(),
                   .last = history_last(),
                   .frames_per_second = frames_per_second(),
                   .single_frames = !is_held(),
                   .hints = hints()});
}

/// The listing follows the machine; all else the history shows itself.
void show_listing() {
    if (g_bDebug && monitor_page == MONITOR_DISASSEMBLY) debug();
}

// ---- moves -------------------------------------------------------------------------------------

/// Shows the frame, or the nearest one that there is.
void move_to(int64_t frame) {
    const int64_t target = std::clamp(frame, history_first(), history_last());
    if (target != history_position()) {
        const std::string problem = history_show(target);
        if (!problem.empty()) StatusBarText("%s", problem.c_str());
        show_listing();
        if (!history_is_live()) machine_save(now.shown);
    }
    show_bar();
}

void move_by(int64_t frames) { move_to(history_position() + frames); }

/// The machine as it is now becomes the present.
void stay_here() {
    if (!history_is_live()) history_go_on();
    now.shown = {};
}

/// A configuration of another time may have other frames.
void pace_afresh() { timer_recalibrate_fps(frames_per_second()); }

void begin(Mode mode) {
    show_paced_frame(); // it has been run already
    sound_fade(true);
    now.mode = mode;
    now.began = now.next_picture = platform().clock().counter();
    show_bar();
}

void close_bar() {
    now.mode = Mode::off;
    now.dragging = false;
    now.wanted = {};
    now.shown = {};
    film_bar_hide();
    if (g_bFullScreen) platform().window().show_cursor(false);
    // The machine does not get the key that has closed the bar.
    platform().keyboard().release_all();
    pace_afresh();
}

void end_hold() {
    stay_here();
    now.mode = Mode::off;
    film_bar_hide();
    pace_afresh();
    sound_fade(false);
}

void end_pause() {
    if (g_bPaused) pause_machine();
    if (g_bActive) sound_resume();
}

/// Plays on from here.
void play() {
    stay_here();
    close_bar();
    end_pause();
}

/// Something else than the bar has made the machine go on from here.
void follow_change() {
    stay_here();
    close_bar();
    if (!now.paused_before) end_pause();
}

bool is_still_held() {
    if (now.mode == Mode::held_pad) return rewind_button_is_down();
    return platform().keyboard().is_down(KEY_PAGE_UP);
}

/// One step for each frame period that has passed. Microseconds until the next one.
int64_t run_backwards() {
    Clock& clock = platform().clock();
    const int64_t period = std::max<int64_t>(pacing.frame_period, 1);
    const int64_t time = clock.counter();
    if (time >= now.next_picture) {
        const int64_t periods = std::min((time - now.next_picture) / period + 1, LONGEST_DELAY);
        platform().keyboard().release_tapped();
        move_by(-periods * speed());
        now.next_picture = std::max(now.next_picture + periods * period, time - period);
    }
    const int64_t left = now.next_picture - clock.counter();
    return std::max<int64_t>(left * MICROSECONDS / clock.frequency(), 0) + 1;
}

/// Has a command changed the machine that is looked at?
bool is_changed() {
    if (history_is_live() || now.shown.records.empty()) return false;
    machine_state live;
    machine_save(live);
    return !machine_equal(live, now.shown);
}

// ---- keys and mouse of the open bar ------------------------------------------------------------

/// Frames of a move to the side.
int64_t stride(uint8_t modifiers) {
    if (modifiers & MODIFIER_CONTROL) return 10 * second();
    return modifiers & MODIFIER_SHIFT ? second() : 1;
}

bool is_key_of_bar(int key) {
    switch (key) {
    case KEY_LEFT:
    case KEY_RIGHT:
    case KEY_HOME:
    case KEY_END:
    case KEY_PAGE_UP:
    case KEY_RETURN:
    case KEY_ESCAPE: return true;
    case KEY_PAGE_DOWN: return history_position() < history_last();
    default: return false;
    }
}

void take_key(const Event& event) {
    switch (event.value) {
    case KEY_LEFT: return move_by(-stride(event.modifiers));
    case KEY_RIGHT: return move_by(stride(event.modifiers));
    case KEY_PAGE_UP: return is_held() ? void() : move_by(-1);
    case KEY_PAGE_DOWN: return move_by(1);
    case KEY_HOME: return move_to(history_first());
    case KEY_END: return move_to(history_last());
    case KEY_RETURN: return play();
    case KEY_ESCAPE: return rewind_end();
    default: break;
    }
}

void press(const Pointer& pointer) {
    switch (film_bar_part_at(pointer.x, pointer.y)) {
    case FilmBarPart::play: return play();
    case FilmBarPart::present: return rewind_end();
    case FilmBarPart::track:
        now.dragging = true;
        now.wanted = film_bar_frame_at(pointer.x);
        break;
    case FilmBarPart::none: break;
    }
}

void take_pointer(const Event& event) {
    const Pointer& pointer = event.pointer;
    const bool left = pointer.button == BUTTON_LEFT;
    switch (pointer.act) {
    case Pointer::Act::press:
    case Pointer::Act::double_click:
        if (left) press(pointer);
        break;
    case Pointer::Act::move:
        if (now.dragging) now.wanted = film_bar_frame_at(pointer.x);
        break;
    case Pointer::Act::release:
        if (left) now.dragging = false;
        break;
    case Pointer::Act::wheel: move_by(event.value / WHEEL_NOTCH * second()); break;
    }
}

/// The key that leads back, with no bar shown.
void key_pressed() {
    if (!g_bPaused && !shell_state.debugger_stands) return begin(Mode::held_key);
    rewind_open();
    move_by(-1);
}

} // namespace

void rewind_open() {
    if (now.mode == Mode::open) return rewind_end();
    if (!history_can_be_used()) return;
    if (is_held()) end_hold();
    now.mode = Mode::open;
    now.paused_before = g_bPaused;
    if (!g_bPaused) pause_machine();
    platform().window().show_cursor(true);
    show_bar();
}

void rewind_end() {
    if (now.mode == Mode::off) return;
    const bool goes_on = now.mode == Mode::open && !now.paused_before;
    move_to(history_last());
    if (is_held()) return end_hold();
    close_bar();
    if (goes_on) end_pause();
}

void rewind_stay_here() {
    if (history_is_live()) return;
    is_held() ? end_hold() : follow_change();
}

bool rewind_wants(const Event& event) {
    if (event.kind == Event::Kind::pointer) {
        return now.mode == Mode::open && event.pointer.pane == PaneId::film_bar;
    }
    if (event.kind != Event::Kind::key_down || event.modifiers & MODIFIER_ALT) return false;
    if (now.mode == Mode::open) return is_key_of_bar(event.value);
    if (is_held()) return event.value == KEY_ESCAPE || event.value == KEY_PAGE_UP;
    return event.value == KEY_PAGE_UP && !g_bDebug;
}

bool rewind_take_event(const Event& event) {
    if (!rewind_wants(event)) return false;
    if (event.kind == Event::Kind::pointer) {
        take_pointer(event);
    } else if (now.mode != Mode::off) {
        take_key(event);
    } else if (!event.repeat && history_can_be_used()) {
        key_pressed();
    }
    return true;
}

std::optional<int64_t> rewind_turn() {
    if (is_held() && !is_still_held()) end_hold();
    if (const bool down = rewind_button_is_down(); std::exchange(now.pad_was_down, down) != down) {
        if (down && now.mode == Mode::off && g_bActive && history_is_kept()) begin(Mode::held_pad);
    }
    if (is_held()) {
        if (!is_changed()) return run_backwards();
        end_hold();
    }
    if (now.mode == Mode::open) {
        if (g_bActive || !history_is_kept() || is_changed()) {
            follow_change();
        } else if (now.wanted) {
            move_to(*std::exchange(now.wanted, {}));
        } else {
            show_bar(); // a frame may have been run
        }
    }
    return {};
}
