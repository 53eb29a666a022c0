#include "platform/win32/win32_pane.h"

#include "platform/bitmap_reader.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <utility>

namespace {

constexpr int TAB_COLUMNS = 8;
/// Of a font that can be drawn in any size, in points: large enough to be read at all scales.
constexpr int USUAL_ROW = 16;

/// A row of pixels as bytes, compared.
bool same_row(const uint32_t* one, const uint32_t* other, int width) {
    return std::memcmp(one, other, size_t(width) * sizeof(uint32_t)) == 0;
}

} // namespace

// ---- the font ----------------------------------------------------------------------------------

void Win32CellFont::release() {
    if (font_) DeleteObject(font_); // does nothing to one of the stock
    font_ = nullptr;
}

void Win32CellFont::choose(double ratio, int least) {
    if (ratio == ratio_ && least == least_) return;
    release();
    ratio_ = ratio;
    least_ = least;
    font_ = static_cast<HFONT>(GetStockObject(OEM_FIXED_FONT));
    measure(1);
    if (ratio == 1 && cell_.height >= least) return;
    const int height = int(std::lround(std::max(least, USUAL_ROW) * ratio));
    font_ =
        CreateFontW(height, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_TT_PRECIS,
                    CLIP_DEFAULT_PRECIS, ANTIALIASED_QUALITY, FIXED_PITCH | FF_MODERN, L"Consolas");
    measure(ratio);
}

void Win32CellFont::measure(double ratio) {
    const HDC dc = CreateCompatibleDC(nullptr);
    const HGDIOBJ before = SelectObject(dc, font_);
    TEXTMETRICW metrics = {};
    GetTextMetricsW(dc, &metrics);
    SelectObject(dc, before);
    DeleteDC(dc);
    // Characters that a scalable font has beside those of the machine may be wider than all others.
    const LONG width =
        metrics.tmPitchAndFamily & TMPF_VECTOR ? metrics.tmAveCharWidth : metrics.tmMaxCharWidth;
    const auto points = [ratio](LONG pixels) {
        return std::max(int(std::ceil(double(pixels) / ratio)), 1);
    };
    cell_ = {points(width), points(metrics.tmHeight)};
}

// ---- places ------------------------------------------------------------------------------------

Rectangle Win32Pane::in_pixels(const Rectangle& points) const {
    // The last point reaches to the edge, wherever rounding has put that.
    return {pixels(points.left), pixels(points.top),
            points.right == points_.width ? area_.width() : pixels(points.right),
            points.bottom == points_.height ? area_.height() : pixels(points.bottom)};
}

bool Win32Pane::place(const Rectangle& area, Size points) {
    const Size before = {area_.width(), area_.height()};
    area_ = area;
    points_ = points;
    return before != Size{area.width(), area.height()};
}

void Win32Pane::show(bool on) {
    if (std::exchange(shown_, on) != on) announce({0, 0, area_.width(), area_.height()});
}

void Win32Pane::announce(const Rectangle& pixels) {
    if (changed_ && !is_empty(pixels)) changed_(pixels);
}

const Win32CellFont& Win32Pane::font() {
    font_.choose(ratio(), 0);
    return font_;
}

// ---- pictures ----------------------------------------------------------------------------------

Win32Canvas& Win32Pane::drawing() {
    if (drawing_.resize({area_.width(), area_.height()})) {
        // What was stretched for another size will come again.
        stretch_.active = false;
        stretch_.first = stretch_.end = 0;
    }
    stretch_rows();
    return drawing_;
}

/// Returns what looks different.
Rectangle Win32Pane::take_picture(const BitmapView& picture, const Rectangle& area, bool smooth,
                                  bool black_around) {
    if (picture.width <= 0 || picture.height <= 0 || !picture.pixels || is_empty(area)) return {};
    const Rectangle all = {0, 0, area_.width(), area_.height()};
    if (drawing_.resize({area_.width(), area_.height()})) stretch_.active = false;
    const Size size = {picture.width, picture.height};
    std::swap(stretch_.pixels, stretch_.before);
    stretch_.pixels.resize(size_t(size.width) * size_t(size.height));
    const BitmapReader reader(picture);
    const auto row_of = [&size](std::vector<uint32_t>& pixels, int y) {
        return pixels.data() + ptrdiff_t{y} * size.width;
    };
    for (int y = 0; y < size.height; ++y) reader.read(y, 0, size.width, row_of(stretch_.pixels, y));

    const bool same_place = stretch_.active && stretch_.size == size && stretch_.area == area &&
                            stretch_.smooth == smooth && stretch_.black_around == black_around;
    stretch_.active = true;
    if (!same_place) {
        stretch_.size = size;
        stretch_.area = area;
        stretch_.smooth = smooth;
        stretch_.black_around = black_around;
        const Rectangle inside = drawing_.clipped(area);
        stretch_.first = inside.top;
        stretch_.end = std::max(inside.top, inside.bottom);
        if (!black_around) return inside;
        for (const Rectangle& border : {Rectangle{0, 0, all.right, area.top},
                                        Rectangle{0, area.bottom, all.right, all.bottom},
                                        Rectangle{0, area.top, area.left, area.bottom},
                                        Rectangle{area.right, area.top, all.right, area.bottom}}) {
            drawing_.fill(border, 0);
        }
        return all;
    }
    const auto differs = [&](int y) {
        return !same_row(row_of(stretch_.pixels, y), row_of(stretch_.before, y), size.width);
    };
    int first = 0;
    int end = size.height;
    while (first < end && !differs(first)) ++first;
    while (end > first && !differs(end - 1)) --end;
    if (first == end) return {};
    // A row is mixed with its neighbours.
    const double row = double(area.height()) / size.height;
    const Rectangle rows =
        drawing_.clipped({area.left, area.top + int(std::floor((first - 1) * row)), area.right,
                          area.top + int(std::ceil((end + 1) * row))});
    const Rectangle dirty = intersection(rows, area);
    if (is_empty(dirty)) return {};
    const bool waits = stretch_.first < stretch_.end;
    stretch_.first = waits ? std::min(stretch_.first, dirty.top) : dirty.top;
    stretch_.end = waits ? std::max(stretch_.end, dirty.bottom) : dirty.bottom;
    return dirty;
}

