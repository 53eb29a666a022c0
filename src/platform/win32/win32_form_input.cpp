/// What the user does to a form.

#include "platform/win32/win32_form.h"
#include "platform/win32/win32_keyboard.h"

#include <cstdlib>

namespace {

constexpr Size SMALLEST = {200, 100}; ///< points, of one that can be sized
constexpr UINT TAKE_FOCUS = WM_APP;
constexpr double DOTS_PER_POINT = 96;
constexpr WORD REPEATED_KEY = KF_REPEAT;

} // namespace

void Win32Form::raise(Win32Control& control, FormEvent::Kind kind) {
    if (silent_) return;
    if (excludes_others(control.kind())) choose(control);
    const int id = control.id();
    const bool closes = control.kind() > ControlKind::button;
    handler_(*this, {kind, id});
    if (closes) end(id);
}

void Win32Form::has_focus(Win32Control& control) {
    for (Win32Panel* panel : {scroll_.get(), &area_}) {
        if (panel && IsChild(panel->window(), control.window())) {
            panel->bring_into_sight(control.window());
        }
    }
    if (control.kind() != ControlKind::picture_button) return;
    for (const auto& each : controls_) { // Tab comes back to this one
        if (each->kind() != control.kind()) continue;
        set_window_style(each->window(), WS_TABSTOP, each.get() == &control);
    }
}

void Win32Form::press_default() {
    for (const auto& each : controls_) {
        if (each->kind() == ControlKind::default_button && IsWindowEnabled(each->window())) {
            return raise(*each, FormEvent::Kind::pressed);
        }
    }
}

void Win32Form::move_among_pictures(Win32Control& from, int right, int down) {
    const auto place_of = [](const Win32Control& control) {
        RECT place{};
        GetWindowRect(control.window(), &place);
        return POINT{place.left, place.top};
    };
    const POINT start = place_of(from);
    Win32Control* nearest = nullptr;
    LONG least = 0;
    for (const auto& each : controls_) {
        if (each->kind() != from.kind() || !IsWindowEnabled(each->window())) continue;
        const POINT place = place_of(*each);
        const LONG across = place.x - start.x, along = place.y - start.y;
        const LONG forward = across * right + along * down;
        const LONG aside = std::abs(right ? along : across);
        if (forward <= 0 || aside >= forward) continue;
        if (!nearest || forward + aside < least) {
            nearest = each.get();
            least = forward + aside;
        }
    }
    if (!nearest) return;
    SetFocus(nearest->window());
    if (nearest->kind() == ControlKind::picture) raise(*nearest, FormEvent::Kind::changed);
}

void Win32Form::cancel() {
    for (const auto& each : controls_) {
        if (each->kind() != ControlKind::cancel_button) continue;
        if (IsWindowEnabled(each->window())) raise(*each, FormEvent::Kind::pressed);
        return;
    }
    SendMessageW(window_.window(), WM_CLOSE, 0, 0);
}

bool Win32Form::obey(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result) {
    switch (message) {
    case WM_COMMAND: return obey_command(wparam, lparam);
    case WM_NOTIFY: {
        const auto& what = *reinterpret_cast<const NMHDR*>(lparam);
        if (Win32Control* const from = control_of(what.hwndFrom)) from->notified(what);
        return false;
    }
    case WM_HSCROLL:
        if (Win32Control* const from = control_of(reinterpret_cast<HWND>(lparam))) from->scrolled();
        return true;
    case WM_DRAWITEM: {
        const auto& asked = *reinterpret_cast<const DRAWITEMSTRUCT*>(lparam);
        if (Win32Control* const drawn = control_of(asked.hwndItem)) drawn->draw(asked);
        result = TRUE;
        return true;
    }
    case WM_CTLCOLORSTATIC: {
        if (!link_ || reinterpret_cast<HWND>(lparam) != link_->window()) return false;
        constexpr COLORREF blue = RGB(0, 0, 255);
        SetTextColor(reinterpret_cast<HDC>(wparam), blue);
        SetBkMode(reinterpret_cast<HDC>(wparam), TRANSPARENT);
        result = reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_BTNFACE));
        return true;
    }
    case WM_CLOSE:
        handler_(*this, {FormEvent::Kind::closed, FORM_CLOSED});
        end(FORM_CLOSED);
        return true;
    case WM_TIMER: // not while another dialog stands over it
        if (wparam == FORM_TICK && is_open() && IsWindowEnabled(window_.window())) {
            handler_(*this, {FormEvent::Kind::ticked, 0});
        }
        return true;
    case WM_SIZE:
        if (is_sizable_ && wparam != SIZE_MINIMIZED && is_open()) place();
        return false;
    case WM_GETMINMAXINFO:
        reinterpret_cast<MINMAXINFO*>(lparam)->ptMinTrackSize = {scale_->pixels(SMALLEST.width),
                                                                 scale_->pixels(SMALLEST.height)};
        return true;
    case WM_DPICHANGED:
        take_scale(double(LOWORD(wparam)) / DOTS_PER_POINT);
        least_ = {};
        fit();
        return true;
    default: return obey_key(message, wparam, lparam, result);
    }
}

bool Win32Form::obey_command(WPARAM wparam, LPARAM lparam) {
    Win32Control* const from = control_of(reinterpret_cast<HWND>(lparam));
    if (from) {
        if (IsWindowEnabled(from->window())) from->commanded(HIWORD(wparam));
        return true;
    }
    if (lparam == 0 && LOWORD(wparam) == IDCANCEL) cancel();
    if (lparam == 0 && LOWORD(wparam) == IDOK) press_default();
    return true;
}

// ---- the next key -------------------------------------------------------------------------------

/// The form's own window takes the focus, and so the key. A button that asks for it may still be
/// about to take the focus itself.
void Win32Form::await_key() {
    if (!is_open() || !keyboard_) return;
    const HWND focus = GetFocus();
    if (focus != window_.window()) focus_before_ = focus;
    waiting_ = Waiting::for_key;
    PostMessageW(window_.window(), TAKE_FOCUS, 0, 0);
}

void Win32Form::end_waiting(uint8_t key) {
    if (waiting_ != Waiting::for_key) return;
    waiting_ = Waiting::no;
    handler_(*this, {FormEvent::Kind::key, 0, key});
}

bool Win32Form::obey_key(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result) {
    switch (message) {
    case TAKE_FOCUS:
        if (waiting_ == Waiting::for_key) SetFocus(window_.window());
        return true;
    case WM_SETFOCUS: return waiting_ != Waiting::no; // or a control has it again
    case WM_GETDLGCODE: result = DLGC_WANTALLKEYS; return true;
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN:
        if (waiting_ == Waiting::no) return false;
        if (waiting_ == Waiting::for_key && !(HIWORD(lparam) & REPEATED_KEY)) {
            waiting_ = Waiting::for_release;
            handler_(*this, {FormEvent::Kind::key, 0, keyboard_->host_key(wparam, lparam)});
        }
        return true;
    case WM_KEYUP:
    case WM_SYSKEYUP:
        if (waiting_ != Waiting::for_release) return false;
        waiting_ = Waiting::no; // now the key cannot act on the control
        SetFocus(focus_before_);
        return true;
    case WM_LBUTTONDOWN:
    case WM_RBUTTONDOWN:
    case WM_KILLFOCUS: end_waiting(KEY_NONE); return false;
    case WM_ACTIVATE:
        if (LOWORD(wparam) == WA_INACTIVE) end_waiting(KEY_NONE);
        return false;
    default: return false;
    }
}
