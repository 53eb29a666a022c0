/// The part of a form that scrolls.

#include "platform/win32/win32_form_layout.h"

#include <algorithm>
#include <utility>

namespace {

constexpr wchar_t CLASS_NAME[] = L"TarvelinPanel";
constexpr int LINE = 40; ///< pixels

} // namespace

Win32Panel::Win32Panel(HWND parent) {
    WNDCLASSW description{};
    description.lpfnWndProc = procedure;
    description.hInstance = GetModuleHandleW(nullptr);
    description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    description.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
    description.lpszClassName = CLASS_NAME;
    RegisterClassW(&description); // refused when it is there already
    window_ = CreateWindowExW(WS_EX_CONTROLPARENT, CLASS_NAME, L"", WS_CHILD | WS_VISIBLE, 0, 0, 0,
                              0, parent, nullptr, description.hInstance, nullptr);
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

Win32Panel::~Win32Panel() {
    if (IsWindow(window_)) SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
}

LRESULT CALLBACK Win32Panel::procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    auto* panel = reinterpret_cast<Win32Panel*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    switch (message) {
    case WM_COMMAND:
    case WM_NOTIFY:
    case WM_HSCROLL:
    case WM_DRAWITEM:
    case WM_CTLCOLORSTATIC:
    case WM_LBUTTONDOWN:
    case WM_RBUTTONDOWN:
    case WM_CTLCOLORBTN: return SendMessageW(GetParent(window), message, wparam, lparam);
    case WM_VSCROLL:
        if (panel && !lparam) panel->scroll(LOWORD(wparam));
        return 0;
    case WM_MOUSEWHEEL:
        if (!panel || panel->contents_ <= panel->height_) break;
        panel->scroll_to(panel->offset_ - GET_WHEEL_DELTA_WPARAM(wparam) * 2 * LINE / WHEEL_DELTA);
        return 0;
    default: break;
    }
    return DefWindowProcW(window, message, wparam, lparam);
}

void Win32Panel::move(const RECT& place, int contents_height) {
    height_ = int(place.bottom - place.top);
    contents_ = contents_height;
    offset_ = std::clamp(offset_, 0, std::max(contents_ - height_, 0));
    SetWindowPos(window_, nullptr, place.left, place.top, place.right - place.left, height_,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    info.nMax = contents_ > height_ ? contents_ - 1 : 0;
    info.nPage = UINT(height_);
    info.nPos = offset_;
    SetScrollInfo(window_, SB_VERT, &info, TRUE);
}

void Win32Panel::scroll_to(int offset) {
    const int to = std::clamp(offset, 0, std::max(contents_ - height_, 0));
    const int by = std::exchange(offset_, to) - to;
    if (by == 0) return;
    SetScrollPos(window_, SB_VERT, to, TRUE);
    ScrollWindowEx(window_, 0, by, nullptr, nullptr, nullptr, nullptr,
                   SW_SCROLLCHILDREN | SW_INVALIDATE | SW_ERASE);
}

void Win32Panel::scroll(WORD act) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_TRACKPOS;
    GetScrollInfo(window_, SB_VERT, &info);
    switch (act) {
    case SB_LINEUP: return scroll_to(offset_ - LINE);
    case SB_LINEDOWN: return scroll_to(offset_ + LINE);
    case SB_PAGEUP: return scroll_to(offset_ - height_);
    case SB_PAGEDOWN: return scroll_to(offset_ + height_);
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION: return scroll_to(info.nTrackPos);
    case SB_TOP: return scroll_to(0);
    case SB_BOTTOM: return scroll_to(contents_);
    default: return;
    }
}

void Win32Panel::bring_into_sight(HWND window) {
    RECT place{};
    GetWindowRect(window, &place);
    MapWindowPoints(nullptr, window_, reinterpret_cast<POINT*>(&place), 2);
    if (place.bottom > height_) scroll_to(offset_ + int(place.bottom) - height_);
    if (place.top < 0) scroll_to(offset_ + int(place.top));
}
