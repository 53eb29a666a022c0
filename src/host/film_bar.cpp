#include "host/film_bar.h"

#include "platform/platform.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace {

// Light on dark, whatever the desktop's colours are: the bar lies on the machine's picture.
constexpr Colour GROUND = 0x202020;
constexpr Colour EDGE = 0x808080;
constexpr Colour TEXT = 0xFFFFFF;
constexpr Colour HINT = 0xC0C0C0;
constexpr Colour TICK = 0x909090;
constexpr Colour TRACK = 0x585858;
constexpr Colour PASSED = 0xF0A030;

constexpr int MARGIN = 4;
constexpr int TRACK_HEIGHT = 4;
constexpr int HANDLE_WIDTH = 5;
constexpr int LEAST_TICK_DISTANCE = 8;
constexpr std::array<int64_t, 6> TICK_SECONDS = {60, 300, 600, 1800, 3600, 6 * 3600};

struct {
    FilmBarView view;
    bool shown = false;
} bar;

/// Where the parts are in a pane of the present size.
struct Layout {
    Rectangle play, track, present;
    int text_top = 0;
    int width = 0;
};

Pane& pane() { return platform().pane(PaneId::film_bar); }

Layout layout() {
    const auto [width, height] = pane().size();
    const int text_top = height - pane().cell_size().height - MARGIN;
    const int top = MARGIN;
    const int bottom = std::max(text_top - MARGIN, top + 1);
    const int side = bottom - top; // of the marks, which are squares
    const Rectangle play = {MARGIN, top, MARGIN + side, bottom};
    const Rectangle present = {width - MARGIN - side, top, width - MARGIN, bottom};
    const int left = play.right + 2 * MARGIN;
    return {play,
            {left, top, std::max(present.left - 2 * MARGIN, left + 1), bottom},
            present,
            text_top,
            width};
}

int64_t frames_in_all() { return bar.view.last - bar.view.first; }

/// Of a frame on the track.
int place_of(const Rectangle& track, int64_t frame) {
    const int64_t all = std::max<int64_t>(frames_in_all(), 1);
    return track.left + int((frame - bar.view.first) * (track.width() - 1) / all);
}

/// Points to the right and fills the area.
void draw_triangle(const Rectangle& area, Colour colour) {
    const int middle = (area.top + area.bottom) / 2;
    for (int x = area.left; x < area.right; ++x) {
        const int half = (area.right - x) * area.height() / (2 * area.width());
        pane().fill_rectangle({x, middle - half, x + 1, middle + half + 1}, colour);
    }
}

void draw_marks(const Layout& at) {
    draw_triangle(at.play, TEXT);
    const int stop = at.present.right - 2;
    draw_triangle({at.present.left, at.present.top, stop - 1, at.present.bottom}, TEXT);
    pane().fill_rectangle({stop, at.present.top, at.present.right, at.present.bottom}, TEXT);
}

/// One for each minute before the present, or for more where they would be too close.
void draw_ticks(const Rectangle& track) {
    const auto frames = [](int64_t seconds) { return seconds * bar.view.frames_per_second; };
    const auto distance = [&](int64_t seconds) {
        return frames(seconds) * track.width() / std::max<int64_t>(frames_in_all(), 1);
    };
    const auto* const step = std::ranges::find_if(
        TICK_SECONDS, [&](int64_t s) { return distance(s) >= LEAST_TICK_DISTANCE; });
    if (step == TICK_SECONDS.end()) return;
    for (int64_t at = bar.view.last - frames(*step); at > bar.view.first; at -= frames(*step)) {
        const int x = place_of(track, at);
        pane().fill_rectangle({x, track.top, x + 1, track.bottom}, TICK);
    }
}

