#include "time/history.h"

#include "cgenie/crtc.h"
#include "cgenie/video.h"
#include "core/frame_driver.h"
#include "core/machine_events.h"
#include "core/machine_mute.h"
#include "core/machine_state.h"
#include "time/event_feed.h"
#include "time/history_record.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

history_calls history_host = {
    .nanoseconds = [] { return int64_t(0); },
    .companion = [] { return shared_bytes(); },
    .present = [](bool) {},
    .follow = [](const shared_bytes&) {},
    .show = [] {},
};

std::optional<history_parts::History> history_parts::history;

namespace {

using history_parts::History;
using history_parts::history;
using history_parts::leave_present;
using history_parts::load;
using history_parts::load_and_follow;
using history_parts::show_frame_buffer;
using history_parts::take_up_present;

/// Cycles from one state to the next: what the slower engine runs in ten milliseconds.
constexpr int64_t SPACING = 2'200'000;
/// A state is not taken before so many times the time has passed that the last one has cost.
constexpr int64_t REST = 60;
constexpr int64_t YOUNG_SECONDS = 3600; ///< whose states are dropped last
constexpr uint64_t LIMIT_PART = 16;     ///< the part of the limit that is freed at one stroke

/// What the beam has shown last; its picture is complete somewhere inside of a frame.
struct Picture {
    std::vector<uint8_t> pixels;
    int64_t frame = -1; ///< below 0 unknown
    bool is_new = false;
};

bool tells_others = false; ///< of another state, which the history itself has made

// ---- keeping -----------------------------------------------------------------------------------

bool acts(const machine_event& event) {
    return is_act(event.kind) && event.kind != event_kind::tape_moves;
}

void append(const machine_event& event) {
    History& now = *history;
    now.events.append(event);
    if (acts(event)) now.acted = true;
    // Part of the line engine's last picture stays in the beam's first one.
    if (event.kind == event_kind::engine) now.lone_state = true;
}

/// Forgets what came after the place that is shown.
void forget_future() {
    History& now = *history;
    const int64_t frame = now.place.frame();
    now.states.cut(frame);
    now.events.cut(frame, now.place.done());
    now.picture = now.picture_then;
    now.pictures_shown = now.pictures_shown_then;
    now.companion = now.states.at(frame)->companion;
    now.present = {};
    now.acted = true;
    now.live = true;
    for (const machine_event& event : std::exchange(now.pending, {})) append(event);
}

void take_state() {
    History& now = *history;
    const int64_t begin = history_host.nanoseconds();
    now.states.add({.frame = now.events.last(),
                    .picture = now.picture,
                    .alone = now.lone_state,
                    .companion = now.companion});
    now.lone_state = false;
    now.taken_at = history_host.nanoseconds();
    // The host may have been busy with something else; a key takes longer than the others.
    const int64_t longest = now.taken_in ? 2 * now.taken_in : INT64_MAX;
    now.taken_in = std::min(now.taken_at - begin, longest);
}

void thin() {
    History& now = *history;
    const uint64_t bytes = history_bytes();
    if (bytes <= std::max(now.thin_above, now.settings.limit)) return;
    const uint64_t part = now.settings.limit / LIMIT_PART;
    const uint64_t others = bytes - now.states.bytes() + part;
    const int64_t young = now.events.last() - YOUNG_SECONDS * frames_per_second();
    now.states.thin(now.settings.limit > others ? now.settings.limit - others : 0, young);
    now.thin_above = history_bytes() + part;
}

bool state_is_due() {
    const History& now = *history;
    if (now.lone_state) return true;
    const int64_t since = z80_state.t_count - now.states.last().cycle;
    if (since >= 0 && since < SPACING) return false;
    return now.taken_in == 0 || history_host.nanoseconds() - now.taken_at >= REST * now.taken_in;
}

void look_at_companion() {
    History& now = *history;
    const bool arrived = std::exchange(now.has_arrived, false);
    if (!std::exchange(now.acted, false)) return;
    shared_bytes companion = history_host.companion();
    if (arrived) now.states.change_companion(companion); // the host has followed the other state
    if (companion == now.companion) return;
    now.companion = std::move(companion);
    now.lone_state = !arrived;
}

void take_events(std::span<const machine_event> events) {
    History& now = *history;
    for (const machine_event& event : events) {
        if (now.live) {
            append(event);
            continue;
        }
        now.pending.push_back(event);
        if (event.kind == event_kind::frame_end) history_go_on();
    }
}

/// The present, and then the other state: nothing is forgotten.
void take_another_state() {
    if (tells_others) return;
    History& now = *history;
    if (!now.live) history_host.present(true);
    now.live = true;
    now.present = {};
    now.pending.clear();
    now.events.append_break();
    now.picture = -1;
    now.pictures_shown = crtc.frame_counter;
    now.lone_state = true;
    take_state();
    now.has_arrived = true;
    now.acted = true;
}

void tell_others() {
    tells_others = true;
    event_feed_another_state();
    tells_others = false;
}

// ---- looking at the past -----------------------------------------------------------------------

Picture* beam_picture = nullptr; ///< where the beam's pictures go

void keep_picture(Picture& to) {
    constexpr size_t PIXELS = size_t(SCREEN_WIDTH) * SCREEN_HEIGHT;
    to.pixels.assign(frame_buffer, frame_buffer + PIXELS);
    to.is_new = true;
}

/// Runs the live machine from the end of a frame to that of frame `to`. `picture` gets the last one
/// that the beam has shown; without any it stays as it is.
std::string run(HistoryRun& place, int64_t to, Picture& picture) {
    beam_picture = &picture;
    place.show = [](int) { keep_picture(*beam_picture); };
    history_end end = history_end::frame;
    while (place.frame() < to && end == history_end::frame) {
        end = place.run_frame(history->events, false);
        if (std::exchange(picture.is_new, false)) picture.frame = place.frame();
    }
    beam_picture = nullptr;
    place.show = [](int) {};
    if (end == history_end::broken) return "no events lead there";
    return place.trouble();
}

std::string go_to(const HistoryState& state, int64_t frame, Picture& picture, HistoryRun& place) {
    std::string trouble = load(state);
    if (!trouble.empty()) return trouble;
    place.begin(state.frame, state.picture);
    return run(place, frame, picture);
}

/// The picture that was shown in this frame, drawn by the beam or by the line engine.
Picture find_picture(int64_t frame) {
    Picture picture;
    if (frame <= history_first()) return picture;
    HistoryRun place;
    if (!go_to(*history->states.at(frame - 1), frame, picture, place).empty()) return {};
    if (!g_bCycleBasedEngine) {
        video_render_frame();
        keep_picture(picture);
    }
    picture.frame = frame;
    return picture;
}

/// The state from which to go to a frame. From the state of that frame itself, the beam would still
/// have to find its picture.
const HistoryState& start_for(int64_t frame) {
    const HistoryState& state = *history->states.at(frame);
    const bool finds = state.frame < frame || !state.beam || state.picture < frame;
    return finds || state.alone ? state : *history->states.at(frame - 1);
}

/// The frame buffer is shown with the picture, in place of the one that the beam is drawing.
void show(const Picture& picture) {
    if (picture.pixels.empty()) return show_frame_buffer();
    if (!g_bCycleBasedEngine) video_render_frame();
    Picture drawing;
    keep_picture(drawing);
    std::ranges::copy(picture.pixels, frame_buffer);
    history_host.show();
    std::ranges::copy(drawing.pixels, frame_buffer);
}

/// Makes the frame the live one.
std::string look_at(int64_t frame) {
    const HistoryState& state = *history->states.at(frame);
    if (state.companion != history->followed) {
        if (std::string trouble = load_and_follow(state); !trouble.empty()) return trouble;
    }
    Picture picture;
    std::string trouble = go_to(start_for(frame), frame, picture, history->place);
    if (!trouble.empty()) return trouble;
    if (g_bCycleBasedEngine && picture.pixels.empty()) {
        machine_state parked;
        machine_save(parked);
        picture = find_picture(state.picture);
        const MachineMute mute;
        machine_load(parked);
    }
    history->picture_then = g_bCycleBasedEngine ? picture.frame : frame;
    history->pictures_shown_then = crtc.frame_counter;
    show(picture);
    return {};
}

void return_to_present() {
    History& now = *history;
    Picture picture = now.states.last().beam ? find_picture(now.picture) : Picture();
    take_up_present();
    if (!g_bCycleBasedEngine) picture = {};
    show(picture);
}

} // namespace

