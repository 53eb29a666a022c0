#pragma once
#include "platform/geometry.h"

#include <functional>
#include <span>
#include <string>
#include <vector>

/// A place in the bar that is pressed for a menu (Event::Kind::status_button). What the parts show
/// there stays to be seen.
struct StatusButton {
    Rectangle area;
    std::string name;                 ///< for screen readers
    std::function<std::string()> tip; ///< asked for whenever it is to be shown
};

/// The bar at the bottom of the client area. One part is drawn by the program, on request of a
/// draw_status event; coordinates count from the bar's top left corner.
struct StatusBar {
    virtual ~StatusBar() = default;
    /// Creates the bar with parts that end at `right_edges`; -1 reaches to the window's edge. False
    /// when that fails.
    virtual bool create(std::span<const int> right_edges, int drawn_part) = 0;
    virtual void destroy() = 0;
    virtual bool exists() = 0;
    virtual int height() = 0; ///< 0 without a bar
    /// Text and tool tip of a part, counted from 0; without a bar or part nothing happens.
    virtual void set_text(int part, const std::string& text) = 0;
    virtual void set_tip(int part, const std::string& text) = 0;
    /// Replaces the buttons. The same number of them as before are moved.
    virtual void set_buttons(const std::vector<StatusButton>& buttons) = 0;
    /// Shows a text over all parts, whole even where it is longer than the bar; an empty one ends
    /// that.
    virtual void show_over(const std::string& text) = 0;
    /// Draws in the drawn part.
    virtual void fill_rectangle(const Rectangle& area, Colour colour) = 0;
    virtual Colour background_colour() = 0;
    virtual Colour shadow_colour() = 0;    ///< of raised edges
    virtual Colour highlight_colour() = 0; ///< of raised edges
    /// Lays the bar out at the bottom of the window again and asks for its drawing.
    virtual void redraw() = 0;
};
