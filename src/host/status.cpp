#include "host/status.h"

#include "platform/platform.h"
#include "wall/machine_host.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <string>

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
constexpr int NO_DRIVE = -1;

int led_state = NO_DRIVE; ///< the lit drive

std::string message; ///< in its part, or behind a tip
bool tip_is_shown = false;

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
    if (part == PART_LAMPS || !bar.exists()) return;
    if (part == PART_MESSAGES) {
        message = text;
        tip_is_shown = false;
    }
    bar.set_text(part, text);
    bar.set_tip(part, tip);
}

Rectangle lamp_rectangle(int lamp) {
    const int left = LAMP_LEFT + lamp * LAMP_PITCH;
    const int top = platform().status_bar().height() - led_rows + LAMP_TOP;
    return {left, top, left + LAMP_WIDTH, top + LAMP_HEIGHT};
}

/// A frame of one pixel, which makes the lamp look sunk into the bar.
void draw_bevel(const Rectangle& lamp) {
    StatusBar& bar = platform().status_bar();
    const Rectangle edge = {lamp.left - 1, lamp.top - 1, lamp.right + 1, lamp.bottom + 1};
    const Colour shadow = bar.shadow_colour();
    const Colour highlight = bar.highlight_colour();
    bar.fill_rectangle({edge.left, edge.top, lamp.left, edge.bottom}, shadow);
    bar.fill_rectangle({edge.left, edge.top, edge.right, lamp.top}, shadow);
    bar.fill_rectangle({lamp.right, lamp.top, edge.right, edge.bottom}, highlight);
    bar.fill_rectangle({lamp.left, lamp.bottom, edge.right, edge.bottom}, highlight);
}

void draw_lamps() {
    StatusBar& bar = platform().status_bar();
    if (!bar.exists()) return;
    for (int lamp = 0; lamp < LAMPS; ++lamp) {
        bar.fill_rectangle(lamp_rectangle(lamp), lamp == led_state ? LAMP_ON : LAMP_OFF);
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
    led_redraw(1);
}

void DestroyStatusBar() { platform().status_bar().destroy(); }

int StatusBarHeight() { return platform().status_bar().height(); }

void StatusBarRedraw() {
    led_redraw(1);
    if (platform().status_bar().exists()) platform().status_bar().redraw();
}

void show_status(const std::string& text, const std::string& details) {
    show_text(PART_MESSAGES, text, details.empty() ? text : text + "\n" + details);
}

void show_tip(const std::string& tip) {
    if (tip.empty() && !tip_is_shown) return;
    tip_is_shown = !tip.empty();
    platform().status_bar().set_text(PART_MESSAGES, tip_is_shown ? tip : message);
}

const std::string& shown_status() { return message; }

void show_status_part(int part, const char* text) { show_text(part, text, text); }

void ui_set_window_title(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::string text = format_text(format, arguments);
    va_end(arguments);
    platform().window().set_title(std::string(PRODUCT_NAME) + " - " + text);
}

void light_lamp(int drive) {
    // Called for every frame: there is something to draw only when another lamp is to be lit.
    if (drive == led_state) return;
    led_state = drive;
    draw_lamps();
}

void led_redraw(int lamps) {
    if (!platform().status_bar().exists()) return;
    for (int lamp = 0; lamp < LAMPS; ++lamp) draw_bevel(lamp_rectangle(lamp));
    if (lamps) draw_lamps();
}
