#pragma once
/// Where the controls of a form stand: a tree of arrangements, which get their sizes from those of
/// the controls in them. Sizes are in pixels.

#include "platform/win32/win32_form_control.h"

#include <vector>

/// A part of a form whose controls scroll where it is too low for them. Messages of its controls go
/// on to the form.
class Win32Panel {
public:
    explicit Win32Panel(HWND parent);
    Win32Panel(const Win32Panel&) = delete;
    Win32Panel& operator=(const Win32Panel&) = delete;
    ~Win32Panel();

    HWND window() const { return window_; }
    int offset() const { return offset_; } ///< of the contents, up
    void move(const RECT& place, int contents_height);
    void scroll_to(int offset);
    /// Scrolls so far that the window, which is in the panel, is seen.
    void bring_into_sight(HWND window);

private:
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
    void scroll(WORD act);
    HWND window_;
    int offset_ = 0;
    int height_ = 0;
    int contents_ = 0;
};

struct FormNode {
    ControlKind kind = ControlKind::column;
    Win32Control* control = nullptr; ///< of no arrangement, or the frame of a group
    Win32Panel* panel = nullptr;     ///< of a part that scrolls
    int limit = 0;                   ///< height of such a part at most; 0 = as it wants
    std::vector<FormNode> children = {};
};

class Win32FormLayout {
public:
    /// Rows of buttons become no wider than the room.
    Win32FormLayout(const Win32FormScale& scale, int room) : scale_(scale), room_(room) {}

    int wanted_width(const FormNode& node) const;
    int wanted_height(const FormNode& node, int width) const;
    void place(const FormNode& node, const RECT& area) const;

    int margin() const { return scale_.pixels(11); } ///< of a form
    int spacing() const { return scale_.pixels(7); }

private:
    struct Buttons {
        std::vector<std::vector<const FormNode*>> rows;
        int width = 0;
    };
    Buttons button_rows(const FormNode& node, int width) const;
    std::vector<int> grid_columns(const FormNode& node) const;
    std::vector<int> widths(const FormNode& node, int width) const;
    int row_height(const FormNode& node, const std::vector<int>& widths) const;
    int column_height(const FormNode& node, int width) const;
    RECT group_inside(const RECT& frame) const;
    void place_column(const FormNode& node, const RECT& area) const;
    void place_row(const FormNode& node, const RECT& area, const std::vector<int>& widths) const;
    void place_control(const FormNode& node, const RECT& area) const;
    void place_buttons(const FormNode& node, const RECT& area) const;

    const Win32FormScale& scale_;
    int room_;
};
