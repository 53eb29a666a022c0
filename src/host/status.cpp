#include "host/status.h"

#include "host/media_menu.h"
#include "host/overlay.h"
#include "host/shell_state.h"
#include "platform/platform.h"
#include "wall/machine_host.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr std::array RIGHT_EDGES = {80, 176, 224, -1};

constexpr int LAMPS = 4;
constexpr int LAMP_LEFT = 90; ///< of drive 0
constexpr int LAMP_PITCH = 20;
constexpr int LAMP_WIDTH = 13;
constexpr int LAMP_HEIGHT = 8;
constexpr int LAMP_TOP = 10; ///< in the lowest led_rows lines of the bar
constexpr int led_rows = 24;
constexpr Colour LAMP_OFF = 0x000000;
constexpr Colour LAMP_ON = 0xFF0000;
constexpr Colour MARK = 0xFFFFFF; ///< in the lamp of a drive that writes
constexpr int MARK_LEFT = 4;      ///< in the lamp, on both sides
constexpr int MARK_TOP = 2;       ///< likewise
constexpr int MARK_FRAMES = 12;   ///< a sector is written faster than anybody sees
constexpr int NO_DRIVE = -1;
/// Of brightness, between things that are to be told apart (WCAG 2.1, 1.4.11).
constexpr double LEAST_CONTRAST = 3;

int led_state = NO_DRIVE; ///< the lit drive
int written_drive = NO_DRIVE;
int mark_frames = 0; ///< that its mark is still to be seen
bool mark_is_shown = false;

/// What the parts show, perhaps behind a tip.
std::array<std::string, RIGHT_EDGES.size()> texts, tips;
bool tip_is_shown = false; ///< over all parts

