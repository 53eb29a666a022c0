#include "platform/win32/win32_debugger_pane.h"

#include "platform/win32/win32_spoken.h"

#include <algorithm>
#include <utility>

namespace {

constexpr Size USUAL_SIZE = {1000, 700}; ///< points
constexpr Size LEAST_SIZE = {240, 120};  ///< likewise
constexpr int LEAST_ROW = 16;            ///< likewise: more than the stock font has
constexpr wchar_t DEBUGGER_CLASS[] = L"TarvelinDebugger";
constexpr wchar_t DEBUGGER_TITLE[] = L"Tarvelin debugger";
constexpr DWORD DEBUGGER_STYLE = WS_OVERLAPPEDWINDOW;
constexpr WPARAM COMMAND_OF_SYSTEM = 0xFFF0; ///< the low bits are Windows' own

/// With the frame that goes around a client area.
RECT framed(RECT client, HWND window) {
    AdjustWindowRectExForDpi(&client, DEBUGGER_STYLE, FALSE, 0, GetDpiForWindow(window));
    return client;
}

/// What the task bar leaves of the screen that is nearest to a place.
Rectangle room_at(const RECT& place) {
    MONITORINFO info{};
    info.cbSize = sizeof info;
    GetMonitorInfoW(MonitorFromRect(&place, MONITOR_DEFAULTTONEAREST), &info);
    return from_windows(info.rcWork);
}

/// At the nearest place that lies in the room, and no larger.
Rectangle fitted(const Rectangle& window, const Rectangle& room) {
    const int width = std::min(window.width(), room.width());
    const int height = std::min(window.height(), room.height());
    const int left = std::clamp(window.left, room.left, room.right - width);
    const int top = std::clamp(window.top, room.top, room.bottom - height);
    return {left, top, left + width, top + height};
}

} // namespace

Win32DebuggerPane::Win32DebuggerPane(Win32Context& context)
    : Win32Pane(context), own_context_(context) {}

Win32DebuggerPane::~Win32DebuggerPane() {
    if (window()) DestroyWindow(window());
}

// ---- its place ---------------------------------------------------------------------------------

void Win32DebuggerPane::put(bool open, const Rectangle& wanted, int closed) {
    closed_ = closed;
    const bool stays = std::exchange(open_, open) == open;
    if (open) {
        if (!create_window()) return;
        show(true);
        if (!stays) place_window(wanted);
        return show_window();
    }
    if (stays || !window()) return;
    show(false);
    const bool was_active = GetActiveWindow() == window();
    ShowWindow(window(), SW_HIDE);
    if (was_active && context_.seen_window()) SetActiveWindow(context_.window);
}

bool Win32DebuggerPane::create_window() {
    if (window()) return true;
    WNDCLASSEXW kind = {};
    kind.cbSize = sizeof kind;
    kind.style = CS_DBLCLKS;
    kind.lpfnWndProc = procedure;
    kind.hInstance = context_.instance;
    kind.hIcon = reinterpret_cast<HICON>(GetClassLongPtrW(context_.window, GCLP_HICON));
    kind.hIconSm = reinterpret_cast<HICON>(GetClassLongPtrW(context_.window, GCLP_HICONSM));
    kind.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512)); // the arrow
    kind.lpszClassName = DEBUGGER_CLASS;
    RegisterClassExW(&kind);
    CreateWindowExW(0, DEBUGGER_CLASS, DEBUGGER_TITLE, DEBUGGER_STYLE, CW_USEDEFAULT, CW_USEDEFAULT,
                    CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr, context_.instance, this);
    return window() != nullptr;
}

/// On whichever screen that is; without a wish, where it covers the least of the main window.
void Win32DebuggerPane::place_window(const Rectangle& wanted) {
    const bool has_wish = wanted != Rectangle{};
    RECT main{};
    GetWindowRect(context_.window, &main);
    const RECT at = has_wish ? context_.on_desktop(wanted) : main;
    SetWindowPos(window(), nullptr, int(at.left), int(at.top), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE); // to that screen's scale
    ratio_ = double(GetDpiForWindow(window())) / USER_DEFAULT_SCREEN_DPI;
    const Rectangle room = room_at(at);
    const Size size = has_wish ? Size{wanted.width(), wanted.height()} : USUAL_SIZE;
    Rectangle outer = from_windows(framed(
        {at.left, at.top, at.left + pixels(size.width), at.top + pixels(size.height)}, window()));
    if (!has_wish) {
        const bool at_right = room.right - main.right >= main.left - room.left;
        const int left = at_right ? int(main.right) : int(main.left) - outer.width();
        const int top = int(main.top);
        outer = {left, top, left + outer.width(), top + outer.height()};
    }
    const Rectangle place = fitted(outer, room);
    SetWindowPos(window(), nullptr, place.left, place.top, place.width(), place.height(),
                 SWP_NOZORDER | SWP_NOACTIVATE);
    sized();
}

