#include "platform/headless/headless_window.h"

#include <algorithm>

namespace {

constexpr size_t FILLS_KEPT = 1000;

MenuEntry* find_item(std::vector<MenuEntry>& entries, int id) {
    if (id == 0) return nullptr;
    for (MenuEntry& entry : entries) {
        if (entry.id == id) return &entry;
        if (MenuEntry* found = find_item(entry.children, id)) return found;
    }
    return nullptr;
}

const MenuEntry* find_item(const std::vector<MenuEntry>& entries, int id) {
    return find_item(const_cast<std::vector<MenuEntry>&>(entries), id);
}

Rectangle at_size(const Rectangle& where, Size size) {
    return {where.left, where.top, where.left + size.width, where.top + size.height};
}

Colour palette_colour(const BitmapView& picture, unsigned index) {
    const uint8_t* entry = picture.palette + size_t{index} * 4;
    return uint32_t{entry[2]} << 16 | uint32_t{entry[1]} << 8 | entry[0];
}

Colour colour_at(const BitmapView& picture, int x, int y) {
    const size_t row_bytes = size_t(picture.width) * picture.bits / 8;
    const uint8_t* row = picture.pixels + y * row_bytes;
    if (picture.bits == 1) return palette_colour(picture, row[x / 8] >> (7 - x % 8) & 1);
    if (picture.bits == 8) return palette_colour(picture, row[x]);
    const uint8_t* pixel = row + size_t(x) * 4;
    return uint32_t{pixel[2]} << 16 | uint32_t{pixel[1]} << 8 | pixel[0];
}

} // namespace

bool HeadlessWindow::create(const std::string& title) {
    if (creation_fails) return false;
    exists = true;
    caption = title;
    return true;
}

void HeadlessWindow::destroy() {
    exists = shown = false;
    destroyed = true;
}

Size HeadlessWindow::outer_size(Size client) {
    if (full_screen) return {client.width, client.height + HEADLESS_MENU};
    return {client.width + 2 * HEADLESS_FRAME,
            client.height + 2 * HEADLESS_FRAME + HEADLESS_CAPTION + HEADLESS_MENU};
}

Size HeadlessWindow::client_size() {
    const Rectangle client = client_on_screen();
    return {client.width(), client.height()};
}

Rectangle HeadlessWindow::client_on_screen() {
    if (full_screen) return outer;
    Rectangle client{outer.left + HEADLESS_FRAME,
                     outer.top + HEADLESS_FRAME + HEADLESS_CAPTION + HEADLESS_MENU,
                     outer.right - HEADLESS_FRAME, outer.bottom - HEADLESS_FRAME};
    client.right = std::max(client.right, client.left);
    client.bottom = std::max(client.bottom, client.top);
    return client;
}

void HeadlessWindow::move(const Rectangle& rectangle) {
    const bool limited = fixed != Size{} && !full_screen;
    outer = limited ? at_size(rectangle, fixed) : rectangle;
}

void HeadlessWindow::set_fixed_size(Size size) {
    fixed = size;
    move(outer);
}

void HeadlessWindow::set_maximized(bool on) {
    if (std::exchange(is_maximized, on) == on) return;
    if (on) normal = outer;
    outer = on ? available_area() : normal;
}

void HeadlessWindow::set_full_screen(bool on) {
    if (on == full_screen) return;
    full_screen = on;
    if (on) {
        windowed = outer;
        outer = {0, 0, screen.width, screen.height};
    } else {
        outer = windowed;
    }
}

void HeadlessWindow::check_item(int id, bool checked) {
    if (MenuEntry* item = find_item(menu, id)) item->checked = checked;
}

void HeadlessWindow::set_item_text(int id, const std::string& text) {
    if (MenuEntry* item = find_item(menu, id)) item->text = text;
}

void HeadlessWindow::set_item_state(int id, ItemState state) {
    if (MenuEntry* item = find_item(menu, id)) item->state = state;
}

bool HeadlessWindow::checked(int id) const {
    const MenuEntry* item = find_item(menu, id);
    return item && item->checked;
}

std::string HeadlessWindow::item_text(int id) const {
    const MenuEntry* item = find_item(menu, id);
    return item ? item->text : std::string();
}

ItemState HeadlessWindow::item_state(int id) const {
    const MenuEntry* item = find_item(menu, id);
    return item ? item->state : ItemState::hidden;
}

void HeadlessWindow::place_keyboard(KeyboardPlace place, const Rectangle& wanted, int closed) {
    keyboard_place = place;
    keyboard = wanted;
    keyboard_closed = closed;
}

Rectangle HeadlessWindow::keyboard_rectangle() {
    return keyboard_place == KeyboardPlace::floating ? keyboard : Rectangle{};
}

