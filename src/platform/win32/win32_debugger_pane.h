#pragma once
#include "platform/win32/win32_pane.h"

/// The debugger's pane, which is all of a window of its own. It belongs to no other window: either
/// can cover the other, be an icon alone, and be on a screen of another scale.
class Win32DebuggerPane final : public Win32Pane {
public:
    explicit Win32DebuggerPane(Win32Context& context);
    ~Win32DebuggerPane() override;

    /// As Window::place_debugger and debugger_rectangle say. Screen coordinates count from the top
    /// left corner of the screen that shows the main window.
    void put(bool open, const Rectangle& wanted, int closed);
    Rectangle rectangle() const;
    /// The main window appears: this one is shown only then.
    void show_window();
    HWND window() const { return own_context_.debugger; }
    /// Who takes keys and pointer of the window. True: Windows is to do nothing more.
    using TakeInput = std::function<bool(HWND, UINT, WPARAM, LPARAM)>;
    void set_input(TakeInput input) { input_ = std::move(input); }

    void set_message(const std::string& text, int rows) override;

private:
    double ratio() const override { return ratio_; }
    const Win32CellFont& font() override;
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wide, LPARAM detail);
    LRESULT handle(HWND window, UINT message, WPARAM wide, LPARAM detail);
    bool create_window();
    void place_window(const Rectangle& wanted);
    void scale_changed();
    void sized();
    void paint();

    Win32Context& own_context_;
    TakeInput input_;
    double ratio_ = 1; ///< of the screen that shows it
    Win32CellFont own_font_;
    bool open_ = false;
    int closed_ = 0;
    RECT normal_{}; ///< the pane on the desktop, while it was neither an icon nor maximized
    std::string message_;
};
