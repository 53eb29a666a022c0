#include "platform/headless/headless_window.h"

#include "platform/utf8.h"

#include <algorithm>
#include <string_view>

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

std::string without_tabs(const std::string& text) {
    constexpr int TAB_COLUMNS = 8;
    std::string cells;
    int column = 0;
    for (const char byte : text) {
        if (byte == '\t') {
            const int blanks = TAB_COLUMNS - column % TAB_COLUMNS;
            cells.append(size_t(blanks), ' ');
            column += blanks;
        } else {
            cells += byte;
            column += begins_character(byte);
        }
    }
    return cells;
}

int columns(const std::string& text) {
    return int(std::ranges::count_if(without_tabs(text), begins_character));
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

void HeadlessWindow::place_debugger(bool open, const Rectangle& wanted, int closed) {
    const bool stays = std::exchange(debugger_open, open) && open;
    debugger_closed = closed;
    if (stays) return;
    debugger = wanted;
    if (wanted != Rectangle{}) return;
    debugger = {outer.right, outer.top, outer.right + HEADLESS_DEBUGGER.width * HEADLESS_CELL.width,
                outer.top + HEADLESS_DEBUGGER.height * HEADLESS_CELL.height};
}

Size HeadlessPane::size() {
    const Size client = window_.client_size();
    const bool docked = window_.keyboard_place == KeyboardPlace::docked && !window_.full_screen;
    const int keyboard = docked ? window_.keyboard.height() : 0;
    switch (id_) {
    case PaneId::film_bar: return {client.width, HEADLESS_FILM_BAR};
    case PaneId::overlay: return {client.width, message_height_};
    case PaneId::keyboard: return {window_.keyboard.width(), window_.keyboard.height()};
    case PaneId::debugger: return {window_.debugger.width(), window_.debugger.height()};
    default: break;
    }
    return {client.width, std::max(client.height - status_bar_.height() - keyboard, 0)};
}

void HeadlessPane::copy_bitmap(const BitmapView& picture, int x, int y) {
    ++copies;
    last_copy = {{picture.width, picture.height}, picture.bits, x, y};
    forget({x, y, x + picture.width, y + picture.height});
    if (!keep_pictures_) return;
    fit_to_size();
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
    fit_to_size();
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
    fit_to_size();
    for (int y = area.top; y < area.bottom; ++y) {
        for (int x = area.left; x < area.right; ++x) set_pixel(x, y, colour);
    }
}

void HeadlessPane::text(int x, int y, const std::string& text, Colour colour, Colour background) {
    const int end = x + columns(text) * HEADLESS_CELL.width;
    forget({x, y, end, y + HEADLESS_CELL.height});
    texts.push_back({x, y, text, colour, background});
}

/// Forgets the texts or what the area hides of them, and the lines that begin in it.
void HeadlessPane::forget(const Rectangle& area) {
    const auto inside = [&area](int x, int y) {
        return x >= area.left && x < area.right && y >= area.top && y < area.bottom;
    };
    const int width = size().width;
    std::vector<HeadlessText> left;
    for (HeadlessText& row : texts) {
        const int end = std::min(row.x + columns(row.text) * HEADLESS_CELL.width, width);
        const bool meets = row.y >= area.top && row.y < area.bottom;
        if (!meets || end <= area.left || row.x >= area.right) {
            left.push_back(std::move(row));
            continue;
        }
        const std::string cells = without_tabs(row.text);
        if (row.x < area.left) {
            const int kept = (area.left - row.x) / HEADLESS_CELL.width;
            left.push_back({row.x, row.y, cells.substr(0, end_of_characters(cells, kept)),
                            row.colour, row.background});
        }
        if (end > area.right) {
            const int hidden = (area.right - row.x + HEADLESS_CELL.width - 1) / HEADLESS_CELL.width;
            left.push_back({row.x + hidden * HEADLESS_CELL.width, row.y,
                            cells.substr(end_of_characters(cells, hidden)), row.colour,
                            row.background});
        }
    }
    texts = std::move(left);
    std::erase_if(lines,
                  [&](const HeadlessFill& line) { return inside(line.area.left, line.area.top); });
}

std::vector<std::string> HeadlessPane::rows() const {
    std::vector<std::vector<std::string>> cells;
    for (const HeadlessText& text : texts) {
        const std::string all = without_tabs(text.text);
        const auto row = size_t(std::max(text.y, 0) / HEADLESS_CELL.height);
        if (row >= cells.size()) cells.resize(row + 1);
        auto column = size_t(std::max(text.x, 0) / HEADLESS_CELL.width);
        for (size_t at = 0; at < all.size(); ++column) {
            const size_t end = at + end_of_characters(std::string_view(all).substr(at), 1);
            if (column >= cells[row].size()) cells[row].resize(column + 1, " ");
            cells[row][column] = all.substr(at, end - at);
            at = end;
        }
    }
    std::vector<std::string> result;
    for (const std::vector<std::string>& row : cells) {
        std::string& line = result.emplace_back();
        for (const std::string& cell : row) line += cell;
        line.resize(line.find_last_not_of(' ') + 1);
    }
    return result;
}

Colour HeadlessPane::pixel(int x, int y) const {
    if (x < 0 || y < 0 || x >= size_.width || y >= size_.height) return 0;
    return pixels_[size_t(y) * size_.width + x];
}

void HeadlessPane::set_pixel(int x, int y, Colour colour) {
    if (x < 0 || y < 0 || x >= size_.width || y >= size_.height) return;
    pixels_[size_t(y) * size_.width + x] = colour;
}

/// Follows the size of its window; one of a new size starts black.
void HeadlessPane::fit_to_size() {
    const Size now = id_ == PaneId::debugger ? size() : window_.client_size();
    if (now == size_) return;
    size_ = now;
    pixels_.assign(size_t(now.width) * now.height, 0);
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
