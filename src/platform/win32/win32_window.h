#pragma once
/// The main window. What Windows tells it becomes a message in the queue, or goes to the sink at
/// once; nothing here runs the machine.

#include "platform/win32/win32_context.h"
#include "platform/win32/win32_keyboard.h"
#include "platform/win32/win32_menu.h"
#include "platform/win32/win32_panes.h"
#include "platform/win32/win32_status_bar.h"
#include "platform/window.h"

#include <optional>
#include <string>

#include <shellapi.h>

class Win32Window final : public Window {
public:
    Win32Window(Win32Context& context, Win32Panes& panes, Win32StatusBar& status_bar,
                Win32Keyboard& keyboard);
    Win32Window(const Win32Window&) = delete;
    Win32Window& operator=(const Win32Window&) = delete;
    ~Win32Window() override;

    bool create(const std::string& title) override;
    void show() override;
    void destroy() override;
    void set_title(const std::string& title) override;
    std::string title() override { return title_; }
    Size outer_size(Size client) override;
    Rectangle outer_rectangle() override;
    Size client_size() override;
    Rectangle client_on_screen() override;
    Size screen_size() override;
    Rectangle available_area() override;
    double pixel_ratio() override { return context_.ratio; }
    void move(const Rectangle& outer) override;
    void set_fixed_size(Size outer) override;
    void set_least_size(Size outer) override;
    void set_maximized(bool on) override;
    bool maximized() override;
    void invalidate() override;
    void set_full_screen(bool on) override;
    void show_cursor(bool on) override;
    void set_menu(const std::vector<MenuEntry>& menus) override;
    void check_item(int id, bool checked) override { menu_.check(id, checked); }
    void set_item_text(int id, const std::string& text) override { menu_.set_text(id, text); }
    void set_item_state(int id, ItemState state) override { menu_.set_state(id, state); }
    void popup_menu(const std::vector<MenuEntry>& entries, int x, int y) override;
    void claim_keys(std::span<const KeyChord> chords) override { keyboard_.claim(chords); }
    void place_keyboard(KeyboardPlace place, const Rectangle& wanted, int closed) override;
    Rectangle keyboard_rectangle() override { return panes_.keyboard_rectangle(); }
    void place_debugger(bool open, const Rectangle& wanted, int closed) override {
        panes_.debugger().put(open, wanted, closed);
    }
    Rectangle debugger_rectangle() override { return panes_.debugger().rectangle(); }
    bool has_debugger() override { return true; }
    void set_readable(const std::string& name, std::function<ReadableText()> text) override;

private:
    static constexpr UINT SHOW_POPUP = WM_APP + 1; ///< to the window itself

    /// What menu and frame add to a client area, in pixels and in whole points: an outer size is
    /// the client area's with these, so that it leads back to the same client area at any scale.
    struct Frame {
        Size pixels;
        Size points;
    };

    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
    /// Nothing for a message that is left to Windows.
    std::optional<LRESULT> handle(UINT message, WPARAM wparam, LPARAM lparam);
    bool handle_debugger(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
    std::optional<LRESULT> handle_menu(UINT message, WPARAM wparam, LPARAM lparam);
    std::optional<LRESULT> handle_place(UINT message, WPARAM wparam, LPARAM lparam);
    std::optional<LRESULT> handle_program(UINT message, WPARAM wparam);
    bool register_class() const;
    DWORD style() const;
    void apply_style();
    Frame frame(Size client_pixels);
    Size client_of(Size outer);
    Size outer_pixels(Size outer);
    Size client_pixels();
    RECT window_pixels() const;
    void place(const RECT& desktop_pixels);
    void lay_out();
    void limit(MINMAXINFO& limits);
    void scale_changed(WORD dots_per_inch, const RECT& suggested);
    void enter_full_screen();
    void leave_full_screen();
    void paint();
    void drop(HDROP files);
    void highlight(WPARAM wparam, LPARAM lparam) const;
    void loop(bool begins);
    void activated(bool active);
    void layout_changed();

    Win32Context& context_;
    Win32Panes& panes_;
    Win32StatusBar& status_bar_;
    Win32Keyboard& keyboard_;
    Win32Menu menu_;
    std::string title_;
    Size fixed_;            ///< client area; zero: the user may size the window
    Size least_;            ///< client area
    bool maximize_ = false; ///< when the window is shown
    bool shown_ = false;
    bool cursor_ = true;
    bool full_screen_ = false;
    WINDOWPLACEMENT windowed_{}; ///< while full screen
    ULONGLONG active_since_ = 0; ///< ms; 0 while another program is active
};
