#include "platform/win32/win32_window.h"

#include <utility>

namespace {

/// Windows may keep a layout for each program, and tells it right after the focus.
constexpr ULONGLONG LAYOUT_SETTLES = 500; ///< ms
constexpr WORD OF_MENU_BAR = 0;           ///< the kind of menu in WM_MENUCHAR
constexpr WORD MENU_CLOSED = 0xFFFF;      ///< in WM_MENUSELECT, without a menu
constexpr WPARAM SYSTEM_COMMAND = 0xFFF0; ///< the low bits are Windows' own

} // namespace

LRESULT CALLBACK Win32Window::procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_NCCREATE) {
        auto* self = static_cast<Win32Window*>(
            reinterpret_cast<const CREATESTRUCTW*>(lparam)->lpCreateParams);
        self->context_.window = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
    }
    auto* self = reinterpret_cast<Win32Window*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    const std::optional<LRESULT> answer =
        self ? self->handle(message, wparam, lparam) : std::nullopt;
    return answer ? *answer : DefWindowProcW(window, message, wparam, lparam);
}

std::optional<LRESULT> Win32Window::handle(UINT message, WPARAM wparam, LPARAM lparam) {
    LRESULT answer = 0;
    if (status_bar_.handle(message, wparam, lparam, answer)) return answer;
    if (keyboard_.handle(PaneId::picture, message, wparam, lparam)) return 0;
    if (panes_.pointer(context_.window, message, wparam, lparam)) return 0;
    if (const auto menu = handle_menu(message, wparam, lparam)) return menu;
    if (const auto place = handle_place(message, wparam, lparam)) return place;
    return handle_program(message, wparam);
}

/// What goes to whichever window has the keyboard or the pointer.
bool Win32Window::handle_debugger(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_KILLFOCUS) keyboard_.let_go();
    if (message == WM_INPUTLANGCHANGE) layout_changed();
    return keyboard_.handle(PaneId::debugger, message, wparam, lparam) ||
           panes_.pointer(window, message, wparam, lparam);
}

std::optional<LRESULT> Win32Window::handle_menu(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_COMMAND:
        if (lparam == 0) context_.post(Event::Kind::command, LOWORD(wparam));
        return 0;
    case WM_SYSCOMMAND:
        // Without a menu, Windows would answer a key for it with a beep.
        if ((wparam & SYSTEM_COMMAND) == SC_KEYMENU && full_screen_) return 0;
        return std::nullopt;
    case WM_MENUCHAR: // an unassigned Alt+letter, and no beep
        if (HIWORD(wparam) == OF_MENU_BAR) return MAKELRESULT(0, MNC_CLOSE);
        return std::nullopt;
    case WM_INITMENUPOPUP:
        if (context_.sink && menu_.is_of_bar(reinterpret_cast<HMENU>(wparam)))
            context_.sink->menu_opens();
        return std::nullopt;
    case WM_MENUSELECT: highlight(wparam, lparam); return std::nullopt;
    case WM_ENTERMENULOOP:
    case WM_ENTERSIZEMOVE: loop(true); return std::nullopt;
    case WM_EXITMENULOOP:
    case WM_EXITSIZEMOVE: loop(false); return std::nullopt;
    case SHOW_POPUP: menu_.show_popup(context_.window); return 0;
    default: return std::nullopt;
    }
}

std::optional<LRESULT> Win32Window::handle_place(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_GETMINMAXINFO: limit(*reinterpret_cast<MINMAXINFO*>(lparam)); return 0;
    case WM_MOVE: context_.post_once(Event::Kind::moved); return std::nullopt;
    case WM_SIZE:
        if (wparam == SIZE_MINIMIZED) return std::nullopt;
        lay_out();
        context_.post_once(Event::Kind::resized);
        return std::nullopt;
    case WM_DPICHANGED:
        scale_changed(LOWORD(wparam), *reinterpret_cast<const RECT*>(lparam));
        return 0;
    case WM_ERASEBKGND: return 1; // the panes paint all of it
    case WM_PAINT: paint(); return 0;
    case WM_PRINTCLIENT: {
        const Size client = client_pixels();
        panes_.paint(reinterpret_cast<HDC>(wparam), {0, 0, client.width, client.height});
        return 0;
    }
    case WM_SETCURSOR:
        if (cursor_ || LOWORD(lparam) != HTCLIENT) return std::nullopt;
        SetCursor(nullptr);
        return 1;
    default: return std::nullopt;
    }
}

std::optional<LRESULT> Win32Window::handle_program(UINT message, WPARAM wparam) {
    switch (message) {
    case WM_CLOSE: context_.post_once(Event::Kind::close); return 0;
    case WM_ACTIVATEAPP: activated(wparam != 0); return 0;
    case WM_SETFOCUS: context_.post(Event::Kind::focus); return 0;
    case WM_KILLFOCUS: keyboard_.let_go(); return 0;
    case WM_INPUTLANGCHANGE: layout_changed(); return std::nullopt;
    case WM_DROPFILES: drop(reinterpret_cast<HDROP>(wparam)); return 0;
    case WM_QUERYENDSESSION: return 1;
    case WM_ENDSESSION:
        if (wparam && context_.sink) context_.sink->session_ends();
        return 0;
    default: return std::nullopt;
    }
}

void Win32Window::loop(bool begins) {
    if (!begins) {
        if (context_.sink) context_.sink->loop_ends();
        return;
    }
    keyboard_.let_go();
    if (context_.sink) context_.sink->loop_begins();
}

void Win32Window::highlight(WPARAM wparam, LPARAM lparam) const {
    const WORD flags = HIWORD(wparam);
    if (!context_.sink || (flags == MENU_CLOSED && lparam == 0)) return;
    const bool is_item = (flags & (MF_POPUP | MF_SYSMENU | MF_SEPARATOR)) == 0;
    context_.sink->item_highlighted(is_item ? LOWORD(wparam) : 0);
}

void Win32Window::paint() {
    PAINTSTRUCT record;
    const HDC dc = BeginPaint(context_.window, &record);
    if (dc) panes_.paint(dc, record.rcPaint);
    EndPaint(context_.window, &record);
}

void Win32Window::activated(bool active) {
    active_since_ = active ? GetTickCount64() : 0;
    context_.post(Event::Kind::activate, active);
}

void Win32Window::layout_changed() {
    keyboard_.layout_changed();
    const bool settled = active_since_ && GetTickCount64() - active_since_ > LAYOUT_SETTLES;
    context_.post(Event::Kind::layout_changed, settled);
}

void Win32Window::drop(HDROP files) {
    Event event;
    event.kind = Event::Kind::drop;
    const UINT count = DragQueryFileW(files, UINT32_MAX, nullptr, 0);
    for (UINT n = 0; n < count; ++n) {
        std::wstring path(DragQueryFileW(files, n, nullptr, 0) + size_t(1), L'\0');
        path.resize(DragQueryFileW(files, n, path.data(), UINT(path.size())));
        event.more.push_back(narrow(path));
    }
    DragFinish(files);
    if (event.more.empty()) return;
    event.text = std::move(event.more.front());
    event.more.erase(event.more.begin());
    context_.post(std::move(event));
}
