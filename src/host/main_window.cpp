#include "host/main_window.h"

#include "cgenie/video.h"
#include "host/canvas.h"
#include "host/display.h"
#include "host/menu.h"
#include "host/screen_keyboard.h"
#include "host/shell_state.h"
#include "host/status.h"
#include "host/window_size.h"
#include "platform/platform.h"

namespace {

WindowFit fit_now() {
    return {{canvas.width, canvas.height},
            window_is_sizable(),
            shell_state.keyboard_place == KeyboardPlace::docked};
}

Size machine_picture() { return {video_get_windowx(false), video_get_windowy(false)}; }

WindowRoom window_room() {
    Window& window = platform().window();
    const Rectangle available = window.available_area();
    const Size around =
        window.outer_size({machine_picture().width, docked_height(available.width())});
    return {.screen = window.screen_size(),
            .available = {available.width(), available.height()},
            .around = {around.width - machine_picture().width, around.height},
            .ratio = window.pixel_ratio()};
}

/// Of a window that the user has not sized.
Size usual_size() {
    const Size picture = machine_picture();
    if (canvas.width <= picture.width) return usual_picture_size(picture, window_room());
    const Size unit = picture_scaling().whole ? Size{canvas.width, canvas.height} : picture;
    return giant_picture_size(picture, unit, window_room());
}

Rectangle window_at(const Rectangle& place, Size picture) {
    const Size outer = platform().window().outer_size(
        {picture.width, picture.height + docked_height(picture.width)});
    return {place.left, place.top, place.left + outer.width, place.top + outer.height};
}

/// The picture's area gets the size that the user has chosen, or the usual one.
void size_window(const Rectangle& place, bool chooses_place) {
    Window& window = platform().window();
    const Size chosen = chosen_picture_size();
    const Size wanted = chosen == Size() ? usual_size() : chosen;
    const Size picture = possible_picture_size(wanted, window_room());
    shell_state.given_picture = picture;
    if (chosen == Size()) shell_state.usual_picture = picture;
    const Rectangle outer = window_at(place, picture);
    window.move(chooses_place ? pulled_into(window.available_area(), outer) : outer);
}

void fit_sizable(const Rectangle& place) {
    Window& window = platform().window();
    const bool opens = shell_state.window_fit == WindowFit();
    if (!window.maximized()) size_window(place, !opens); // it opens where the desktop likes
    if (opens) window.set_maximized(shell_state.opens_maximized);
    window.invalidate(); // with its size kept, nothing else would show the new canvas
}

void fit_for_canvas(Window& window, const Rectangle& place) {
    limit_window_size();
    if (!window_is_sizable()) {
        window.move({place.left, place.top, place.left + cx, place.top + cy});
    } else if (window_needs_fit()) {
        fit_sizable(place);
    } else {
        window.invalidate();
    }
}

} // namespace

bool window_is_sizable() { return shell_state.start.sizable_window && !shell_state.fixed_window; }

Scaling picture_scaling() {
    return {.smooth = shell_state.window_smooth,
            .whole = shell_state.window_scale == uint32_t(WindowScale::whole)};
}

void choose_window_scale(WindowScale scale) {
    shell_state.window_scale = uint32_t(scale);
    check_menu_item(COMMAND_SCALE_WHOLE, scale == WindowScale::whole);
    check_menu_item(COMMAND_SCALE_FILL, scale == WindowScale::fill);
    show_canvas();
}

void fixed_window_switched() {
    if (g_bFullScreen || !window_needs_fit()) return; // the way back fits it
    Window& window = platform().window();
    if (!window_is_sizable()) window.set_maximized(false);
    fit_window(window.outer_rectangle());
}

Size chosen_picture_size() {
    return {int(shell_state.window_width), int(shell_state.window_height)};
}

bool remembers_maximized() {
    const bool asks_window = shell_state.window_fit.sizable;
    return asks_window ? platform().window().maximized() : shell_state.opens_maximized;
}

void open_maximized(bool on) { shell_state.opens_maximized = on; }

int docked_height(int client_width) {
    return StatusBarHeight() + docked_keyboard_height(client_width);
}

void docked_height_changed() {
    if (g_bFullScreen) return; // the way back fits it
    fit_window(platform().window().outer_rectangle());
}

void limit_window_size() {
    Window& window = platform().window();
    const bool fixed = g_bUseGDI && !window_is_sizable();
    if (!fixed) {
        window.set_least_size(window.outer_size(
            {LEAST_PICTURE.width, LEAST_PICTURE.height + docked_height(LEAST_PICTURE.width)}));
    }
    window.set_fixed_size(fixed ? Size{cx, cy} : Size{});
}

void fit_window(const Rectangle& place) {
    calc_cxcy(canvas.width, canvas.height);
    StatusBarRedraw();
    Window& window = platform().window();
    if (!g_bUseGDI) return window.move(place);
    fit_for_canvas(window, place);
    fit_screen_keyboard();
    shell_state.window_fit = fit_now();
}

bool window_needs_fit() { return shell_state.window_fit != fit_now(); }

void window_was_resized() {
    Window& window = platform().window();
    if (!shell_state.window_fit.sizable || g_bFullScreen || window.maximized()) return;
    const Size size = platform().pane(PaneId::picture).size();
    // There may have been no room for the size that the user has chosen, which holds all the same.
    if (size == shell_state.given_picture) return;
    shell_state.given_picture = {};
    const Size chosen = size == shell_state.usual_picture ? Size{} : size;
    shell_state.window_width = uint32_t(chosen.width);
    shell_state.window_height = uint32_t(chosen.height);
}
