#include "platform/win32/win32_keyboard_pane.h"

#include "platform/bitmap_reader.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace {

constexpr int LEAST_WIDTH = 340; ///< floating, in points
constexpr UINT SIZED_TIMER = 1;
constexpr UINT SIZED = 250; ///< ms without another size
constexpr wchar_t CLASS[] = L"TarvelinKeyboard";
constexpr wchar_t TITLE[] = L"Colour Genie keyboard";
constexpr DWORD STYLE = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME;
/// A click on it leaves the keyboard with the window that has it.
constexpr DWORD STYLE_BEYOND = WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE;

} // namespace

Win32KeyboardPane::Win32KeyboardPane(Win32Context& context)
    : Win32Pane(context), own_context_(context) {}

Win32KeyboardPane::~Win32KeyboardPane() {
    if (window_) DestroyWindow(window_);
}

// ---- its place ---------------------------------------------------------------------------------

void Win32KeyboardPane::put(KeyboardPlace place, const Rectangle& wanted, int closed) {
    const bool stays = std::exchange(place_, place) == place;
    closed_ = closed;
    if (place == KeyboardPlace::docked) docked_height_ = wanted.height();
    show(place != KeyboardPlace::hidden);
    if (place == KeyboardPlace::floating) {
        if (!stays) float_at(wanted);
    } else if (window_) {
        ShowWindow(window_, SW_HIDE);
    }
}

int Win32KeyboardPane::docked_pixels() const {
    return is_docked() && !context_.is_whole_screen() ? context_.pixels(docked_height_) : 0;
}

bool Win32KeyboardPane::create_window() {
    if (window_) return true;
    WNDCLASSEXW kind = {};
    kind.cbSize = sizeof kind;
    kind.style = CS_DBLCLKS;
    kind.lpfnWndProc = procedure;
    kind.hInstance = context_.instance;
    kind.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512)); // the arrow
    kind.lpszClassName = CLASS;
    RegisterClassExW(&kind);
    window_ = CreateWindowExW(STYLE_BEYOND, CLASS, TITLE, STYLE, 0, 0, 1, 1, context_.window,
                              nullptr, context_.instance, this);
    return window_ != nullptr;
}

/// What the frame adds to the client area.
Size Win32KeyboardPane::frame_size() const {
    RECT outer, client;
    GetWindowRect(window_, &outer);
    GetClientRect(window_, &client);
    const Rectangle all = from_windows(outer);
    return {all.width() - int(client.right), all.height() - int(client.bottom)};
}

void Win32KeyboardPane::float_at(const Rectangle& wanted) {
    proportion_ = {wanted.width(), wanted.height()};
    if (!create_window()) return;
    const Rectangle room = from_windows(context_.monitor().rcWork);
    const Size frame = frame_size();
    const int width = std::min(context_.pixels(wanted.width()), room.width() - frame.width);
    const Size size = {width + frame.width,
                       width * proportion_.height / proportion_.width + frame.height};
    const RECT place = context_.on_desktop(wanted);
    int left = int(place.left);
    int top = int(place.top);
    if (wanted.left == 0 && wanted.top == 0) {
        // Below the middle of the screen, where it hides little of the picture.
        left = (room.left + room.right - size.width) / 2;
        top = room.bottom - size.height - room.height() / 20;
    }
    left = std::clamp(left, room.left, std::max(room.right - size.width, room.left));
    top = std::clamp(top, room.top, std::max(room.bottom - size.height, room.top));
    SetWindowPos(window_, nullptr, left, top, size.width, size.height,
                 SWP_NOACTIVATE | SWP_NOZORDER);
    sized();
    show_window();
}

void Win32KeyboardPane::show_window() {
    const bool shows = place_ == KeyboardPlace::floating && context_.window && window_ &&
                       IsWindowVisible(context_.window);
    if (shows) ShowWindow(window_, SW_SHOWNOACTIVATE);
}

/// Its width is that of the picture in it, which the program wants it to have again.
Rectangle Win32KeyboardPane::rectangle() const {
    if (place_ != KeyboardPlace::floating || !window_) return {};
    RECT outer, client;
    GetWindowRect(window_, &outer);
    GetClientRect(window_, &client);
    return context_.on_screen(
        {outer.left, outer.top, outer.left + client.right, outer.top + client.bottom});
}

// ---- the floating window -----------------------------------------------------------------------

LRESULT CALLBACK Win32KeyboardPane::procedure(HWND window, UINT message, WPARAM wide,
                                              LPARAM detail) {
    if (message == WM_NCCREATE) {
        const auto* created = reinterpret_cast<const CREATESTRUCTW*>(detail);
        SetWindowLongPtrW(window, GWLP_USERDATA,
                          reinterpret_cast<LONG_PTR>(created->lpCreateParams));
    }
    auto* const self =
        reinterpret_cast<Win32KeyboardPane*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    return self ? self->handle(window, message, wide, detail)
                : DefWindowProcW(window, message, wide, detail);
}

