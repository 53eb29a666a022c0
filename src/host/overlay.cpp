#include "host/overlay.h"

#include "platform/platform.h"
#include "platform/utf8.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr Colour GROUND = 0x000000; // half of the picture is seen through it
constexpr Colour TEXT = 0xFFFFFF;
constexpr int64_t SHOWN_SECONDS = 3;
constexpr int64_t MICROSECONDS = 1'000'000; ///< in a second
constexpr size_t MOST_ROWS = 6;
constexpr std::string_view REST = "...";

struct {
    std::string text;
    bool shown = false;
    int64_t ends = 0; ///< by the host's clock
} overlay;

Pane& pane() { return platform().pane(PaneId::overlay); }

int columns_of(const std::string& row) { return int(std::ranges::count_if(row, begins_character)); }

/// Of one line, broken between words so that no row is longer than `columns`; a longer word is
/// broken in itself.
void append_rows(std::vector<std::string>& rows, std::string line, int columns) {
    for (size_t end; (end = end_of_characters(line, columns)) < line.size();) {
        const size_t space = line.rfind(' ', end);
        const bool between = space != std::string::npos && space > 0;
        rows.push_back(line.substr(0, between ? space : end));
        line.erase(0, between ? space + 1 : end);
    }
    rows.push_back(std::move(line));
}

std::vector<std::string> rows_of(const std::string& text, int columns) {
    std::vector<std::string> rows;
    for (size_t first = 0; first < text.size();) {
        const size_t end = std::min(text.find('\n', first), text.size());
        append_rows(rows, text.substr(first, end - first), columns);
        first = end + 1;
    }
    if (rows.size() <= MOST_ROWS) return rows;
    rows.resize(MOST_ROWS);
    rows.back().resize(end_of_characters(rows.back(), columns - int(REST.size())));
    rows.back() += REST;
    return rows;
}

} // namespace

void overlay_show(const std::string& text) {
    if (text.empty()) return overlay_hide();
    Clock& clock = platform().clock();
    overlay.text = text;
    overlay.ends = clock.counter() + SHOWN_SECONDS * clock.frequency();
    if (!std::exchange(overlay.shown, true)) pane().show(true);
    overlay_draw();
}

void overlay_hide() {
    if (std::exchange(overlay.shown, false)) pane().show(false);
}

void overlay_draw() {
    if (!overlay.shown) return;
    const auto [cell_width, cell_height] = pane().cell_size();
    const int columns = std::max(pane().size().width / cell_width - 2, 8);
    const auto rows = rows_of(overlay.text, columns);
    pane().set_message(overlay.text, int(rows.size()));
    const auto [width, height] = pane().size();
    pane().fill_rectangle({0, 0, width, height}, GROUND);
    int y = (height - int(rows.size()) * cell_height) / 2;
    for (const std::string& row : rows) {
        pane().text((width - columns_of(row) * cell_width) / 2, y, row, TEXT, GROUND);
        y += cell_height;
    }
}

std::optional<int64_t> overlay_turn() {
    if (!overlay.shown) return {};
    Clock& clock = platform().clock();
    const int64_t left = overlay.ends - clock.counter();
    if (left > 0) return left * MICROSECONDS / clock.frequency() + 1;
    overlay_hide();
    return {};
}
