#pragma once
/// The areas of the page that the program draws, each a canvas of the screen's own pixels. The
/// canvas keeps what was drawn.

#include "platform/pane.h"
#include "platform/picture_scaler.h"
#include "platform/tube_shader.h"
#include "platform/web/web_context.h"

#include <cstdint>
#include <optional>
#include <vector>

/// The pixels of a canvas as they lie in memory, red first.
struct CanvasPixels {
    Size size;
    std::vector<uint32_t> pixels;

    void read(const BitmapView& picture);
    const uint32_t* row(int y) const { return pixels.data() + size_t(y) * size.width; }
    /// What differs from another picture of the same size.
    TubeRows rows_that_differ(const CanvasPixels& other) const;
};

class WebPane final : public Pane {
public:
    WebPane(WebContext& context, PaneId id) : context_(context), id_(id) {}

    Size size() override { return size_; }
    double scale() override { return context_.ratio; }
    void show(bool on) override;
    void copy_bitmap(const BitmapView& picture, int x, int y) override;
    void stretch_bitmap(const BitmapView& picture, const Rectangle& target,
                        const Scaling& how) override;
    void fill_rectangle(const Rectangle& area, Colour colour) override;
    Size cell_size() override;
    void text(int x, int y, const std::string& text, Colour colour, Colour background) override;
    void line(int x, int y, int length, Colour colour) override;
    void set_reading(const SliderReading& reading) override;
    void set_buttons(const std::vector<PaneButton>& buttons) override;
    void set_message(const std::string& text, int rows) override;

    /// The page has given the pane another size, and its canvas, of so many pixels, is empty.
    void resized(Size size, Size pixels);
    /// What the canvas shows is to be drawn again in any case.
    void forget() { stretched_.reset(); }
    /// The picture is always there, and the keyboard where Window puts it.
    bool is_shown() const { return shown_ || id_ == PaneId::picture || id_ == PaneId::keyboard; }

private:
    /// What is stretched, besides its pixels.
    struct Stretched {
        Rectangle area; ///< in pixels of the canvas
        Scaling how;
        Size from;
        bool operator==(const Stretched&) const = default;
    };

    Rectangle on_canvas(const Rectangle& area) const;
    /// Hands these rows of `picture_`, stretched, to the canvas.
    void put(const Rectangle& area, bool smooth, TubeRows changed);

    WebContext& context_;
    const PaneId id_;
    Size size_, pixels_;
    bool shown_ = false;
    PictureScaler scaler_;
    std::optional<Stretched> stretched_; ///< nothing: something else was drawn since
    CanvasPixels picture_, before_;
    std::vector<uint32_t> rows_; ///< kept, so that its memory is used again
    SliderReading reading_;
    std::vector<PaneButton> buttons_;
};
