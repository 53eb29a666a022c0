#include "host/turn.h"

#include "core/machine_events.h"
#include "core/pacing/pacing.h"
#include "host/attachments.h"
#include "host/autostart.h"
#include "host/commands.h"
#include "host/debugger_window.h"
#include "host/debugging.h"
#include "host/dialogs/hold.h"
#include "host/disks.h"
#include "host/display.h"
#include "host/dropped_files.h"
#include "host/examples.h"
#include "host/film_bar.h"
#include "host/key_map.h"
#include "host/main_window.h"
#include "host/media_menu.h"
#include "host/media_panels.h"
#include "host/menu.h"
#include "host/messages.h"
#include "host/options.h"
#include "host/overlay.h"
#include "host/recent.h"
#include "host/remote.h"
#include "host/replays.h"
#include "host/resume.h"
#include "host/rewind.h"
#include "host/screen_keyboard.h"
#include "host/shell.h"
#include "host/status.h"
#include "host/welcome.h"
#include "media/files/typed_text.h"
#include "monitor/monitor.h"
#include "platform/platform.h"
#include "sound/output/sound_ring.h"
#include "wall/machine_host.h"

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <optional>
#include <utility>

namespace {

constexpr int WHEEL_NOTCH = 120;
constexpr int WHEEL_SCALE = 256;
constexpr int64_t MS_PER_SECOND = 1000;
constexpr int64_t MICROSECONDS = 1'000'000; ///< in a second

/// What is going on between two turns.
struct {
    std::deque<Event> messages;   ///< that have come and are not handled yet
    std::optional<int> exit_code; ///< the quit message has come
    bool closing = false;         ///< the last questions are being asked
    bool closed = false;
    bool menu_open = false;
    bool menu_closed = false; ///< since the last turn
    std::function<void()> after_rest;
    int64_t rest_ends = 0; ///< by the host's clock
} turn;

class ShellSink final : public EventSink {
public:
    void loop_begins() override {
        turn.menu_open = true;
        sound_pause();
    }
    void loop_ends() override {
        turn.menu_open = false;
        turn.menu_closed = true;
        show_tip({});
    }
    void menu_opens() override {
        show_examples();
        show_recent_files();
        grey_media_items();
    }
    void item_highlighted(int id) override { show_tip(menu_tip(id)); }
    void paint(PaneId pane) override {
        switch (pane) {
        case PaneId::picture: return show_canvas();
        case PaneId::monitor: return monitor_update();
        case PaneId::film_bar: return film_bar_draw();
        case PaneId::overlay: return overlay_draw();
        case PaneId::keyboard: return draw_screen_keyboard();
        case PaneId::debugger: return paint_debugger_window();
        }
    }
    void draw_status() override { led_redraw(1); }
    void session_ends() override {
        main_disk_keep_journals();
        resume_keep_now();
        write_options();
    }
};
ShellSink sink;

void leave_menu() {
    reset_timer();
    sound_resume();
    host_keyboard_reset();
}

/// The program has become active or inactive. With run-in-background the machine goes on either
/// way.
void application_activated(bool active) {
    g_bActive = !machine_is_held() && (g_bRunInBackground || active);
    reset_timer();
}

void paint() {
    if (g_bDebug) return monitor_update();
    update_screen(1);
    reset_timer();
}

void wheel_turned(int delta) {
    const int notches = delta / WHEEL_NOTCH;
    step_dir_rows(notches < 0 ? 1 : -1, std::abs(notches * WHEEL_SCALE / WHEEL_NOTCH));
}

/// Stepping and scrolling go on while the key is held; anything else happens once.
bool repeats(const Event& key) {
    if (key.modifiers) return false;
    return (key.value >= KEY_PAGE_UP && key.value <= KEY_DOWN) || key.value == KEY_RETURN;
}

bool is_double_click(const Event& event) {
    return event.pointer.act == Pointer::Act::double_click && event.pointer.button == BUTTON_LEFT;
}

bool is_scrolling(const Event& event) {
    return event.pointer.act == Pointer::Act::wheel && g_bDebug;
}

/// What the shell has no use for does not even bring the waiting frame forward.
bool is_of_use(const Event& event) {
    if (event.pane == PaneId::debugger) return debugger_window_wants(event);
    switch (event.kind) {
    case Event::Kind::key_down: return !event.repeat || repeats(event) || rewind_wants(event);
    case Event::Kind::pointer:
        return debugger_window_wants(event) || screen_keyboard_wants(event) ||
               is_double_click(event) || is_scrolling(event) || rewind_wants(event);
    case Event::Kind::key_up:
    case Event::Kind::text: return false;
    default: return true;
    }
}

void pointer_used(const Event& event) {
    if (screen_keyboard_wants(event)) return screen_keyboard_take_event(event);
    if (rewind_take_event(event)) return;
    if (is_double_click(event)) handle_command(COMMAND_GIANT_SCREEN);
    if (is_scrolling(event)) wheel_turned(event.value);
}

void key_pressed(const Event& event) {
    const int command = accelerator_command(event.value, event.modifiers);
    if (command) return obey_accelerator(command);
    obey_user([&event] { handle_key(event); });
}

void file_dropped(const Event& event) {
    const auto start = [&event] {
        event.bytes ? autostart_bytes(event.text, *event.bytes) : autostart_file(event.text);
        take_further_files(event.text, event.more);
    };
    obey_user(start, reset_timer);
}

/// The host's keyboard layout has changed. A user who chooses another layout wants its characters,
/// so the symbolic mapping is then on until the program ends.
void layout_changed(bool by_user) {
    if (by_user) g_KeyMapping = true;
    if (replay_plays() && !by_user) {
        host_keyboard_learn(); // any more would end the replay
    } else {
        host_keyboard_init();
        machine_apply(event_kind::key_mapping, g_KeyMapping);
    }
    check_menu_item(COMMAND_SYMBOLIC_KEYS, g_KeyMapping);
    relabel_screen_keyboard();
}

void handle(const Event& event) {
    show_paced_frame();        // the frame came before the message
    main_disk_keep_journals(); // the message may open a dialog
    const bool halted = !g_bActive;
    WindowProcedure(event);
    if (halted) reset_timer();
}

/// While the shell is held, messages wait. Behind the quit message nothing is handled any more.
void handle_messages() {
    Events& events = platform().events();
    for (;;) {
        for (Event event = events.poll(); event.kind != Event::Kind::none; event = events.poll()) {
            turn.messages.push_back(std::move(event));
        }
        if (turn.exit_code || shell_is_held() || turn.messages.empty()) return;
        const Event event = std::move(turn.messages.front());
        turn.messages.pop_front();
        if (event.kind == Event::Kind::quit) {
            turn.exit_code = event.value;
        } else if (is_of_use(event)) {
            handle(event);
        }
    }
}

/// The end of the program is a chain: the questions for each drive, and what comes behind them.
void close_shell() {
    if (std::exchange(turn.closing, true)) return;
    rewind_end();
    emu_close([] { turn.closed = true; });
}

int end_shell() {
    const int exit_code = *turn.exit_code;
    turn = {}; // the messages behind the quit message are dropped
    return exit_code;
}

/// What is left of the rest, in microseconds; 0 when it is over or there is none.
int64_t rest_left() {
    if (!turn.after_rest) return 0;
    const int64_t left = turn.rest_ends - platform().clock().counter();
    return left <= 0 ? 0 : left * MICROSECONDS / platform().clock().frequency() + 1;
}

bool is_halted() { return !g_bActive || turn.menu_open; }

/// Of messages and machine.
ShellTurn main_turn() {
    using enum ShellTurn::Next;
    const bool was_held = shell_is_held();
    attachments_settle();
    if (std::exchange(turn.menu_closed, false)) leave_menu();
    handle_messages();
    media_panels_turn(is_halted());
    const bool debugger_works = debugging_turn();
    debugger_window_turn();
    if (const int64_t left = rest_left()) return {.next = in_time, .microseconds = left};
    if (turn.after_rest) {
        std::exchange(turn.after_rest, nullptr)();
        release_shell();
        return {};
    }
    // The frame before the quit message is still shown at its time.
    if (turn.exit_code && (is_halted() || !paced_frame_waits())) close_shell();
    if (turn.closed) return {.next = end, .exit_code = end_shell()};
    if (turn.closing || shell_is_held()) return {.next = on_event};
    if (was_held || debugger_works) return {};
    if (!turn.menu_open) {
        if (const auto wait = rewind_turn()) return {.next = in_time, .microseconds = *wait};
    }
    if (!is_halted()) {
        const int64_t wait = paced_frame_step();
        if (!wait) welcome_frame_shown();
        update_screen_keyboard();
        main_disk_keep_journals_when_due();
        resume_keep_when_due();
        return {.next = wait ? in_time : now, .microseconds = wait};
    }
    main_disk_keep_journals(); // the program may now wait for long
    if (!turn.menu_open) resume_keep_halted();
    platform().keyboard().release_tapped();
    screen_keys_frame_ran();
    update_screen_keyboard();
    return {.next = on_event};
}

} // namespace

