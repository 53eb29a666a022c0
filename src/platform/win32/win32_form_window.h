#pragma once
/// The window of a form: a dialog of Windows', which gives it the keys that dialogs have.

#include "platform/win32/win32_context.h"

#include <functional>
#include <string>

class Win32FormWindow {
public:
    /// Not shown yet. A client area of no size.
    Win32FormWindow(Win32Context& context, const std::string& title, bool sizable);
    Win32FormWindow(const Win32FormWindow&) = delete;
    Win32FormWindow& operator=(const Win32FormWindow&) = delete;
    ~Win32FormWindow();

    HWND window() const { return window_; }
    /// Every message; true when it has been handled, with `result`.
    std::function<bool(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result)> on_message;

    /// Shows it and obeys the user until `end` is called. The rest of the program has no input
    /// meanwhile.
    /// `shown` is called as soon as it is there.
    void run(const std::function<void()>& shown);
    void show(); ///< beside the main window
    void end();  ///< hides it
    bool is_open() const { return is_open_; }

    /// What its screen leaves, without its frame: all that the inside can have.
    SIZE room() const;
    void set_client_size(int width, int height);
    /// At that place of its frame, or above the middle of its owner; always within its screen.
    void move(int left, int top);
    void move_to_owner();

private:
    static INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
    RECT work_area() const;

    Win32Context& context_;
    HWND window_ = nullptr;
    bool is_open_ = false;
    bool runs_ = false;
};
