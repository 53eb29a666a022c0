#pragma once
/// What the services of the Windows host share.

#include "files/wide_text.h"
#include "platform/events.h"
#include "platform/geometry.h"
#include "platform/win32/win32_windows.h"

#include <cmath>
#include <deque>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The layer counts in points, a 96th of an inch on the screen as it is set up; Windows in pixels.
struct Win32Context {
    HINSTANCE instance = nullptr;
    HWND window = nullptr;   ///< the main one, from its creation to the end of the program
    HWND debugger = nullptr; ///< its window, or null
    double ratio = 1;        ///< pixels in a point, on the screen that shows the main window
    EventSink* sink = nullptr;
    std::deque<Event> queue;
    std::vector<HWND>
        dialogs; ///< open ones without a loop of their own, whose keys the pump offers them
    std::vector<HWND> modal; ///< dialogs with a loop of their own, the front one last

    int pixels(int points) const { return int(std::lround(points * ratio)); }
    int points(int pixels) const { return int(std::lround(pixels / ratio)); }
    /// The main window while there is one to see.
    HWND seen_window() const { return IsWindowVisible(window) ? window : nullptr; }
    /// The main window has the whole screen.
    bool is_whole_screen() const;
    /// The window that a dialog belongs to; none where there is none to see.
    HWND front() const;
    void post(Event event) { queue.push_back(std::move(event)); }
    void post(Event::Kind kind, int value = 0);
    /// Appends a message, unless one of the kind waits already.
    void post_once(Event::Kind kind);
    /// Of the screen that shows the main window, in pixels of the whole desktop.
    MONITORINFOEXW monitor() const;
    /// A rectangle of the layer on the screen counts from that screen's top left corner.
    Rectangle on_screen(const RECT& desktop_pixels) const;
    RECT on_desktop(const Rectangle& screen_points) const;
};
