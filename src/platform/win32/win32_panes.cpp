#include "platform/win32/win32_panes.h"

#include <windowsx.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int MARGIN = 4;
constexpr int LEAST_TRACK = 16; ///< of the film bar, in points
/// What Windows marks the messages of a mouse with that it makes of a finger's or a pen's.
constexpr LPARAM FROM_TOUCH = 0xFF515700, MARK = LPARAM(0xFFFFFF00);

uint8_t buttons_of(WPARAM keys) {
    return uint8_t((keys & MK_LBUTTON ? BUTTON_LEFT : 0) | (keys & MK_RBUTTON ? BUTTON_RIGHT : 0) |
                   (keys & MK_MBUTTON ? BUTTON_MIDDLE : 0));
}

struct MouseMessage {
    UINT message;
    Pointer::Act act;
    uint8_t button;
};
constexpr MouseMessage MOUSE_MESSAGES[] = {
    {WM_MOUSEMOVE, Pointer::Act::move, 0},
    {WM_LBUTTONDOWN, Pointer::Act::press, BUTTON_LEFT},
    {WM_LBUTTONUP, Pointer::Act::release, BUTTON_LEFT},
    {WM_LBUTTONDBLCLK, Pointer::Act::double_click, BUTTON_LEFT},
    {WM_RBUTTONDOWN, Pointer::Act::press, BUTTON_RIGHT},
    {WM_RBUTTONUP, Pointer::Act::release, BUTTON_RIGHT},
    {WM_RBUTTONDBLCLK, Pointer::Act::double_click, BUTTON_RIGHT},
    {WM_MBUTTONDOWN, Pointer::Act::press, BUTTON_MIDDLE},
    {WM_MBUTTONUP, Pointer::Act::release, BUTTON_MIDDLE},
    {WM_MBUTTONDBLCLK, Pointer::Act::double_click, BUTTON_MIDDLE},
};

bool is_finger(WPARAM wide) {
    POINTER_INPUT_TYPE type = 0;
    return GetPointerType(GET_POINTERID_WPARAM(wide), &type) && type == PT_TOUCH;
}

} // namespace

void Win32FilmBar::place_in(Size room_pixels, Size room) {
    const int text = cell_size().height;
    const int lines = std::min(text + std::max(text, LEAST_TRACK) + 3 * MARGIN, room.height);
    const int top = std::max(room_pixels.height - context_.pixels(lines), 0);
    place({0, top, room_pixels.width, room_pixels.height}, {room.width, lines});
}

Win32Panes::Win32Panes(Win32Context& context)
    : context_(context), picture_(context), monitor_(context), film_bar_(context),
      overlay_(context), keyboard_(context), debugger_(context) {
    picture_.show(true);
    for (size_t n = 0; n < PANES; ++n) {
        panes_[n]->set_changed(
            [this, n](const Rectangle& pixels) { invalidate(PaneId(n), pixels); });
    }
    overlay_.set_grown([this] { place_strips(); });
    keyboard_.set_pointer([this](HWND window, UINT message, WPARAM wide, LPARAM detail) {
        return pointer(window, message, wide, detail);
    });
}

// ---- what is seen ------------------------------------------------------------------------------

PaneId Win32Panes::front_id() const {
    return monitor_.is_shown() ? PaneId::monitor : PaneId::picture;
}

bool Win32Panes::is_seen(PaneId id) const {
    if (id == PaneId::picture || id == PaneId::monitor) return id == front_id();
    return panes_[size_t(id)]->is_shown();
}

bool Win32Panes::picture_is_alone() const {
    return !monitor_.is_shown() && !film_bar_.is_shown() && !overlay_.is_shown();
}

/// A pane that was hidden just now changes what is seen, too, so nobody is asked whether it is seen
/// unless it lies behind another that fills the client area.
void Win32Panes::invalidate(PaneId id, const Rectangle& pixels) {
    const bool floats = id == PaneId::keyboard && !keyboard_.is_docked();
    HWND window = floats ? keyboard_.window() : context_.window;
    if (id == PaneId::debugger) window = debugger_.window();
    const bool is_hidden = id == PaneId::picture && monitor_.is_shown();
    if (!window || is_hidden) return;
    const Rectangle& area = panes_[size_t(id)]->area();
    const Rectangle inside = intersection(pixels, {0, 0, area.width(), area.height()});
    if (is_empty(inside)) return;
    const RECT part = {area.left + inside.left, area.top + inside.top, area.left + inside.right,
                       area.top + inside.bottom};
    InvalidateRect(window, &part, FALSE);
}

Size Win32Panes::room_pixels() const {
    return {client_.width, std::max(client_.height - bar_ - docked_pixels(), 0)};
}

