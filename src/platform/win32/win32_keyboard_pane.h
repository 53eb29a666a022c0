#pragma once
#include "platform/win32/win32_pane.h"
#include "platform/window.h"

/// The pane of the machine's keyboard: in the client area, or in a window of its own.
class Win32KeyboardPane final : public Win32Pane {
public:
    explicit Win32KeyboardPane(Win32Context& context);
    ~Win32KeyboardPane() override;

    /// As Window::place_keyboard and keyboard_rectangle say. Screen coordinates count from the top
    /// left corner of the screen that shows the main window.
    void put(KeyboardPlace place, const Rectangle& wanted, int closed);
    Rectangle rectangle() const;
    /// What it takes of the client area, in pixels; none of the whole screen.
    int docked_pixels() const;
    bool is_docked() const { return place_ == KeyboardPlace::docked; }
    /// The floating window, or null.
    HWND window() const { return window_; }
    /// Who takes the pointer's messages of the floating window. True: it was one.
    using TakePointer = std::function<bool(HWND, UINT, WPARAM, LPARAM)>;
    void set_pointer(TakePointer pointer) { pointer_ = std::move(pointer); }
    /// The main window appears: the floating one is shown only then.
    void show_window();

    void stretch_bitmap(const BitmapView& picture, const Rectangle& target,
                        const Scaling& how) override;

private:
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wide, LPARAM detail);
    LRESULT handle(HWND window, UINT message, WPARAM wide, LPARAM detail);
    bool create_window();
    void float_at(const Rectangle& wanted);
    void keep_proportion(WPARAM edge, RECT& outer) const;
    Size frame_size() const;
    void restore_proportion();
    void paint();
    void sized();

    Win32Context& own_context_;
    TakePointer pointer_;
    HWND window_ = nullptr;
    KeyboardPlace place_ = KeyboardPlace::hidden;
    int docked_height_ = 0; ///< points
    Size proportion_ = {1, 1};
    Size corrected_; ///< the size that was to become another; empty while the proportion fits
    int closed_ = 0;
};
