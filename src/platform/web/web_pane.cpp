#include "platform/web/web_pane.h"

#include "platform/bitmap_reader.h"
#include "platform/web/web_page.h"
#include "platform/web/web_picture_tube.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

uint32_t canvas_pixel(uint32_t colour) {
    return 0xFF000000 | (colour & 0xFF) << 16 | (colour & 0xFF00) | (colour >> 16 & 0xFF);
}

/// Rows of the stretched picture where these of the picture change: a row is mixed with its
/// neighbours.
TubeRows stretched_rows(TubeRows changed, int rows, int stretched) {
    const auto at = [=](int row) { return int(int64_t(row) * stretched / rows); };
    return {std::max(at(changed.first - 1) - 1, 0), std::min(at(changed.end + 1) + 1, stretched)};
}

} // namespace

void CanvasPixels::read(const BitmapView& picture) {
    size = {picture.width, picture.height};
    pixels.resize(size_t(size.width) * size_t(size.height));
    const BitmapReader reader(picture);
    for (int y = 0; y < size.height; ++y) {
        reader.read(y, 0, size.width, pixels.data() + size_t(y) * size_t(size.width));
    }
    std::transform(pixels.begin(), pixels.end(), pixels.begin(), canvas_pixel);
}

TubeRows CanvasPixels::rows_that_differ(const CanvasPixels& other) const {
    const auto differs = [&](int y) {
        return std::memcmp(row(y), other.row(y), size_t(size.width) * sizeof(uint32_t)) != 0;
    };
    TubeRows rows{0, size.height};
    while (rows.first < rows.end && !differs(rows.first)) ++rows.first;
    while (rows.end > rows.first && !differs(rows.end - 1)) --rows.end;
    return rows;
}

void WebPane::show(bool on) {
    shown_ = on;
    call_page("panes.show", int(id_), on);
}

void WebPane::resized(Size size, Size pixels) {
    size_ = size;
    pixels_ = pixels;
    forget();
}

/// The canvas may end in the middle of one of the page's pixels.
Rectangle WebPane::on_canvas(const Rectangle& area) const {
    const auto place = [this](int at, int end, int end_on_canvas) {
        return at == end ? end_on_canvas : context_.pixels(at);
    };
    return {place(area.left, size_.width, pixels_.width),
            place(area.top, size_.height, pixels_.height),
            place(area.right, size_.width, pixels_.width),
            place(area.bottom, size_.height, pixels_.height)};
}

void WebPane::put(const Rectangle& area, bool smooth, TubeRows changed) {
    const Size to{area.width(), area.height()};
    const TubeRows rows = stretched_rows(changed, picture_.size.height, to.height);
    scaler_.prepare(picture_.size, to, smooth);
    scaler_.begin(picture_.pixels.data());
    rows_.resize(size_t(to.width) * size_t(rows.end - rows.first));
    for (int y = rows.first; y < rows.end; ++y) {
        scaler_.row(y, rows_.data() + size_t(y - rows.first) * size_t(to.width));
    }
    const auto* const bytes = reinterpret_cast<const uint8_t*>(rows_.data());
    give_page("panes.put", {bytes, rows_.size() * sizeof rows_[0]}, int(id_), area.left,
              area.top + rows.first, to.width, rows.end - rows.first);
}

void WebPane::copy_bitmap(const BitmapView& picture, int x, int y) {
    if (picture.width <= 0 || picture.height <= 0) return;
    forget();
    picture_.read(picture);
    put(on_canvas({x, y, x + picture.width, y + picture.height}), false, {0, picture.height});
}

void WebPane::stretch_bitmap(const BitmapView& picture, const Rectangle& target,
                             const Scaling& how) {
    const Size from{picture.width, picture.height};
    const Rectangle area = stretched_area(on_canvas(target), from, how.whole);
    if (from.width <= 0 || from.height <= 0 || area.width() <= 0 || area.height() <= 0) return;
    std::swap(picture_, before_);
    picture_.read(picture);
    const Stretched now{area, how, from};
    const bool same_place = std::exchange(stretched_, now) == now;
    const TubeRows changed =
        same_place ? picture_.rows_that_differ(before_) : TubeRows{0, from.height};
    if (changed.first == changed.end) return;
    if (how.tube != TubeLook::off && web_picture_tube().draw(picture_, changed, area, how)) return;
    if (!same_place) {
        if (id_ == PaneId::picture) web_picture_tube().cover();
        call_page("panes.blacken", int(id_), area.left, area.top, area.right, area.bottom);
    }
    put(area, how.smooth, changed);
}

void WebPane::fill_rectangle(const Rectangle& area, Colour colour) {
    forget();
    call_page("panes.fill", int(id_), area.left, area.top, area.right, area.bottom, colour);
}

Size WebPane::cell_size() {
    return {int(call_page("panes.cellWidth", int(id_))),
            int(call_page("panes.cellHeight", int(id_)))};
}

void WebPane::text(int x, int y, const std::string& text, Colour colour, Colour background) {
    forget();
    call_page("panes.text", int(id_), x, y, text, colour, background);
}

void WebPane::line(int x, int y, int length, Colour colour) {
    fill_rectangle({x, y, x + length, y + 1}, colour);
}

void WebPane::set_reading(const SliderReading& reading) {
    if (reading_ == reading) return;
    reading_ = reading;
    call_page("panes.setReading", int(id_), reading.name, reading.text, reading.value,
              reading.lowest, reading.highest);
}

void WebPane::set_buttons(const std::vector<PaneButton>& buttons) {
    if (buttons_ == buttons) return;
    buttons_ = buttons;
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