/// What the program has asked for: each of these was rounded by itself, and so is not what the
/// pixels that are left would give.
Size Win32Panes::room() const {
    const int docked = context_.points(bar_) + context_.points(docked_pixels());
    return {context_.points(client_.width), std::max(context_.points(client_.height) - docked, 0)};
}

/// Film bar and overlay follow their fonts, too.
void Win32Panes::place_strips() {
    for (const PaneId id : {PaneId::film_bar, PaneId::overlay}) {
        const Rectangle before = panes_[size_t(id)]->area();
        if (id == PaneId::film_bar) {
            film_bar_.place_in(room_pixels(), room());
        } else {
            overlay_.place_in(room_pixels(), room());
        }
        const Rectangle now = panes_[size_t(id)]->area();
        if (now == before || !is_seen(id) || !context_.window) continue;
        const RECT area = to_windows(before);
        InvalidateRect(context_.window, &area, FALSE);
        invalidate(id, {0, 0, now.width(), now.height()});
    }
}

void Win32Panes::draw_again(PaneId id) {
    if (context_.sink && context_.window && is_seen(id)) context_.sink->paint(id);
}

void Win32Panes::lay_out(Size client_pixels, int bar_pixels) {
    client_ = {std::max(client_pixels.width, 0), std::max(client_pixels.height, 0)};
    bar_ = bar_pixels;
    const bool other_scale = std::exchange(ratio_, context_.ratio) != context_.ratio;
    const Size area = room_pixels();
    const Rectangle all = {0, 0, area.width, area.height};
    const int docked = docked_pixels();
    const bool other_keys =
        docked > 0 && keyboard_.place({0, area.height, area.width, area.height + docked},
                                      {room().width, context_.points(docked)});
    monitor_.place(all, room());
    const bool other_room = picture_.place(all, room()) || other_scale;
    place_strips();
    if (context_.window) InvalidateRect(context_.window, nullptr, FALSE);
    if (is_empty(all)) return; // iconic: the drawings stay of no use
    if (other_keys) draw_again(PaneId::keyboard);
    if (!other_room) return;
    draw_again(front_id());
    draw_again(PaneId::film_bar);
    draw_again(PaneId::overlay);
    context_.post_once(Event::Kind::paint);
}

/// From the top: the overlay, what it leaves of the pane in front, the film bar, the keyboard.
void Win32Panes::paint(HDC dc, const RECT& part) {
    const Rectangle all = from_windows(part);
    Win32Canvas& behind = front().drawing();
    int top = 0;
    int bottom = room_pixels().height;
    if (overlay_.is_shown()) {
        overlay_.show_over(behind, dc, all);
        top = overlay_.area().bottom;
    }
    if (film_bar_.is_shown()) {
        const Rectangle& area = film_bar_.area();
        film_bar_.drawing().show(dc, area.left, area.top,
                                 {all.left, all.top - area.top, all.right, all.bottom - area.top});
        bottom = area.top;
    }
    behind.show(dc, 0, 0, intersection(all, {0, top, client_.width, bottom}));
    if (docked_pixels() == 0) return;
    const Rectangle& area = keyboard_.area();
    keyboard_.drawing().show(dc, area.left, area.top,
                             {all.left, all.top - area.top, all.right, all.bottom - area.top});
}

// ---- the machine's keyboard --------------------------------------------------------------------

void Win32Panes::place_keyboard(KeyboardPlace place, const Rectangle& wanted, int closed) {
    const int before = docked_pixels();
    keyboard_.put(place, wanted, closed);
    if (docked_pixels() != before) lay_out(client_, bar_);
}

void Win32Panes::show_window() {
    keyboard_.show_window();
    debugger_.show_window();
}

// ---- the pointer -------------------------------------------------------------------------------

Win32Panes::Place Win32Panes::place_of(HWND window, POINT pixel) const {
    PaneId id = front_id();
    if (holds_) {
        id = held_;
    } else if (window == keyboard_.window() && window) {
        id = PaneId::keyboard;
    } else if (window == debugger_.window() && window) {
        id = PaneId::debugger;
    } else {
        const auto is_in = [&pixel](const Rectangle& area) {
            return pixel.x >= area.left && pixel.x < area.right && pixel.y >= area.top &&
                   pixel.y < area.bottom;
        };
        if (film_bar_.is_shown() && is_in(film_bar_.area())) id = PaneId::film_bar;
        if (docked_pixels() > 0 && is_in(keyboard_.area())) id = PaneId::keyboard;
    }
    Win32Pane& pane = *panes_[size_t(id)];
    const Rectangle& area = pane.area();
    const auto points = [&pane](LONG pixels) {
        return int(std::floor(double(pixels) / pane.scale()));
    };
    return {id, points(pixel.x - area.left), points(pixel.y - area.top)};
}

