#pragma once
/// The areas of the page that the program draws, each a canvas of the screen's own pixels. The
/// canvas keeps what was drawn.

#include "platform/pane.h"
#include "platform/picture_scaler.h"
#include "platform/web/web_context.h"

#include <cstdint>
#include <vector>

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

    /// The page has given the pane another size, and its canvas is empty.
    void resized(Size size) { size_ = size; }
    bool is_shown() const { return shown_; }
    PaneId id() const { return id_; }

private:
    /// Stretches into pixels of the screen and hands them to the canvas.
    void put(const BitmapView& picture, const Rectangle& pixels, bool smooth);

    WebContext& context_;
    const PaneId id_;
    Size size_;
    bool shown_ = false;
    PictureScaler scaler_;
    std::vector<uint32_t> source_, row_, stretched_;
};
