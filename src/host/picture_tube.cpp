#include "host/picture_tube.h"

#include "core/pacing/pacing.h"
#include "host/display.h"
#include "host/menu.h"
#include "host/status.h"
#include "platform/platform.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace {

constexpr int64_t MICROSECONDS = 1'000'000; ///< in a second
/// Of the time between two pictures, in percent, what drawing may take. The rest is for the machine
/// and for bringing the picture to the screen.
constexpr int64_t SHARE = 70;
/// So many microseconds too late in all are too slow. A hiccup of the computer, or the start of the
/// tube, is less than that.
constexpr int64_t TOO_LATE = 500'000;

enum class Obstacle : uint8_t {
    none,
    missing, ///< the host cannot draw it
    slow,    ///< it takes too long
};

struct TubeState {
    TubeLook chosen = TubeLook::off;
    Obstacle obstacle = Obstacle::none;
    bool started = false;
    Size area = {};      ///< of the last picture
    int64_t late = 0;    ///< microseconds that drawing is behind
    int64_t average = 0; ///< of a picture, in microseconds
};
TubeState tube;

int64_t pixels(Size area) { return int64_t(area.width) * area.height; }

void show_marks() {
    for (const TubeLook look : {TubeLook::off, TubeLook::soft, TubeLook::strong}) {
        check_menu_item(COMMAND_TUBE + int(look), look == shown_tube_look());
    }
}

void put_out(Obstacle obstacle) {
    tube.obstacle = obstacle;
    platform().picture_tube().stop();
    tube.started = false;
    show_marks();
}

/// Where there is no tube, the choice stays: the next computer may have one.
void start() {
    if (std::exchange(tube.started, true)) return;
    tube.late = tube.average = 0;
    const std::string problem = platform().picture_tube().start();
    if (problem.empty()) return;
    put_out(Obstacle::missing);
    show_status("No picture tube: " + problem, "The picture is stretched without it.");
}

int64_t picture_period() {
    return pacing.frame_period * MICROSECONDS / platform().clock().frequency();
}

} // namespace

uint32_t kept_tube_look() { return uint32_t(tube.chosen); }

void keep_tube_look(uint32_t look) {
    const bool known = look <= uint32_t(TubeLook::strong);
    tube = {.chosen = known ? TubeLook(look) : TubeLook::off};
}

void choose_tube_look(TubeLook look) {
    if (tube.started && look == TubeLook::off) platform().picture_tube().stop();
    tube = {.chosen = look, .started = tube.started && look != TubeLook::off, .area = tube.area};
    if (look != TubeLook::off) start();
    show_marks();
    platform().window().invalidate();
}

TubeLook shown_tube_look() { return tube.obstacle == Obstacle::none ? tube.chosen : TubeLook::off; }

TubeLook tube_look_for(Size area) {
    // What was too slow may do for three quarters of the pixels.
    if (tube.obstacle == Obstacle::slow && pixels(area) * 4 <= pixels(tube.area) * 3) {
        tube.obstacle = Obstacle::none;
        show_marks();
    }
    if (shown_tube_look() == TubeLook::off) return TubeLook::off;
    tube.area = area;
    start();
    return shown_tube_look();
}

void tube_picture_shown() {
    if (!tube.started) return;
    const int64_t took = platform().picture_tube().take_draw_time();
    if (took) tube.average += (took - tube.average) / 8;
    tube.late = std::max<int64_t>(tube.late + took - picture_period() * SHARE / 100, 0);
    if (tube.late < TOO_LATE) return;
    const int64_t milliseconds = (tube.average + 500) / 1000;
    put_out(Obstacle::slow);
    show_status("Picture tube off: it takes " + std::to_string(milliseconds) + " ms a picture",
                "That is longer than the machine leaves for it. It comes back in a smaller window, "
                "or when you choose it again.");
}