void Win32Pane::stretch_rows() {
    if (stretch_.first >= stretch_.end) return;
    const Rectangle& area = stretch_.area;
    const Rectangle inside = drawing_.clipped(area);
    const int end = std::exchange(stretch_.end, 0);
    if (is_empty(inside)) return;
    drawing_.flush();
    scaler_.prepare(stretch_.size, {area.width(), area.height()}, stretch_.smooth);
    scaler_.begin(stretch_.pixels.data());
    const bool is_whole = inside.left == area.left && inside.right == area.right;
    row_.resize(is_whole ? 0 : size_t(area.width()));
    for (int y = stretch_.first; y < end; ++y) {
        uint32_t* const to = drawing_.row(y) + inside.left;
        if (is_whole) {
            scaler_.row(y - area.top, to);
        } else {
            scaler_.row(y - area.top, row_.data());
            std::copy_n(row_.data() + (inside.left - area.left), inside.width(), to);
        }
    }
    stretch_.first = 0;
}

Rectangle Win32Pane::keep_stretched(const BitmapView& picture, const Rectangle& target,
                                    const Scaling& how) {
    const Rectangle area = stretched_area(target, {picture.width, picture.height}, how.whole);
    return take_picture(picture, area, how.smooth, true);
}

void Win32Pane::stretch_bitmap(const BitmapView& picture, const Rectangle& target,
                               const Scaling& how) {
    announce(keep_stretched(picture, in_pixels(target), how));
}

/// On a screen with more pixels than points, every pixel of the picture becomes some.
void Win32Pane::copy_bitmap(const BitmapView& picture, int x, int y) {
    const Rectangle area = in_pixels({x, y, x + picture.width, y + picture.height});
    announce(take_picture(picture, area, false, false));
}

// ---- drawing -----------------------------------------------------------------------------------

/// What follows lies over the picture that was stretched before.
void Win32Pane::begin_drawing() {
    drawing();
    stretch_.active = false;
}

void Win32Pane::clear() {
    begin_drawing();
    const Rectangle all = {0, 0, area_.width(), area_.height()};
    drawing_.fill(all, 0);
    announce(all);
}

void Win32Pane::fill_rectangle(const Rectangle& area, Colour colour) {
    begin_drawing();
    const Rectangle pixels = in_pixels(area);
    drawing_.fill(pixels, colour);
    announce(pixels);
}

void Win32Pane::line(int x, int y, int length, Colour colour) {
    fill_rectangle({x, y, x + length, y + 1}, colour);
}

void Win32Pane::text(int x, int y, const std::string& text, Colour colour, Colour background) {
    begin_drawing();
    if (!drawing_.dc()) return;
    const Size cell = font().cell();
    const auto column_left = [&](int column) { return pixels(x + column * cell.width); };
    std::wstring characters;
    std::vector<int> widths;
    int column = 0;
    for (const wchar_t c : wide(text)) {
        // A tab is as many blanks as it leads over.
        const int count = c == L'\t' ? TAB_COLUMNS - column % TAB_COLUMNS : 1;
        for (int n = 0; n < count; ++n, ++column) {
            characters += c == L'\t' ? L' ' : c;
            widths.push_back(column_left(column + 1) - column_left(column));
        }
    }
    const Rectangle area = in_pixels({x, y, x + column * cell.width, y + cell.height});
    drawing_.fill(area, background);
    const HDC dc = drawing_.dc();
    const HGDIOBJ before = SelectObject(dc, font().font());
    SetTextColor(dc, to_windows(colour));
    SetBkMode(dc, TRANSPARENT);
    const RECT clip = to_windows(area);
    ExtTextOutW(dc, area.left, area.top, ETO_CLIPPED, &clip, characters.c_str(),
                UINT(characters.size()), widths.data());
    SelectObject(dc, before);
    announce(area);
}
