#include "debugger_view/cells.h"

#include "platform/pane.h"
#include "platform/utf8.h"

#include <algorithm>

void CellGrid::begin(Size cells, CellStyle style) {
    if (cells != size_) drawn_.clear();
    size_ = cells;
    cells_.assign(size_t(cells.width) * size_t(cells.height), {U' ', style});
}

void CellGrid::set(int column, int row, char32_t character, CellStyle style) {
    if (column < 0 || row < 0 || column >= size_.width || row >= size_.height) return;
    cells_[index(column, row)] = {character, style};
}

void CellGrid::leave_out(const Rectangle& cells) {
    for (int row = std::max(cells.top, 0); row < std::min(cells.bottom, size_.height); ++row) {
        for (int column = std::max(cells.left, 0); column < std::min(cells.right, size_.width);
             ++column) {
            cells_[index(column, row)] = {.left_out = true};
        }
    }
}

void CellGrid::draw_row(Pane& pane, int row) {
    const Size cell = pane.cell_size();
    const auto same = [&](int column) {
        return !drawn_.empty() && drawn_[index(column, row)] == cells_[index(column, row)];
    };
    for (int column = 0; column < size_.width;) {
        const Cell& first = cells_[index(column, row)];
        if (first.left_out || same(column)) {
            ++column;
            continue;
        }
        const int start = column;
        std::string run;
        while (column < size_.width) {
            const Cell& next = cells_[index(column, row)];
            if (next.left_out || next.style != first.style || same(column)) break;
            run += utf8_of(next.character);
            ++column;
        }
        pane.text(start * cell.width, row * cell.height, run, first.style.colour,
                  first.style.ground);
    }
}

void CellGrid::draw(Pane& pane) {
    for (int row = 0; row < size_.height; ++row) draw_row(pane, row);
    drawn_ = cells_;
}

int CellPainter::text(int column, int row, std::string_view text, CellStyle style) {
    const bool inside = row >= 0 && row < rows();
    while (!text.empty()) {
        const char32_t character = take_character(text);
        if (inside && column >= 0 && column < columns()) {
            grid->set(area_.left + column, area_.top + row, character, style);
        }
        ++column;
    }
    return column;
}

void CellPainter::clear_row(int row, CellStyle style, int column) {
    if (row < 0 || row >= rows()) return;
    for (column = std::max(column, 0); column < columns(); ++column) {
        grid->set(area_.left + column, area_.top + row, U' ', style);
    }
}

void CellPainter::leave_out(const Rectangle& cells) {
    grid->leave_out({area_.left + cells.left, area_.top + cells.top,
                     std::min(area_.left + cells.right, area_.right),
                     std::min(area_.top + cells.bottom, area_.bottom)});
}

char32_t take_character(std::string_view& text) {
    const size_t length = end_of_characters(text.substr(1), 0) + 1;
    const auto first = uint8_t(text.front());
    char32_t character = length == 1 ? first : first & (0xFFU >> (length + 1));
    for (const char byte : text.substr(1, length - 1)) character = character << 6 | (byte & 0x3F);
    text.remove_prefix(length);
    const bool possible = length == 1 ? first < 0x80 : length <= 4 && first >= 0xC0;
    return possible ? character : U'?';
}

std::string hex(uint32_t value, int digits) {
    constexpr std::string_view digit = "0123456789ABCDEF";
    std::string text;
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) text += digit[value >> shift & 0xF];
    return text;
}

std::string to_the_left(std::string text, size_t width) {
    if (text.size() < width) text.resize(width, ' ');
    return text;
}

std::string to_the_right(const std::string& text, size_t width) {
    return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
}