LRESULT Win32KeyboardPane::handle(HWND window, UINT message, WPARAM wide, LPARAM detail) {
    if (window_ && pointer_ && pointer_(window, message, wide, detail)) return 0;
    switch (message) {
    case WM_MOUSEACTIVATE: return MA_NOACTIVATE;
    case WM_ERASEBKGND: return 1;
    case WM_PAINT: paint(); return 0;
    case WM_SIZE: sized(); return 0;
    case WM_SIZING: keep_proportion(wide, *reinterpret_cast<RECT*>(detail)); return TRUE;
    case WM_TIMER: restore_proportion(); return 0;
    case WM_GETMINMAXINFO:
        reinterpret_cast<MINMAXINFO*>(detail)->ptMinTrackSize.x = context_.pixels(LEAST_WIDTH);
        return 0;
    case WM_ENTERSIZEMOVE:
        if (context_.sink) context_.sink->loop_begins();
        return 0;
    case WM_EXITSIZEMOVE:
        if (context_.sink) context_.sink->loop_ends();
        return 0;
    case WM_CLOSE: own_context_.post(Event::Kind::command, closed_); return 0; // which hides it
    case WM_NCDESTROY: // its owner may go first
        window_ = nullptr;
        return DefWindowProcW(window, message, wide, detail);
    default: return DefWindowProcW(window, message, wide, detail);
    }
}

/// `edge` is what the user drags.
void Win32KeyboardPane::keep_proportion(WPARAM edge, RECT& outer) const {
    const Size frame = frame_size();
    const int width = int(outer.right - outer.left) - frame.width;
    const int height = int(outer.bottom - outer.top) - frame.height;
    if (edge == WMSZ_TOP || edge == WMSZ_BOTTOM) {
        outer.right = outer.left + frame.width + height * proportion_.width / proportion_.height;
        return;
    }
    const LONG wanted = frame.height + width * proportion_.height / proportion_.width;
    const bool from_top = edge == WMSZ_TOPLEFT || edge == WMSZ_TOPRIGHT;
    if (from_top) {
        outer.top = outer.bottom - wanted;
    } else {
        outer.bottom = outer.top + wanted;
    }
}

/// Windows asks at each step of the user's; a window manager that sizes Wine's windows does not.
/// Where it refuses, there is room around the keyboard.
void Win32KeyboardPane::restore_proportion() {
    KillTimer(window_, SIZED_TIMER);
    const Size size = {area().width(), area().height()};
    const int height = size.width * proportion_.height / proportion_.width;
    const bool fits = std::abs(height - size.height) <= 1;
    const bool refused = std::exchange(corrected_, fits ? Size{} : size) == size;
    if (fits || refused) return;
    const Size frame = frame_size();
    SetWindowPos(window_, nullptr, 0, 0, size.width + frame.width, height + frame.height,
                 SWP_NOMOVE | SWP_NOACTIVATE | SWP_NOZORDER);
}

void Win32KeyboardPane::sized() {
    if (place_ != KeyboardPlace::floating || !window_) return;
    RECT client;
    GetClientRect(window_, &client);
    const Size points = {context_.points(int(client.right)), context_.points(int(client.bottom))};
    if (!place(from_windows(client), points)) return;
    InvalidateRect(window_, nullptr, FALSE);
    SetTimer(window_, SIZED_TIMER, SIZED, nullptr);
    if (context_.sink && !is_empty(area())) context_.sink->paint(PaneId::keyboard);
}

void Win32KeyboardPane::paint() {
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(window_, &paint);
    drawing().show(dc, 0, 0, from_windows(paint.rcPaint));
    EndPaint(window_, &paint);
}

// ---- its picture -------------------------------------------------------------------------------

/// The picture has the pane's size but for the rounding of its places, which the last column and
/// row make up for. Any other was drawn for another size, and the right one follows.
void Win32KeyboardPane::stretch_bitmap(const BitmapView& picture, const Rectangle& target,
                                       const Scaling& how) {
    const Size pane = {area().width(), area().height()};
    const bool fits =
        std::abs(pane.width - picture.width) <= 1 && std::abs(pane.height - picture.height) <= 1;
    if (!fits) return Win32Pane::stretch_bitmap(picture, target, how);
    clear();
    Win32Canvas& canvas = drawing();
    const BitmapReader reader(picture);
    for (int y = 0; y < pane.height; ++y) {
        const int count = std::min(pane.width, picture.width);
        uint32_t* const row = canvas.row(y);
        reader.read(std::min(y, picture.height - 1), 0, count, row);
        if (count < pane.width) row[count] = row[count - 1];
    }
    announce({0, 0, pane.width, pane.height});
}