void draw_track(const Rectangle& track) {
    const int top = (track.top + track.bottom - TRACK_HEIGHT) / 2;
    const int place = place_of(track, bar.view.position);
    draw_ticks(track);
    pane().fill_rectangle({track.left, top, track.right, top + TRACK_HEIGHT}, TRACK);
    pane().fill_rectangle({track.left, top, place, top + TRACK_HEIGHT}, PASSED);
    const int left = place - HANDLE_WIDTH / 2;
    pane().fill_rectangle({left, track.top, left + HANDLE_WIDTH, track.bottom}, TEXT);
}

void draw_texts(const Layout& at) {
    const std::string time = film_bar_time(bar.view);
    pane().text(MARGIN, at.text_top, time, TEXT, GROUND);
    const int cell = pane().cell_size().width;
    const int room = (at.width - 2 * MARGIN) / cell - int(time.size()) - 2;
    const auto fits = [room](const std::string& hint) { return int(hint.size()) <= room; };
    const auto hint = std::ranges::find_if(bar.view.hints, fits);
    if (hint == bar.view.hints.end()) return;
    const int left = at.width - MARGIN - int(hint->size()) * cell;
    pane().text(left, at.text_top, *hint, HINT, GROUND);
}

/// "1:02:03", without hours "2:03", with so many decimals of a second behind it, 0 to 2.
std::string time_text(int64_t frames, int64_t frames_per_second, int decimals) {
    const int64_t hundredths = frames * 100 / std::max<int64_t>(frames_per_second, 1);
    const int64_t seconds = hundredths / 100;
    const int part = int(hundredths % 100);
    const auto hours = (long long)(seconds / 3600);
    const int minutes = int(seconds / 60 % 60);
    char text[40];
    int length = hours ? std::snprintf(text, sizeof text, "%lld:%02d", hours, minutes)
                       : std::snprintf(text, sizeof text, "%d", minutes);
    length +=
        std::snprintf(text + length, sizeof text - size_t(length), ":%02d", int(seconds % 60));
    if (decimals == 1) std::snprintf(text + length, sizeof text - size_t(length), ".%d", part / 10);
    if (decimals == 2) std::snprintf(text + length, sizeof text - size_t(length), ".%02d", part);
    return text;
}

} // namespace

std::string film_bar_time(const FilmBarView& view) {
    const int64_t behind = view.last - view.position;
    return (behind ? "-" : "") +
           time_text(behind, view.frames_per_second, view.single_frames ? 2 : 1) + " of " +
           time_text(view.last - view.first, view.frames_per_second, 0);
}

void film_bar_show(FilmBarView view) {
    bar.view = std::move(view);
    if (!std::exchange(bar.shown, true)) pane().show(true);
    film_bar_draw();
}

void film_bar_hide() {
    if (std::exchange(bar.shown, false)) pane().show(false);
}

bool film_bar_is_shown() { return bar.shown; }

void film_bar_draw() {
    if (!bar.shown) return;
    const Layout at = layout();
    pane().fill_rectangle({0, 0, at.width, pane().size().height}, GROUND);
    pane().line(0, 0, at.width, EDGE);
    draw_marks(at);
    draw_track(at.track);
    draw_texts(at);
    const double rate = bar.view.frames_per_second;
    pane().set_reading({"Time", film_bar_time(bar.view),
                        double(bar.view.position - bar.view.last) / rate,
                        double(bar.view.first - bar.view.last) / rate, 0});
}

FilmBarPart film_bar_part_at(int x, int y) {
    const Layout at = layout();
    // The room around a part belongs to it: nobody has to hit a square of twenty pixels.
    if (y < 0 || y >= at.text_top) return FilmBarPart::none;
    if (x < at.play.right + MARGIN) return FilmBarPart::play;
    if (x >= at.present.left - MARGIN) return FilmBarPart::present;
    return FilmBarPart::track;
}

int64_t film_bar_frame_at(int x) {
    const Rectangle track = layout().track;
    const int last = std::max(track.width() - 1, 1);
    const int64_t along = std::clamp(x - track.left, 0, last);
    return bar.view.first + (along * frames_in_all() + last / 2) / last;
}
