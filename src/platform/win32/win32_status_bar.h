#pragma once
#include "platform/status_bar.h"
#include "platform/win32/win32_context.h"

#include <string>
#include <vector>

/// The common control of that name, child 1 of the main window.
class Win32StatusBar final : public StatusBar {
public:
    static constexpr int ID = 1;

    explicit Win32StatusBar(Win32Context& context) : context_(context) {}
    ~Win32StatusBar() override;

    /// Takes a message of the main window that is the bar's. False for any other.
    bool handle(UINT message, WPARAM wide, LPARAM detail, LRESULT& result);
    /// Follows the main window's size, the scale of its screen and the system's font.
    void lay_out();
    int pixels() const; ///< its height; 0 without a bar

    bool create(std::span<const int> right_edges, int drawn_part) override;
    void destroy() override;
    bool exists() override { return bar_ != nullptr; }
    int height() override { return context_.points(pixels()); }
    void set_text(int part, const std::string& text) override;
    void set_tip(int part, const std::string& text) override;
    void set_buttons(const std::vector<StatusButton>& buttons) override;
    void show_over(const std::string& text) override;
    void fill_rectangle(const Rectangle& area, Colour colour) override;
    Colour background_colour() override;
    Colour shadow_colour() override;
    Colour highlight_colour() override;
    void redraw() override;

private:
    static LRESULT CALLBACK bar_procedure(HWND bar, UINT message, WPARAM wide, LPARAM detail,
                                          UINT_PTR id, DWORD_PTR self);
    LRESULT handle_bar(HWND bar, UINT message, WPARAM wide, LPARAM detail);
    bool has(int part) const { return part >= 0 && size_t(part) < edges_.size(); }
    LRESULT send(UINT message, WPARAM wide, LPARAM detail = 0) const {
        return SendMessageW(bar_, message, wide, detail);
    }
    RECT in_pixels(const Rectangle& points) const;
    int button_at(POINT pixel) const;
    void tell_parent();
    void set_parts();
    void set_font();
    void place_tools();
    void give_tip(LPARAM detail);
    void show_whole(const std::wstring& text);
    void pointer_moved(POINT pixel);
    void set_look(int hot, int pressed);
    void draw_button() const;
    void press(int button);

    Win32Context& context_;
    HWND bar_ = nullptr, tips_ = nullptr;
    HFONT font_ = nullptr;
    int dpi_ = 0;            ///< that the font is for
    std::vector<int> edges_; ///< points
    int drawn_part_ = -1;
    HDC drawn_part_dc_ = nullptr; ///< while Windows asks for its drawing
    std::vector<std::wstring> tip_texts_;
    std::vector<StatusButton> buttons_;
    size_t tools_ = 0;            ///< of the tips: buttons, then parts
    int hot_ = -1, pressed_ = -1; ///< buttons
    std::wstring over_, shown_tip_;
};
