#include "platform/win32/win32_window.h"

#include <algorithm>

namespace {

constexpr wchar_t CLASS_NAME[] = L"TarvelinWindow";
constexpr WORD ICON = 107; ///< in the program's resources
constexpr DWORD USUAL_STYLE =
    WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX | WS_CLIPCHILDREN;
constexpr DWORD SIZING_STYLE = WS_THICKFRAME | WS_MAXIMIZEBOX;
constexpr DWORD FULL_SCREEN_STYLE = WS_POPUP | WS_CLIPCHILDREN;
constexpr DWORD STATE_STYLE = WS_VISIBLE | WS_DISABLED | WS_MINIMIZE | WS_MAXIMIZE;
constexpr DWORD EXTENDED_STYLE = WS_EX_ACCEPTFILES;

HICON load_icon(HINSTANCE instance, int width, int height) {
    const HANDLE icon = LoadImageW(instance, MAKEINTRESOURCEW(ICON), IMAGE_ICON,
                                   GetSystemMetrics(width), GetSystemMetrics(height), LR_SHARED);
    return static_cast<HICON>(icon);
}

int width_of(const RECT& area) { return int(area.right - area.left); }
int height_of(const RECT& area) { return int(area.bottom - area.top); }

/// A window's placement counts from the corner of what the task bar leaves of the screen.
POINT workspace_corner(const MONITORINFOEXW& monitor) {
    return {monitor.rcWork.left - monitor.rcMonitor.left,
            monitor.rcWork.top - monitor.rcMonitor.top};
}

WINDOWPLACEMENT placement_of(HWND window) {
    WINDOWPLACEMENT placement{};
    placement.length = sizeof placement;
    GetWindowPlacement(window, &placement);
    return placement;
}

} // namespace

Win32Window::Win32Window(Win32Context& context, Win32Panes& panes, Win32StatusBar& status_bar,
                         Win32Keyboard& keyboard)
    : context_(context), panes_(panes), status_bar_(status_bar), keyboard_(keyboard) {
    panes_.debugger().set_input([this](HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
        return handle_debugger(window, message, wparam, lparam);
    });
}

Win32Window::~Win32Window() {
    if (context_.window) DestroyWindow(context_.window);
    context_.window = nullptr;
}

bool Win32Window::register_class() const {
    WNDCLASSEXW record{};
    record.cbSize = sizeof record;
    record.style = CS_DBLCLKS;
    record.lpfnWndProc = procedure;
    record.hInstance = context_.instance;
    record.hIcon = load_icon(context_.instance, SM_CXICON, SM_CYICON);
    record.hIconSm = load_icon(context_.instance, SM_CXSMICON, SM_CYSMICON);
    record.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    record.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    record.lpszClassName = CLASS_NAME;
    return RegisterClassExW(&record) != 0;
}

bool Win32Window::create(const std::string& title) {
    if (!register_class()) return false;
    title_ = title;
    // The procedure notes the window's handle, which the first messages need.
    CreateWindowExW(EXTENDED_STYLE, CLASS_NAME, wide(title).c_str(), style(), CW_USEDEFAULT,
                    CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, nullptr, menu_.bar(),
                    context_.instance, this);
    if (!context_.window) return false;
    context_.ratio = double(GetDpiForWindow(context_.window)) / USER_DEFAULT_SCREEN_DPI;
    return true;
}

void Win32Window::show() {
    shown_ = true;
    ShowWindow(context_.window, maximize_ ? SW_SHOWMAXIMIZED : SW_SHOWDEFAULT);
    UpdateWindow(context_.window);
    panes_.show_window();
}

/// The window is only hidden: the last questions and the settings that are kept still ask it.
void Win32Window::destroy() {
    panes_.place_keyboard(KeyboardPlace::hidden, {}, 0);
    panes_.debugger().put(false, {}, 0);
    ShowWindow(context_.window, SW_HIDE);
}

void Win32Window::set_title(const std::string& title) {
    if (title == title_) return;
    title_ = title;
    SetWindowTextW(context_.window, wide(title).c_str());
}

// ---- sizes -------------------------------------------------------------------------------------

DWORD Win32Window::style() const {
    return fixed_ == Size() ? USUAL_STYLE | SIZING_STYLE : USUAL_STYLE;
}