void take_immediate_events() { platform().events().set_sink(sink); }

void rest_shell(uint32_t milliseconds, std::function<void()> then) {
    hold_shell();
    Clock& clock = platform().clock();
    turn.rest_ends = clock.counter() + milliseconds * clock.frequency() / MS_PER_SECOND;
    turn.after_rest = std::move(then);
}

void WindowProcedure(const Event& event) {
    if (debugger_window_wants(event)) return debugger_window_take_event(event);
    switch (event.kind) {
    case Event::Kind::close:
        platform().window().destroy();
        platform().events().post_quit(0);
        break;
    case Event::Kind::moved: reset_timer(); break;
    case Event::Kind::resized:
        fit_screen_keyboard();
        StatusBarRedraw();
        window_was_resized();
        reset_timer();
        break;
    case Event::Kind::focus: update_screen(1); break;
    case Event::Kind::paint: paint(); break;
    case Event::Kind::activate: application_activated(event.value != 0); break;
    case Event::Kind::layout_changed: layout_changed(event.value != 0); break;
    case Event::Kind::key_down: key_pressed(event); break;
    case Event::Kind::command: handle_command(event.value); break;
    case Event::Kind::status_button: popup_media_menu(event.value); break;
    case Event::Kind::pointer: pointer_used(event); break;
    case Event::Kind::drop: file_dropped(event); break;
    case Event::Kind::clipboard: type_into_machine(event.text); break;
    case Event::Kind::none:
    case Event::Kind::key_up:
    case Event::Kind::text:
    case Event::Kind::quit: break;
    }
}

ShellTurn shell_turn() {
    using enum ShellTurn::Next;
    std::optional<int64_t> left = remote_turn();
    ShellTurn done = main_turn();
    const std::optional<int64_t> overlay = overlay_turn();
    if (overlay) left = std::min(left.value_or(*overlay), *overlay);
    if (!left) return done;
    if (done.next == on_event) return {.next = in_time, .microseconds = *left};
    done.microseconds = std::min(done.microseconds, *left);
    return done;
}

int run_message_loop() {
    Events& events = platform().events();
    for (;;) {
        const ShellTurn done = shell_turn();
        switch (done.next) {
        case ShellTurn::Next::now: break;
        case ShellTurn::Next::in_time: events.wait(done.microseconds); break;
        case ShellTurn::Next::on_event: events.wait(Events::NO_LIMIT); break;
        case ShellTurn::Next::end: return done.exit_code;
        }
    }
}
