#pragma once
#include "platform/pane.h"
#include "platform/picture_scaler.h"
#include "platform/win32/win32_canvas.h"
#include "platform/win32/win32_context.h"

#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

/// The host's font of fixed pitch: the stock one of the OEM character set, or where that is too
/// small, as on a screen of another scale, one that can be drawn in any size.
class Win32CellFont {
public:
    Win32CellFont() = default;
    ~Win32CellFont() { release(); }
    Win32CellFont(const Win32CellFont&) = delete;
    Win32CellFont& operator=(const Win32CellFont&) = delete;

    /// For a screen of that many pixels in a point. Its rows are no lower than `least` points.
    void choose(double ratio, int least);
    HFONT font() const { return font_; }
    Size cell() const { return cell_; } ///< points

private:
    void release();
    void measure(double ratio);

    HFONT font_ = nullptr;
    double ratio_ = 0; ///< 0: nothing was chosen yet
    int least_ = 0;
    Size cell_ = {1, 1};
};

/// Keeps what is drawn, in pixels of the screen. A picture that is stretched over it is kept as it
/// came, too: only the rows that differ from those before are stretched, and not before they are to
/// be seen.
class Win32Pane : public Pane {
public:
    explicit Win32Pane(const Win32Context& context) : context_(context) {}

    /// Who hears that a part of the pane looks different, in pixels from its top left corner.
    void set_changed(std::function<void(const Rectangle&)> changed) {
        changed_ = std::move(changed);
    }
    /// Where it is in its window, in pixels, and its size in points: what these were rounded from
    /// is known to the caller. A pane of another size starts black. True when it has become
    /// another.
    bool place(const Rectangle& area, Size points);
    const Rectangle& area() const { return area_; }
    bool is_shown() const { return shown_; }
    bool is_drawn_at(Size pixels) const { return drawing_.size() == pixels; }
    /// What it shows.
    Win32Canvas& drawing();
    /// As stretch_bitmap with a target in pixels, but nobody hears of it. Returns what looks
    /// different.
    Rectangle keep_stretched(const BitmapView& picture, const Rectangle& target,
                             const Scaling& how);
    /// What was kept is to be seen.
    void announce(const Rectangle& pixels);
    /// Black again.
    void clear();

    Size size() override { return points_; }
    double scale() override { return ratio(); }
    void show(bool on) override;
    void copy_bitmap(const BitmapView& picture, int x, int y) override;
    void stretch_bitmap(const BitmapView& picture, const Rectangle& target,
                        const Scaling& how) override;
    void fill_rectangle(const Rectangle& area, Colour colour) override;
    Size cell_size() override { return font().cell(); }
    void text(int x, int y, const std::string& text, Colour colour, Colour background) override;
    void line(int x, int y, int length, Colour colour) override;
    void set_reading(const SliderReading&) override {}
    void set_buttons(const std::vector<PaneButton>&) override {}
    void set_message(const std::string&, int) override {}

protected:
    /// Pixels in a point.
    virtual double ratio() const { return context_.ratio; }
    int pixels(int points) const { return int(std::lround(points * ratio())); }
    int points(LONG pixels) const { return int(std::lround(double(pixels) / ratio())); }
    Rectangle in_pixels(const Rectangle& points) const;
    virtual const Win32CellFont& font();

    const Win32Context& context_;

private:
    /// A picture on its way to the screen.
    struct Stretch {
        bool active = false;       ///< nothing else was drawn since
        bool black_around = false; ///< with the rest of the pane black
        std::vector<uint32_t> pixels, before;
        Size size;
        Rectangle area; ///< in pixels of the pane
        bool smooth = false;
        int first = 0, end = 0; ///< rows of the pane that are still to be drawn
    };

    Rectangle take_picture(const BitmapView& picture, const Rectangle& area, bool smooth,
                           bool black_around);
    void stretch_rows();
    void begin_drawing();

    std::function<void(const Rectangle&)> changed_;
    Rectangle area_;
    Size points_;
    bool shown_ = false;
    Win32Canvas drawing_;
    Win32CellFont font_;
    Stretch stretch_;
    PictureScaler scaler_;
    std::vector<uint32_t> row_; ///< one that reaches beyond the pane
};
