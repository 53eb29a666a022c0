#include "platform/web/web_pane.h"

#include "platform/bitmap_reader.h"
#include "platform/web/web_page.h"

#include <algorithm>

namespace {

/// As the bytes of a canvas lie in memory: red first.
uint32_t canvas_pixel(uint32_t colour) {
    return 0xFF000000 | (colour & 0xFF) << 16 | (colour & 0xFF00) | (colour >> 16 & 0xFF);
}

} // namespace

void WebPane::show(bool on) {
    shown_ = on;
    call_page("panes.show", int(id_), on);
}

void WebPane::put(const BitmapView& picture, const Rectangle& pixels, bool smooth) {
    if (picture.width <= 0 || picture.height <= 0 || pixels.width() <= 0 || pixels.height() <= 0)
        return;
    source_.resize(size_t(picture.width) * picture.height);
    const BitmapReader reader(picture);
    for (int y = 0; y < picture.height; ++y) {
        reader.read(y, 0, picture.width, source_.data() + size_t(y) * picture.width);
    }
    const Size to{pixels.width(), pixels.height()};
    scaler_.prepare({picture.width, picture.height}, to, smooth);
    scaler_.begin(source_.data());
    stretched_.resize(size_t(to.width) * to.height);
    for (int y = 0; y < to.height; ++y) {
        uint32_t* const row = stretched_.data() + size_t(y) * to.width;
        scaler_.row(y, row);
        std::transform(row, row + to.width, row, canvas_pixel);
    }
    const auto* const bytes = reinterpret_cast<const uint8_t*>(stretched_.data());
    give_page("panes.put", {bytes, stretched_.size() * sizeof stretched_[0]}, int(id_), pixels.left,
              pixels.top, to.width, to.height);
}

void WebPane::copy_bitmap(const BitmapView& picture, int x, int y) {
    put(picture,
        {context_.pixels(x), context_.pixels(y), context_.pixels(x + picture.width),
         context_.pixels(y + picture.height)},
        false);
}

void WebPane::stretch_bitmap(const BitmapView& picture, const Rectangle& target,
                             const Scaling& how) {
    const Rectangle pixels{context_.pixels(target.left), context_.pixels(target.top),
                           context_.pixels(target.right), context_.pixels(target.bottom)};
    const Rectangle area = stretched_area(pixels, {picture.width, picture.height}, how.whole);
    call_page("panes.blacken", int(id_), area.left, area.top, area.right, area.bottom);
    put(picture, area, how.smooth);
}

void WebPane::fill_rectangle(const Rectangle& area, Colour colour) {
    call_page("panes.fill", int(id_), area.left, area.top, area.width(), area.height(), colour);
}

Size WebPane::cell_size() {
    return {int(call_page("panes.cellWidth", int(id_))),
            int(call_page("panes.cellHeight", int(id_)))};
}

void WebPane::text(int x, int y, const std::string& text, Colour colour, Colour background) {
    call_page("panes.text", int(id_), x, y, text, colour, background);
}

void WebPane::line(int x, int y, int length, Colour colour) {
    fill_rectangle({x, y, x + length, y + 1}, colour);
}

void WebPane::set_reading(const SliderReading& reading) {
    call_page("panes.setReading", int(id_), reading.name, reading.text, reading.value,
              reading.lowest, reading.highest);
}

void WebPane::set_buttons(const std::vector<PaneButton>& buttons) {
    call_page("panes.setButtons", int(id_), Json::array(buttons, [](const PaneButton& button) {
                  const Rectangle& area = button.area;
                  return Json::object({{"name", button.name},
                                       {"left", area.left},
                                       {"top", area.top},
                                       {"width", area.width()},
                                       {"height", area.height()},
                                       {"pressed", button.pressed}});
              }));
}

void WebPane::set_message(const std::string& text, int rows) {
    call_page("panes.setMessage", int(id_), text, rows);
}