void Win32Window::apply_style() {
    const HWND window = context_.window;
    const DWORD before = DWORD(GetWindowLongPtrW(window, GWL_STYLE));
    const DWORD now = (before & STATE_STYLE) | (full_screen_ ? FULL_SCREEN_STYLE : style());
    if ((before ^ now) == 0) return;
    SetWindowLongPtrW(window, GWL_STYLE, LONG_PTR(now));
    SetWindowPos(window, nullptr, 0, 0, 0, 0,
                 SWP_FRAMECHANGED | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

/// Windows itself counts one line of menu; in a narrow window there may be more.
Win32Window::Frame Win32Window::frame(Size client_pixels) {
    const HWND window = context_.window;
    RECT outer = {0, 0, client_pixels.width, client_pixels.height};
    const UINT dots_per_inch = UINT(std::lround(context_.ratio * USER_DEFAULT_SCREEN_DPI));
    AdjustWindowRectExForDpi(&outer, style(), TRUE, EXTENDED_STYLE, dots_per_inch);
    if (window && GetMenu(window) && !IsIconic(window)) {
        RECT inside = outer;
        SendMessageW(window, WM_NCCALCSIZE, FALSE, LPARAM(&inside));
        outer.bottom += std::max(client_pixels.height - height_of(inside), 0);
    }
    const Size pixels = {width_of(outer) - client_pixels.width,
                         height_of(outer) - client_pixels.height};
    return {pixels, {context_.points(pixels.width), context_.points(pixels.height)}};
}

Size Win32Window::outer_size(Size client) {
    const Size around =
        frame({context_.pixels(client.width), context_.pixels(client.height)}).points;
    return {client.width + around.width, client.height + around.height};
}

/// The client area, in points, of a window of this outer size.
Size Win32Window::client_of(Size outer) {
    const Size wide_enough = {context_.pixels(outer.width), context_.pixels(outer.height)};
    const int width = outer.width - frame(wide_enough).points.width;
    const Size around = frame({context_.pixels(width), wide_enough.height}).points;
    return {width, outer.height - around.height};
}

Size Win32Window::outer_pixels(Size outer) {
    const Size client = fixed_ == Size() ? client_of(outer) : fixed_;
    const Size pixels = {context_.pixels(client.width), context_.pixels(client.height)};
    const Size around = frame(pixels).pixels;
    return {pixels.width + around.width, pixels.height + around.height};
}

/// Of an icon, where the window will be again.
RECT Win32Window::window_pixels() const {
    RECT area{};
    if (!IsIconic(context_.window)) {
        GetWindowRect(context_.window, &area);
        return area;
    }
    area = placement_of(context_.window).rcNormalPosition;
    const POINT corner = workspace_corner(context_.monitor());
    OffsetRect(&area, int(corner.x), int(corner.y));
    return area;
}

Size Win32Window::client_pixels() {
    if (IsIconic(context_.window)) {
        const RECT outer = window_pixels();
        const Size around = frame({width_of(outer), height_of(outer)}).pixels;
        return {width_of(outer) - around.width, height_of(outer) - around.height};
    }
    RECT client{};
    GetClientRect(context_.window, &client);
    return {width_of(client), height_of(client)};
}

Size Win32Window::client_size() {
    const Size client = client_pixels();
    return {context_.points(client.width), context_.points(client.height)};
}

Rectangle Win32Window::outer_rectangle() {
    const Rectangle place = context_.on_screen(window_pixels());
    if (full_screen_) return place;
    const Size size = outer_size(client_size());
    return {place.left, place.top, place.left + size.width, place.top + size.height};
}

Rectangle Win32Window::client_on_screen() {
    RECT client = {0, 0, 0, 0};
    MapWindowPoints(context_.window, nullptr, reinterpret_cast<POINT*>(&client), 2);
    const Rectangle corner = context_.on_screen(client);
    const Size size = client_size();
    return {corner.left, corner.top, corner.left + size.width, corner.top + size.height};
}

Size Win32Window::screen_size() {
    const Rectangle screen = context_.on_screen(context_.monitor().rcMonitor);
    return {screen.right, screen.bottom};
}

Rectangle Win32Window::available_area() { return context_.on_screen(context_.monitor().rcWork); }

void Win32Window::move(const Rectangle& outer) {
    const Size size = outer_pixels({outer.width(), outer.height()});
    const RECT now = window_pixels();
    const Rectangle place_now = context_.on_screen(now);
    RECT wanted = context_.on_desktop({outer.left, outer.top, outer.left, outer.top});
    // A window that stays where it is does so to the pixel.
    if (outer.left == place_now.left && outer.top == place_now.top && !full_screen_) wanted = now;
    place({wanted.left, wanted.top, wanted.left + size.width, wanted.top + size.height});
}

void Win32Window::place(const RECT& desktop_pixels) {
    const HWND window = context_.window;
    if (!full_screen_ && !IsIconic(window)) {
        SetWindowPos(window, nullptr, int(desktop_pixels.left), int(desktop_pixels.top),
                     width_of(desktop_pixels), height_of(desktop_pixels),
                     SWP_NOZORDER | SWP_NOACTIVATE);
        return;
    }
    WINDOWPLACEMENT placement = full_screen_ ? windowed_ : placement_of(window);
    placement.rcNormalPosition = desktop_pixels;
    const POINT corner = workspace_corner(context_.monitor());
    OffsetRect(&placement.rcNormalPosition, -int(corner.x), -int(corner.y));
    if (full_screen_) {
        windowed_ = placement;
    } else {
        SetWindowPlacement(window, &placement);
    }
}

void Win32Window::set_fixed_size(Size outer) {
    fixed_ = outer == Size() ? Size() : client_of(outer);
    if (!full_screen_) apply_style();
}

void Win32Window::set_least_size(Size outer) { least_ = client_of(outer); }

void Win32Window::limit(MINMAXINFO& limits) {
    if (full_screen_) return;
    const bool is_fixed = fixed_ != Size();
    const Size client = is_fixed ? fixed_ : least_;
    const Size pixels = {context_.pixels(client.width), context_.pixels(client.height)};
    const Size around = frame(pixels).pixels;
    const POINT outer = {pixels.width + around.width, pixels.height + around.height};
    if (client != Size()) limits.ptMinTrackSize = outer;
    if (is_fixed) limits.ptMaxTrackSize = outer;
}

void Win32Window::set_maximized(bool on) {
    if (full_screen_ || maximized() == on) return;
    maximize_ = on;
    if (shown_) ShowWindow(context_.window, on ? SW_MAXIMIZE : SW_RESTORE);
}

bool Win32Window::maximized() {
    if (full_screen_) return windowed_.showCmd == SW_SHOWMAXIMIZED;
    if (!shown_) return maximize_;
    if (!IsIconic(context_.window)) return IsZoomed(context_.window);
    return placement_of(context_.window).flags & WPF_RESTORETOMAXIMIZED;
}

void Win32Window::set_full_screen(bool on) {
    if (full_screen_ == on) return;
    if (on) {
        enter_full_screen();
    } else {
        leave_full_screen();
    }
}

void Win32Window::enter_full_screen() {
    const HWND window = context_.window;
    windowed_ = placement_of(window);
    if (IsZoomed(window)) ShowWindow(window, SW_RESTORE);
    const RECT screen = context_.monitor().rcMonitor;
    full_screen_ = true;
    apply_style();
    SetMenu(window, nullptr);
    SetWindowPos(window, HWND_TOP, int(screen.left), int(screen.top), width_of(screen),
                 height_of(screen), SWP_NOOWNERZORDER);
    lay_out();
}

void Win32Window::leave_full_screen() {
    full_screen_ = false;
    apply_style();
    SetMenu(context_.window, menu_.bar());
    SetWindowPlacement(context_.window, &windowed_);
    lay_out();
}

/// All follows the client area, which the window need not have heard of as another size.
void Win32Window::lay_out() {
    if (!context_.window || IsIconic(context_.window)) return;
    status_bar_.lay_out();
    panes_.lay_out(client_pixels(), status_bar_.pixels());
}

void Win32Window::scale_changed(WORD dots_per_inch, const RECT& suggested) {
    const Size client = client_size();
    context_.ratio = double(dots_per_inch) / USER_DEFAULT_SCREEN_DPI;
    if (!full_screen_ && !IsZoomed(context_.window)) {
        const Size size = outer_pixels(outer_size(client));
        place({suggested.left, suggested.top, suggested.left + size.width,
               suggested.top + size.height});
    }
    lay_out();
    context_.post_once(Event::Kind::resized);
}

// ---- the rest ----------------------------------------------------------------------------------

void Win32Window::invalidate() {
    InvalidateRect(context_.window, nullptr, FALSE);
    context_.post_once(Event::Kind::paint);
}

void Win32Window::show_cursor(bool on) {
    cursor_ = on;
    POINT pointer;
    if (!GetCursorPos(&pointer) || WindowFromPoint(pointer) != context_.window) return;
    SendMessageW(context_.window, WM_SETCURSOR, WPARAM(context_.window),
                 MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
}

void Win32Window::set_menu(const std::vector<MenuEntry>& menus) {
    const bool shows = context_.window && !full_screen_;
    if (shows) SetMenu(context_.window, nullptr);
    menu_.set(menus);
    if (shows) SetMenu(context_.window, menu_.bar());
}

void Win32Window::popup_menu(const std::vector<MenuEntry>& entries, int x, int y) {
    const RECT place = context_.on_desktop({x, y, x, y});
    menu_.prepare_popup(entries, {place.left, place.top});
    PostMessageW(context_.window, SHOW_POPUP, 0, 0);
}

void Win32Window::place_keyboard(KeyboardPlace place, const Rectangle& wanted, int closed) {
    panes_.place_keyboard(place, wanted, closed);
    lay_out();
}

/// Screen readers get what Windows itself tells of the window: title, menu, status bar, dialogs.
void Win32Window::set_readable(const std::string&, std::function<ReadableText()>) {}