namespace history_parts {

std::string load(const HistoryState& state) {
    machine_state unpacked;
    const MachineMute mute;
    const bool loaded = history->states.unpack(state, unpacked) && machine_load(unpacked);
    return loaded ? "" : "a state is damaged";
}

void follow(const shared_bytes& companion) {
    if (companion == history->followed) return;
    history->followed = companion;
    history_host.follow(companion);
}

std::string load_and_follow(const HistoryState& state) {
    if (state.companion == history->followed) return load(state);
    // The host may have to open the tape that is read again. What it does to the machine is its
    // own.
    if (std::string trouble = load(state); !trouble.empty()) return trouble;
    follow(state.companion);
    event_feed_past(history->reader);
    history->pending.clear();
    return load(state);
}

void leave_present() {
    History& now = *history;
    history_host.present(false);
    look_at_companion();
    now.live = false;
    now.followed = now.present_companion = history_host.companion();
    machine_save(now.present);
}

void take_up_present() {
    History& now = *history;
    {
        const MachineMute mute;
        machine_load(now.present);
    }
    now.live = true;
    follow(now.present_companion);
    now.present = {};
    history_host.present(true);
}

void show_frame_buffer() {
    if (!g_bCycleBasedEngine) video_render_frame();
    history_host.show();
}

} // namespace history_parts