void Win32Panes::tell(Pointer::Act act, const Place& place, uint8_t button, WPARAM keys) {
    Event event;
    event.kind = Event::Kind::pointer;
    event.pointer = {.act = act,
                     .pane = place.pane,
                     .x = place.x,
                     .y = place.y,
                     .button = button,
                     .buttons = buttons_of(keys),
                     .touch = (GetMessageExtraInfo() & MARK) == FROM_TOUCH};
    context_.post(event);
}

bool Win32Panes::pointer(HWND window, UINT message, WPARAM wide, LPARAM detail) {
    switch (message) {
    case WM_MOUSEWHEEL: wheel(window, wide, detail); return true;
    case WM_CAPTURECHANGED: let_go(); return true;
    case WM_POINTERDOWN:
    case WM_POINTERUPDATE:
    case WM_POINTERUP:
    case WM_POINTERCAPTURECHANGED: return finger(window, message, wide, detail);
    default: return mouse(window, message, wide, detail);
    }
}

/// While a button is down, all belongs to the pane that it went down in, wherever the pointer is.
bool Win32Panes::mouse(HWND window, UINT message, WPARAM wide, LPARAM detail) {
    const auto* const found = std::ranges::find(MOUSE_MESSAGES, message, &MouseMessage::message);
    if (found == std::end(MOUSE_MESSAGES)) return false;
    const Place place = place_of(window, {GET_X_LPARAM(detail), GET_Y_LPARAM(detail)});
    const bool is_press =
        found->act == Pointer::Act::press || found->act == Pointer::Act::double_click;
    if (is_press && !holds_) {
        held_ = place.pane;
        holds_ = true;
        SetCapture(window);
    }
    tell(found->act, place, found->button, wide);
    if (found->act == Pointer::Act::release && !buttons_of(wide) && GetCapture() == window) {
        holds_ = false;
        ReleaseCapture();
    }
    return true;
}

/// Something else has taken the mouse, as a menu does: nothing stays pressed, and no button acts.
void Win32Panes::let_go() {
    if (std::exchange(holds_, false)) tell(Pointer::Act::release, {held_, -1, -1}, BUTTON_LEFT, 0);
}

void Win32Panes::wheel(HWND window, WPARAM wide, LPARAM detail) {
    wheel_angle_ += GET_WHEEL_DELTA_WPARAM(wide);
    const int notches = wheel_angle_ / WHEEL_DELTA;
    wheel_angle_ -= notches * WHEEL_DELTA;
    if (!notches) return;
    POINT pixel = {GET_X_LPARAM(detail), GET_Y_LPARAM(detail)}; // on the screen
    ScreenToClient(window, &pixel);
    tell(Pointer::Act::wheel, place_of(window, pixel), 0, GET_KEYSTATE_WPARAM(wide));
    context_.queue.back().value = notches * WHEEL_DELTA;
}

void Win32Panes::tell_finger(int finger, Pointer::Act act, const Place& place) {
    Event event;
    event.kind = Event::Kind::pointer;
    event.pointer = {.act = act,
                     .pane = PaneId::keyboard,
                     .x = place.x,
                     .y = place.y,
                     .button = BUTTON_LEFT,
                     .buttons = uint8_t(act == Pointer::Act::press ? BUTTON_LEFT : 0),
                     .touch = true,
                     .finger = finger};
    context_.post(event);
}

/// Each finger on the keyboard is one of its own; elsewhere the first is a mouse.
bool Win32Panes::finger(HWND window, UINT message, WPARAM wide, LPARAM detail) {
    const int finger = int(GET_POINTERID_WPARAM(wide)) + 1;
    if (!fingers_.contains(finger)) {
        if (message != WM_POINTERDOWN || !is_finger(wide)) return false;
    }
    POINT pixel = {GET_X_LPARAM(detail), GET_Y_LPARAM(detail)}; // on the screen
    ScreenToClient(window, &pixel);
    const Place place = place_of(window, pixel);
    switch (message) {
    case WM_POINTERDOWN:
        if (place.pane != PaneId::keyboard) return false;
        fingers_.insert(finger);
        tell_finger(finger, Pointer::Act::press, place);
        return true;
    case WM_POINTERUP:
        fingers_.erase(finger);
        tell_finger(finger, Pointer::Act::release, place);
        return true;
    case WM_POINTERCAPTURECHANGED: // taken for a gesture: nothing stays pressed, no button acts
        fingers_.erase(finger);
        tell_finger(finger, Pointer::Act::release, {PaneId::keyboard, -1, -1});
        return true;
    default: return true;
    }
}
