#pragma once
#include "platform/geometry.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// The areas that the program draws, from back to front. The picture is always there.
enum class PaneId : uint8_t { picture, monitor, film_bar, overlay, keyboard, debugger };
constexpr size_t PANES = 6;

/// What a screen reader finds in a pane that works like a slider.
struct SliderReading {
    std::string name;
    std::string text; ///< the value, as it is shown
    double value = 0, lowest = 0, highest = 0;
    bool operator==(const SliderReading&) const = default;
};

/// How much a picture looks like that of a picture tube.
enum class TubeLook : uint8_t { off, soft, strong };

/// What a screen reader finds in a pane with things to click: one of them.
struct PaneButton {
    std::string name;
    Rectangle area;
    bool pressed = false;
    bool operator==(const PaneButton&) const = default;
};

/// How a picture is stretched.
struct Scaling {
    bool smooth = false; ///< colours flow into each other; else pixels keep their edges
    /// Only to a whole multiple of the picture in the screen's own pixels, the largest that fits
    /// into the middle of the target.
    bool whole = false;
    TubeLook tube = TubeLook::off; ///< while PictureTube has started, in place of `smooth`
    int lines = 0;                 ///< scan lines of the picture, which the tube shows
    bool operator==(const Scaling&) const = default;
};

/// A drawable area of a window. What is drawn stays until it is drawn over or the area gets
/// another size: the host keeps it, whether the pane is shown or not, and paints it again by
/// itself. Where a pane lies is the host's layout: the picture and the monitor have the same area,
/// the client area above the status bar; the film bar lies over the lowest lines of that area, as
/// high as two rows of text with some room around them; the overlay lies over its top lines, in
/// larger text where the area is large. Black lets some of what is behind the overlay through, and
/// the pointer does not meet it. Keyboard and debugger are where Window puts them.
struct Pane {
    virtual ~Pane() = default;
    virtual Size size() = 0;
    /// Pixels of the screen in one of the pane's, each way.
    virtual double scale() { return 1; }
    /// A pane that is shown covers those behind it.
    virtual void show(bool on) = 0;
    /// Copies the picture 1:1, its top left corner at (x, y).
    virtual void copy_bitmap(const BitmapView& picture, int x, int y) = 0;
    /// Stretches the picture into `target`, with the rest of the pane black.
    virtual void stretch_bitmap(const BitmapView& picture, const Rectangle& target,
                                const Scaling& how) = 0;
    virtual void fill_rectangle(const Rectangle& area, Colour colour) = 0;
    /// A character cell of the host's fixed-pitch font.
    virtual Size cell_size() = 0;
    /// Writes text in UTF-8, one character a cell, the first one's top left corner at (x, y). A tab
    /// leads to the next column that is a multiple of eight.
    virtual void text(int x, int y, const std::string& text, Colour colour, Colour background) = 0;
    /// A line one pixel high, `length` pixels from (x, y) to the right.
    virtual void line(int x, int y, int length, Colour colour) = 0;
    /// Only the film bar tells it.
    virtual void set_reading(const SliderReading& reading) = 0;
    /// Only the keyboard tells them. A screen reader that uses one clicks into its middle.
    virtual void set_buttons(const std::vector<PaneButton>& buttons) = 0;
    /// Of the overlay: a text for screen readers, and how many rows the pane is to have room for.
    /// Of the debugger: the text, of that many rows, that a screen reader finds in it; its size
    /// stays. No other pane tells it.
    virtual void set_message(const std::string& text, int rows) = 0;
};