void Win32DebuggerPane::show_window() {
    if (!open_ || !window() || !context_.seen_window()) return;
    // Under Wine, a window that is there already does not come before one of the whole screen.
    if (context_.is_whole_screen()) ShowWindow(window(), SW_HIDE);
    ShowWindow(window(), IsIconic(window()) ? SW_RESTORE : SW_SHOW);
    SetForegroundWindow(window());
}

Rectangle Win32DebuggerPane::rectangle() const {
    if (!open_ || !window()) return {};
    const Rectangle place = context_.on_screen(normal_);
    return {place.left, place.top, place.left + points(normal_.right - normal_.left),
            place.top + points(normal_.bottom - normal_.top)};
}

/// The stock font has no arrows and dots.
const Win32CellFont& Win32DebuggerPane::font() {
    own_font_.choose(ratio_, LEAST_ROW);
    return own_font_;
}

// ---- the window --------------------------------------------------------------------------------

LRESULT CALLBACK Win32DebuggerPane::procedure(HWND window, UINT message, WPARAM wide,
                                              LPARAM detail) {
    if (message == WM_NCCREATE) {
        auto* created = static_cast<Win32DebuggerPane*>(
            reinterpret_cast<const CREATESTRUCTW*>(detail)->lpCreateParams);
        created->own_context_.debugger = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(created));
    }
    auto* const self =
        reinterpret_cast<Win32DebuggerPane*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    return self ? self->handle(window, message, wide, detail)
                : DefWindowProcW(window, message, wide, detail);
}

LRESULT Win32DebuggerPane::handle(HWND window, UINT message, WPARAM wide, LPARAM detail) {
    if (input_ && input_(window, message, wide, detail)) return 0;
    switch (message) {
    case WM_SYSCOMMAND:
        // F10 and Alt lead to no menu here; Alt with a blank does, to that of the window.
        if ((wide & COMMAND_OF_SYSTEM) == SC_KEYMENU && detail != L' ') return 0;
        break;
    case WM_ERASEBKGND: return 1;
    case WM_PAINT: paint(); return 0;
    case WM_MOVE:
    case WM_SIZE: sized(); return 0;
    case WM_DPICHANGED: {
        scale_changed();
        const Rectangle place = from_windows(*reinterpret_cast<const RECT*>(detail));
        SetWindowPos(window, nullptr, place.left, place.top, place.width(), place.height(),
                     SWP_NOZORDER | SWP_NOACTIVATE);
        return 0;
    }
    case WM_GETMINMAXINFO: {
        const RECT least =
            framed({0, 0, pixels(LEAST_SIZE.width), pixels(LEAST_SIZE.height)}, window);
        reinterpret_cast<MINMAXINFO*>(detail)->ptMinTrackSize = {least.right - least.left,
                                                                 least.bottom - least.top};
        return 0;
    }
    case WM_ENTERMENULOOP:
    case WM_ENTERSIZEMOVE:
        if (context_.sink) context_.sink->loop_begins();
        return 0;
    case WM_EXITMENULOOP:
    case WM_EXITSIZEMOVE:
        if (context_.sink) context_.sink->loop_ends();
        return 0;
    case WM_CLOSE: own_context_.post(Event::Kind::command, closed_); return 0; // which closes it
    case WM_NCDESTROY: own_context_.debugger = nullptr; break;
    default: break;
    }
    return DefWindowProcW(window, message, wide, detail);
}

void Win32DebuggerPane::scale_changed() {
    ratio_ = double(GetDpiForWindow(window())) / USER_DEFAULT_SCREEN_DPI;
    sized();
}

/// Also moved.
void Win32DebuggerPane::sized() {
    if (!open_ || IsIconic(window())) return;
    RECT client;
    GetClientRect(window(), &client);
    if (!IsZoomed(window())) {
        normal_ = client;
        MapWindowPoints(window(), nullptr, reinterpret_cast<POINT*>(&normal_), 2);
    }
    const Size before = size();
    const bool other = place(from_windows(client), {points(client.right), points(client.bottom)});
    if ((!other && size() == before) || is_empty(area())) return;
    InvalidateRect(window(), nullptr, FALSE);
    if (context_.sink) context_.sink->paint(PaneId::debugger);
}

void Win32DebuggerPane::paint() {
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(window(), &paint);
    drawing().show(dc, 0, 0, from_windows(paint.rcPaint));
    EndPaint(window(), &paint);
}

void Win32DebuggerPane::set_message(const std::string& text, int /*rows*/) {
    if (std::exchange(message_, text) != text && window()) set_spoken_text(window(), text);
}