std::string format_text(const char* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    std::string text(length > 0 ? size_t(length) : 0, '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

void show_text(int part, const std::string& text, const std::string& tip) {
    StatusBar& bar = platform().status_bar();
    if (part == PART_LAMPS || (!bar.exists() && !g_bFullScreen)) return;
    texts.at(size_t(part)) = text;
    tips.at(size_t(part)) = tip;
    if (part == PART_MESSAGES) {
        show_tip({});
        if (!bar.exists()) overlay_show(tip);
    }
    bar.set_text(part, text);
    bar.set_tip(part, tip);
}

/// One for each lamp, with what is around it, and one for the cassette's part.
void place_buttons() {
    StatusBar& bar = platform().status_bar();
    const int bottom = bar.height();
    std::vector<StatusButton> buttons;
    for (int lamp = 0; lamp < LAMPS; ++lamp) {
        const int left = status_button_left(lamp);
        buttons.push_back({{left, 0, left + LAMP_PITCH, bottom},
                           "Drive " + std::to_string(lamp),
                           [lamp] { return drive_tip(unsigned(lamp)); }});
    }
    buttons.push_back({{status_button_left(LAMPS), 0, RIGHT_EDGES[PART_CASSETTE], bottom},
                       "Cassette",
                       cassette_tip});
    bar.set_buttons(buttons);
}

Rectangle lamp_rectangle(int lamp) {
    const int left = LAMP_LEFT + lamp * LAMP_PITCH;
    const int top = platform().status_bar().height() - led_rows + LAMP_TOP;
    return {left, top, left + LAMP_WIDTH, top + LAMP_HEIGHT};
}

/// 0 for black to 1 for white, as the eye sees it (WCAG 2.1, relative luminance).
double luminance(Colour colour) {
    const auto linear = [colour](int shift) {
        const double part = double(colour >> shift & 0xFF) / 255;
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(16) + 0.7152 * linear(8) + 0.0722 * linear(0);
}

/// 1 (the same) to 21 (black and white).
double contrast(Colour one, Colour other) {
    const auto [darker, brighter] = std::minmax({luminance(one), luminance(other)});
    return (brighter + 0.05) / (darker + 0.05);
}

struct Bevel {
    Colour shadow, highlight;
};

/// The bar's own colours; where a dark lamp would be lost in the bar, a grey that is seen against
/// both.
Bevel bevel_colours() {
    StatusBar& bar = platform().status_bar();
    const Colour ground = bar.background_colour();
    if (contrast(ground, LAMP_OFF) >= LEAST_CONTRAST)
        return {bar.shadow_colour(), bar.highlight_colour()};
    Colour grey = 0;
    while (contrast(grey, ground) < LEAST_CONTRAST || contrast(grey, LAMP_OFF) < LEAST_CONTRAST)
        grey += 0x010101;
    return {grey, grey};
}

/// A frame of one pixel, which makes the lamp look sunk into the bar.
void draw_bevel(const Rectangle& lamp, const Bevel& colours) {
    StatusBar& bar = platform().status_bar();
    const Rectangle edge = {lamp.left - 1, lamp.top - 1, lamp.right + 1, lamp.bottom + 1};
    const auto [shadow, highlight] = colours;
    bar.fill_rectangle({edge.left, edge.top, lamp.left, edge.bottom}, shadow);
    bar.fill_rectangle({edge.left, edge.top, edge.right, lamp.top}, shadow);
    bar.fill_rectangle({lamp.right, lamp.top, edge.right, edge.bottom}, highlight);
    bar.fill_rectangle({lamp.left, lamp.bottom, edge.right, edge.bottom}, highlight);
}

void draw_lamps() {
    StatusBar& bar = platform().status_bar();
    if (!bar.exists()) return;
    for (int lamp = 0; lamp < LAMPS; ++lamp) {
        const Rectangle area = lamp_rectangle(lamp);
        bar.fill_rectangle(area, lamp == led_state ? LAMP_ON : LAMP_OFF);
        if (lamp != led_state || !mark_is_shown) continue;
        bar.fill_rectangle({area.left + MARK_LEFT, area.top + MARK_TOP, area.right - MARK_LEFT,
                            area.bottom - MARK_TOP},
                           MARK);
    }
}

} // namespace

void CreateStatusBar() {
    StatusBar& bar = platform().status_bar();
    if (bar.exists()) return;
    if (!bar.create(RIGHT_EDGES, PART_LAMPS)) {
        std::fputs("Failed to create status bar.\n", stderr);
        return;
    }
    led_state = NO_DRIVE;
    mark_frames = 0;
    mark_is_shown = false;
    place_buttons();
    led_redraw(1);
}

void restore_status() {
    StatusBar& bar = platform().status_bar();
    for (const int part : {PART_CONFIGURATION, PART_CASSETTE, PART_MESSAGES}) {
        bar.set_text(part, texts[size_t(part)]);
        bar.set_tip(part, tips[size_t(part)]);
    }
}

void DestroyStatusBar() { platform().status_bar().destroy(); }

int StatusBarHeight() { return platform().status_bar().height(); }

void StatusBarRedraw() {
    led_redraw(1);
    if (!platform().status_bar().exists()) return;
    platform().status_bar().redraw();
    place_buttons();
}

void show_status(const std::string& text, const std::string& details) {
    show_text(PART_MESSAGES, text, details.empty() ? text : text + "\n" + details);
}

void show_tip(const std::string& tip) {
    if (tip.empty() && !tip_is_shown) return;
    tip_is_shown = !tip.empty();
    platform().status_bar().show_over(tip);
}

const std::string& shown_status() { return texts[PART_MESSAGES]; }

void show_status_part(int part, const char* text) { show_text(part, text, text); }

void ui_set_window_title(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::string text = format_text(format, arguments);
    va_end(arguments);
    platform().window().set_title(std::string(PRODUCT_NAME) + " - " + text);
}

int status_button_left(int button) {
    if (button >= LAMPS) return RIGHT_EDGES[PART_LAMPS];
    return LAMP_LEFT + button * LAMP_PITCH - (LAMP_PITCH - LAMP_WIDTH) / 2;
}

void light_lamp(int drive) {
    const bool marked = mark_frames > 0 && drive == written_drive;
    if (mark_frames > 0) --mark_frames;
    // Called for every frame: mostly there is nothing new to draw.
    if (drive == led_state && marked == mark_is_shown) return;
    led_state = drive;
    mark_is_shown = marked;
    draw_lamps();
}

void mark_lamp(int drive) {
    written_drive = drive;
    mark_frames = MARK_FRAMES;
}

void led_redraw(int lamps) {
    if (!platform().status_bar().exists()) return;
    const Bevel colours = bevel_colours();
    for (int lamp = 0; lamp < LAMPS; ++lamp) draw_bevel(lamp_rectangle(lamp), colours);
    if (lamps) draw_lamps();
}
