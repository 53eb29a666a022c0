#include "platform/win32/win32_form_control.h"

#include "platform/win32/win32_context.h"

Win32Control::~Win32Control() {
    if (window_) RemoveWindowSubclass(window_, procedure, 0);
}

void Win32Control::create(HWND parent, const wchar_t* window_class, const std::string& text,
                          DWORD style, DWORD extended) {
    window_ =
        CreateWindowExW(extended, window_class, wide(text).c_str(), style | WS_CHILD | WS_VISIBLE,
                        0, 0, 0, 0, parent, nullptr, GetModuleHandleW(nullptr), nullptr);
    SetWindowSubclass(window_, procedure, 0, reinterpret_cast<DWORD_PTR>(this));
    take_font();
}

LRESULT CALLBACK Win32Control::procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                                         UINT_PTR /*id*/, DWORD_PTR self) {
    auto& control = *reinterpret_cast<Win32Control*>(self);
    if (message == WM_SETFOCUS) control.host_.has_focus(control);
    if (const auto result = control.handle(message, wparam, lparam)) return *result;
    return DefSubclassProc(window, message, wparam, lparam);
}

std::optional<LRESULT> Win32Control::handle(UINT /*message*/, WPARAM /*wparam*/,
                                            LPARAM /*lparam*/) {
    return std::nullopt;
}

void Win32Control::take_font() { send(WM_SETFONT, reinterpret_cast<WPARAM>(scale().font()), TRUE); }

void Win32Control::move(const RECT& place) {
    SetWindowPos(window_, nullptr, place.left, place.top, place.right - place.left,
                 place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
}

std::string Win32Control::window_text() const {
    std::wstring text(size_t(GetWindowTextLengthW(window_)) + 1, L'\0');
    text.resize(size_t(GetWindowTextW(window_, text.data(), int(text.size()))));
    return narrow(text);
}

void Win32Control::set_window_text(const std::string& text) {
    SetWindowTextW(window_, wide(text).c_str());
}

std::string without_access_key(const std::string& text) {
    std::string result;
    for (const char c : text) result.append(c == '&' ? 2 : 1, c);
    return result;
}

std::string spoken_text(const std::string& text) {
    std::string result;
    for (size_t n = 0; n < text.size(); ++n) {
        if (text[n] == '&') ++n;
        if (n < text.size()) result += text[n];
    }
    return result;
}

bool excludes_others(ControlKind kind) {
    return kind == ControlKind::radio || kind == ControlKind::picture;
}

void set_window_style(HWND window, DWORD style, bool on) {
    const LONG_PTR before = GetWindowLongPtrW(window, GWL_STYLE);
    SetWindowLongPtrW(window, GWL_STYLE, on ? before | LONG_PTR(style) : before & ~LONG_PTR(style));
}
