#include "platform/win32/win32_form_window.h"

#include "platform/win32/win32_modal.h"

#include <algorithm>
#include <utility>

namespace {

/// A dialog without controls.
struct EmptyTemplate {
    DLGTEMPLATE head;
    WORD menu = 0;
    WORD window_class = 0;
    WORD title = 0;
};

SIZE size_of(const RECT& area) { return {area.right - area.left, area.bottom - area.top}; }

RECT outer_of(HWND window) {
    RECT outer{};
    GetWindowRect(window, &outer);
    return outer;
}

SIZE frame_of(HWND window) {
    RECT client{};
    GetClientRect(window, &client);
    const SIZE outer = size_of(outer_of(window));
    return {outer.cx - client.right, outer.cy - client.bottom};
}

} // namespace

Win32FormWindow::Win32FormWindow(Win32Context& context, const std::string& title, bool sizable)
    : context_(context) {
    EmptyTemplate dialog{};
    dialog.head.style =
        DWORD(DS_MODALFRAME | WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_CLIPCHILDREN) |
        (sizable ? DWORD(WS_THICKFRAME) : 0);
    if (sizable) dialog.head.style &= ~DWORD(DS_MODALFRAME);
    dialog.head.dwExtendedStyle = WS_EX_CONTROLPARENT;
    dialog.head.cx = dialog.head.cy = 100;
    window_ = CreateDialogIndirectParamW(context.instance, &dialog.head, context.front(), procedure,
                                         reinterpret_cast<LPARAM>(this));
    SetWindowTextW(window_, wide(title).c_str());
}

Win32FormWindow::~Win32FormWindow() {
    on_message = nullptr;
    end();
    DestroyWindow(window_);
}

INT_PTR CALLBACK Win32FormWindow::procedure(HWND window, UINT message, WPARAM wparam,
                                            LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, lparam);
        return FALSE; // no control has the focus yet
    }
    auto* form = reinterpret_cast<Win32FormWindow*>(GetWindowLongPtrW(window, DWLP_USER));
    if (!form || !form->on_message) return FALSE;
    LRESULT result = 0;
    if (!form->on_message(message, wparam, lparam, result)) return FALSE;
    if (message == WM_CTLCOLORSTATIC) return INT_PTR(result);
    SetWindowLongPtrW(window, DWLP_MSGRESULT, LONG_PTR(result));
    return TRUE;
}

void Win32FormWindow::run(const std::function<void()>& shown) {
    const HWND owner = context_.front();
    SetWindowLongPtrW(window_, GWLP_HWNDPARENT, reinterpret_cast<LONG_PTR>(owner));
    is_open_ = runs_ = true;
    {
        const Win32ModalScope scope(context_, window_);
        ShowWindow(window_, SW_SHOW);
        shown();
        MSG message;
        while (runs_) {
            const BOOL got = GetMessageW(&message, nullptr, 0, 0);
            if (got <= 0) { // the end of the program is for its own loop
                if (got == 0) PostQuitMessage(int(message.wParam));
                runs_ = false;
                break;
            }
            if (IsDialogMessageW(window_, &message)) continue;
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
    is_open_ = false;
    const bool was_active = GetActiveWindow() == window_;
    ShowWindow(window_, SW_HIDE);
    if (was_active && owner) SetActiveWindow(owner);
}

void Win32FormWindow::show() {
    if (!is_open_) context_.dialogs.push_back(window_);
    is_open_ = true;
    ShowWindow(window_, SW_SHOW);
    SetForegroundWindow(window_);
}

void Win32FormWindow::end() {
    if (runs_) {
        runs_ = false; // the loop hides the window, when its owner can take the focus again
        return;
    }
    if (!std::exchange(is_open_, false)) return;
    std::erase(context_.dialogs, window_);
    const bool was_active = GetActiveWindow() == window_;
    ShowWindow(window_, SW_HIDE);
    if (was_active && context_.window) SetActiveWindow(context_.window);
}

RECT Win32FormWindow::work_area() const {
    MONITORINFO info{};
    info.cbSize = sizeof info;
    const HWND at = IsWindowVisible(window_) || !context_.window ? window_ : context_.window;
    GetMonitorInfoW(MonitorFromWindow(at, MONITOR_DEFAULTTONEAREST), &info);
    return info.rcWork;
}

SIZE Win32FormWindow::room() const {
    const SIZE all = size_of(work_area()), frame = frame_of(window_);
    return {all.cx - frame.cx, all.cy - frame.cy};
}

void Win32FormWindow::set_client_size(int width, int height) {
    const SIZE frame = frame_of(window_);
    SetWindowPos(window_, nullptr, 0, 0, width + int(frame.cx), height + int(frame.cy),
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    const RECT outer = outer_of(window_);
    if (IsWindowVisible(window_)) move(int(outer.left), int(outer.top));
}

void Win32FormWindow::move(int left, int top) {
    const RECT all = work_area();
    const SIZE size = size_of(outer_of(window_));
    const LONG x = std::max(std::min(LONG(left), all.right - size.cx), all.left);
    const LONG y = std::max(std::min(LONG(top), all.bottom - size.cy), all.top);
    SetWindowPos(window_, nullptr, int(x), int(y), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void Win32FormWindow::move_to_owner() {
    const HWND owner = context_.front();
    const RECT under = owner && IsWindowVisible(owner) ? outer_of(owner) : work_area();
    const SIZE size = size_of(outer_of(window_));
    move(int(under.left + under.right - size.cx) / 2, int(under.top + under.bottom - size.cy) / 2);
}