Size HeadlessPane::size() {
    const Size client = window_.client_size();
    const bool docked = window_.keyboard_place == KeyboardPlace::docked && !window_.full_screen;
    const int keyboard = docked ? window_.keyboard.height() : 0;
    switch (id_) {
    case PaneId::film_bar: return {client.width, HEADLESS_FILM_BAR};
    case PaneId::overlay: return {client.width, message_height_};
    case PaneId::keyboard: return {window_.keyboard.width(), window_.keyboard.height()};
    default: break;
    }
    return {client.width, std::max(client.height - status_bar_.height() - keyboard, 0)};
}

void HeadlessPane::copy_bitmap(const BitmapView& picture, int x, int y) {
    ++copies;
    last_copy = {{picture.width, picture.height}, picture.bits, x, y};
    forget({x, y, x + picture.width, y + picture.height});
    if (!keep_pictures_) return;
    fit_to_window();
    for (int row = 0; row < picture.height; ++row) {
        for (int column = 0; column < picture.width; ++column) {
            set_pixel(x + column, y + row, colour_at(picture, column, row));
        }
    }
}

/// Each pixel becomes that of the picture below its middle, however the rest is to be scaled.
void HeadlessPane::stretch_bitmap(const BitmapView& picture, const Rectangle& target,
                                  const Scaling& how) {
    ++stretches;
    last_stretch = {{{picture.width, picture.height}, picture.bits, 0, 0}, target, how};
    const Size all = size();
    forget({0, 0, all.width, all.height});
    if (!keep_pictures_) return;
    fit_to_window();
    std::ranges::fill(pixels_, 0);
    for (int y = target.top; y < target.bottom; ++y) {
        const int row = (2 * (y - target.top) + 1) * picture.height / (2 * target.height());
        for (int x = target.left; x < target.right; ++x) {
            const int column = (2 * (x - target.left) + 1) * picture.width / (2 * target.width());
            set_pixel(x, y, colour_at(picture, column, row));
        }
    }
}

void HeadlessPane::fill_rectangle(const Rectangle& area, Colour colour) {
    ++fills;
    last_fill = {area, colour};
    forget(area);
    if (!keep_pictures_) return;
    fit_to_window();
    for (int y = area.top; y < area.bottom; ++y) {
        for (int x = area.left; x < area.right; ++x) set_pixel(x, y, colour);
    }
}

/// Forgets the texts and lines that begin in the area, since it is drawn over.
void HeadlessPane::forget(const Rectangle& area) {
    const auto inside = [&area](int x, int y) {
        return x >= area.left && x < area.right && y >= area.top && y < area.bottom;
    };
    std::erase_if(texts, [&](const HeadlessText& row) { return inside(row.x, row.y); });
    std::erase_if(lines,
                  [&](const HeadlessFill& line) { return inside(line.area.left, line.area.top); });
}

Colour HeadlessPane::pixel(int x, int y) const {
    if (x < 0 || y < 0 || x >= size_.width || y >= size_.height) return 0;
    return pixels_[size_t(y) * size_.width + x];
}

void HeadlessPane::set_pixel(int x, int y, Colour colour) {
    if (x < 0 || y < 0 || x >= size_.width || y >= size_.height) return;
    pixels_[size_t(y) * size_.width + x] = colour;
}

/// Follows the size of the client area; one of a new size starts black.
void HeadlessPane::fit_to_window() {
    const Size client = window_.client_size();
    if (client == size_) return;
    size_ = client;
    pixels_.assign(size_t(client.width) * client.height, 0);
}

bool HeadlessStatusBar::create(std::span<const int> right_edges, int drawn_part) {
    if (creation_fails) return false;
    present = true;
    drawn = drawn_part;
    edges.assign(right_edges.begin(), right_edges.end());
    texts.assign(edges.size(), {});
    tips.assign(edges.size(), {});
    return true;
}

void HeadlessStatusBar::set_text(int part, const std::string& text) {
    if (present && part >= 0 && size_t(part) < texts.size()) texts[part] = text;
}

void HeadlessStatusBar::set_tip(int part, const std::string& text) {
    if (present && part >= 0 && size_t(part) < tips.size()) tips[part] = text;
}

void HeadlessStatusBar::fill_rectangle(const Rectangle& area, Colour colour) {
    if (present && fills.size() < FILLS_KEPT) fills.push_back({area, colour});
}

std::string HeadlessSurface::create(Size wanted) {
    present_now = failure.empty();
    size = wanted;
    return failure;
}

void HeadlessSurface::present(const BitmapView& picture, const Rectangle& target,
                              const Scaling& how, bool clear) {
    if (!present_now) return;
    ++presents;
    clears += clear;
    last_picture = {{picture.width, picture.height}, picture.bits, 0, 0};
    last_target = target;
    last_scaling = how;
}
