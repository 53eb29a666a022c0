#include "platform/win32/win32_context.h"

#include <algorithm>

void Win32Context::post(Event::Kind kind, int value) {
    Event event;
    event.kind = kind;
    event.value = value;
    post(std::move(event));
}

void Win32Context::post_once(Event::Kind kind) {
    const auto same = [kind](const Event& event) { return event.kind == kind; };
    if (std::ranges::none_of(queue, same)) post(kind);
}

bool Win32Context::is_whole_screen() const {
    return window && !(GetWindowLongW(window, GWL_STYLE) & WS_CAPTION);
}

HWND Win32Context::front() const {
    if (!modal.empty()) return modal.back();
    return debugger && GetActiveWindow() == debugger ? debugger : seen_window();
}

MONITORINFOEXW Win32Context::monitor() const {
    MONITORINFOEXW info{};
    info.cbSize = sizeof info;
    const DWORD none_yet = window ? MONITOR_DEFAULTTONEAREST : MONITOR_DEFAULTTOPRIMARY;
    GetMonitorInfoW(MonitorFromWindow(window, none_yet), &info);
    return info;
}

Rectangle Win32Context::on_screen(const RECT& desktop_pixels) const {
    const RECT screen = monitor().rcMonitor;
    return {points(int(desktop_pixels.left - screen.left)),
            points(int(desktop_pixels.top - screen.top)),
            points(int(desktop_pixels.right - screen.left)),
            points(int(desktop_pixels.bottom - screen.top))};
}

RECT Win32Context::on_desktop(const Rectangle& screen_points) const {
    const RECT screen = monitor().rcMonitor;
    return {screen.left + pixels(screen_points.left), screen.top + pixels(screen_points.top),
            screen.left + pixels(screen_points.right), screen.top + pixels(screen_points.bottom)};
}
