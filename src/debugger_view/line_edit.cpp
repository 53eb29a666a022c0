#include "debugger_view/line_edit.h"

#include "platform/keyboard.h"
#include "platform/utf8.h"

#include <algorithm>
#include <utility>

namespace {

constexpr size_t LONGEST_LINE = 500;

size_t character_before(const std::string& line, size_t at) {
    do {
        --at;
    } while (at > 0 && !begins_character(line[at]));
    return at;
}

size_t character_behind(const std::string& line, size_t at) {
    return at + end_of_characters(std::string_view(line).substr(at), 1);
}

size_t characters_of(std::string_view text) {
    return size_t(std::ranges::count_if(text, begins_character));
}

} // namespace

void LineEdit::set(std::string text) {
    line = std::move(text);
    at = line.size();
}

void LineEdit::type(std::string_view text) {
    if (std::exchange(selected, false)) set({});
    for (const char c : text) {
        const bool is_character = uint8_t(c) >= ' ' && c != 0x7F;
        if (is_character && line.size() < LONGEST_LINE) line.insert(at++, 1, c);
    }
}

bool LineEdit::key(const Event& event) {
    const bool all = std::exchange(selected, false);
    switch (event.value) {
    case KEY_LEFT: at = at ? character_before(line, at) : 0; return true;
    case KEY_RIGHT: at = character_behind(line, at); return true;
    case KEY_HOME: at = 0; return true;
    case KEY_END: at = line.size(); return true;
    case KEY_BACKSPACE:
        if (all) {
            set({});
        } else if (at) {
            const size_t end = std::exchange(at, character_before(line, at));
            line.erase(at, end - at);
        }
        return true;
    case KEY_DELETE: line.erase(at, character_behind(line, at) - at); return true;
    default: return false;
    }
}

void LineEdit::draw(CellPainter& out, int column, int row, CellStyle style,
                    CellStyle cursor) const {
    out.clear_row(row, style, column);
    const int room = out.columns() - column;
    const auto before = int(characters_of(std::string_view(line).substr(0, at)));
    const int hidden = std::max(before - room + 1, 0);
    const std::string_view shown = std::string_view(line).substr(end_of_characters(line, hidden));
    out.text(column, row, shown, selected ? cursor : style);
    std::string_view under = std::string_view(line).substr(at);
    const std::string_view character = under.substr(0, end_of_characters(under, 1));
    out.text(column + before - hidden, row, character.empty() ? " " : character, cursor);
}