void history_start(const history_settings& settings) {
    history_stop();
    const int reader = event_feed_add(
        [](std::span<const machine_event> events) {
            if (history) take_events(events);
        },
        take_another_state);
    history.emplace();
    history->settings = settings;
    history->reader = reader;
    history->picture = -1;
    history->pictures_shown = crtc.frame_counter;
    history->companion = history_host.companion();
    history->lone_state = true;
    take_state();
}

void history_set_limit(uint64_t bytes) {
    if (!history) return;
    history->settings.limit = bytes;
    history->thin_above = 0;
}

void history_stop() {
    if (!history) return;
    history_go_on();
    const int reader = history->reader;
    history.reset();
    event_feed_remove(reader);
}

bool history_is_kept() { return history.has_value(); }

void history_frame_ran() {
    if (!history) return;
    event_feed_frame();
    History& now = *history;
    if (!g_bCycleBasedEngine || crtc.frame_counter != now.pictures_shown) {
        now.picture = now.events.last();
    }
    now.pictures_shown = crtc.frame_counter;
    look_at_companion();
    if (!state_is_due()) return;
    take_state();
    now.events.pack();
    thin();
}

int64_t history_first() { return 0; }
int64_t history_last() { return history ? history->events.last() : 0; }
int64_t history_position() {
    return history && !history->live ? history->place.frame() : history_last();
}
bool history_is_live() { return !history || history->live; }

std::string history_show(int64_t frame) {
    if (!history) return "no history is kept";
    History& now = *history;
    now.live ? event_feed_frame() : event_feed_past(now.reader);
    if (now.live && frame >= history_last()) return {};
    if (now.live) leave_present();
    now.pending.clear(); // what was done at the frame that is shown
    if (frame >= history_last()) {
        return_to_present();
        return {};
    }
    std::string trouble = look_at(std::max(frame, history_first()));
    event_feed_past(now.reader); // the host does again what it did to follow, when it goes on
    now.pending.clear();
    if (!trouble.empty()) return_to_present();
    return trouble;
}

void history_go_on() {
    if (!history || history->live) return;
    event_feed_past(history->reader);
    if (history->live) return; // a frame has run
    forget_future();
    history_host.follow(history->companion);
    history_host.present(true);
    event_feed_past(history->reader); // the others get the machine as it is now
    tell_others();
}

std::string history_visit(int64_t frame, const std::function<void()>& look) {
    if (!history) return "no history is kept";
    history->live ? event_feed_frame() : event_feed_past(history->reader);
    machine_state now;
    machine_save(now);
    Picture picture;
    HistoryRun place;
    std::string trouble = go_to(*history->states.at(frame), frame, picture, place);
    if (trouble.empty()) look();
    const MachineMute mute;
    machine_load(now);
    return trouble;
}

int64_t history_unbroken(int64_t from, int64_t to) {
    return history ? history->events.unbroken(from, to) : to;
}

std::string history_events(int64_t from, int64_t to, std::vector<machine_event>& events) {
    if (!history) return "no history is kept";
    machine_log log;
    size_t first = 0;
    std::string trouble = history->events.between(from, to, log, first);
    events.insert(events.end(), log.events.begin() + ptrdiff_t(first), log.events.end());
    return trouble;
}

uint64_t history_bytes() { return history ? history->events.bytes() + history->states.bytes() : 0; }
uint64_t history_states() { return history ? history->states.all().size() : 0; }
