#pragma once
#include "platform/events.h"
#include "platform/win32/win32_context.h"
#include "platform/win32/win32_debugger_pane.h"
#include "platform/win32/win32_keyboard_pane.h"
#include "platform/win32/win32_overlay.h"
#include "platform/win32/win32_pane.h"
#include "platform/window.h"

#include <array>
#include <set>

/// The film bar, over the lowest lines.
class Win32FilmBar final : public Win32Pane {
public:
    using Win32Pane::Win32Pane;
    /// Takes its place in an area of this size.
    void place_in(Size room_pixels, Size room);
};

/// The client area of the main window, without the status bar: its panes, and the pointer in them.
class Win32Panes {
public:
    explicit Win32Panes(Win32Context& context);

    Pane& pane(PaneId id) { return *panes_[size_t(id)]; }
    Win32Pane& picture() { return picture_; }
    /// Is nothing in front of the picture?
    bool picture_is_alone() const;

    /// The client area has this size, at its bottom the status bar. Has all that has lost its
    /// drawing drawn again.
    void lay_out(Size client_pixels, int bar_pixels);
    /// Draws a part of the client area; no pixel gets two colours.
    void paint(HDC dc, const RECT& part);
    Win32DebuggerPane& debugger() { return debugger_; }
    /// Makes an event of a message of mouse, wheel, pen or finger, of the main window or those of
    /// keyboard and debugger. False for any other message, and for a finger that Windows is to take
    /// for a mouse.
    bool pointer(HWND window, UINT message, WPARAM wide, LPARAM detail);

    /// As Window::place_keyboard and keyboard_rectangle say.
    void place_keyboard(KeyboardPlace place, const Rectangle& wanted, int closed);
    Rectangle keyboard_rectangle() const { return keyboard_.rectangle(); }
    /// What the docked keyboard takes of the client area.
    int docked_pixels() const { return keyboard_.docked_pixels(); }
    /// The main window appears, and the other windows with it.
    void show_window();

private:
    struct Place {
        PaneId pane = PaneId::picture;
        int x = 0, y = 0; ///< points in the pane
    };

    PaneId front_id() const;
    Win32Pane& front() { return *panes_[size_t(front_id())]; }
    bool is_seen(PaneId id) const;
    void invalidate(PaneId id, const Rectangle& pixels);
    Size room_pixels() const;
    Size room() const;
    void place_strips();
    void draw_again(PaneId id);
    Place place_of(HWND window, POINT pixel) const;
    void tell(Pointer::Act act, const Place& place, uint8_t button, WPARAM keys);
    bool mouse(HWND window, UINT message, WPARAM wide, LPARAM detail);
    void let_go();
    void wheel(HWND window, WPARAM wide, LPARAM detail);
    bool finger(HWND window, UINT message, WPARAM wide, LPARAM detail);
    void tell_finger(int finger, Pointer::Act act, const Place& place);

    Win32Context& context_;
    Win32Pane picture_, monitor_;
    Win32FilmBar film_bar_;
    Win32Overlay overlay_;
    Win32KeyboardPane keyboard_;
    Win32DebuggerPane debugger_;
    const std::array<Win32Pane*, PANES> panes_ = {&picture_, &monitor_,  &film_bar_,
                                                  &overlay_, &keyboard_, &debugger_};
    Size client_; ///< pixels
    int bar_ = 0; ///< likewise
    double ratio_ = 0;
    PaneId held_ = PaneId::picture; ///< in which a button of the mouse went down
    bool holds_ = false;
    int wheel_angle_ = 0;   ///< less than a notch
    std::set<int> fingers_; ///< that touch the keyboard
};
