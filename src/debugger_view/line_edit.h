#pragma once
/// A line of text that is being edited, with a cursor.

#include "debugger_view/cells.h"
#include "platform/events.h"

#include <cstddef>
#include <string>
#include <string_view>

class LineEdit {
public:
    explicit LineEdit(std::string begun = {}) : line(std::move(begun)), at(line.size()) {}
    /// What is typed first replaces the line, unless another key comes before.
    void select_all() { selected = true; }

    const std::string& text() const { return line; }
    void set(std::string text);
    void type(std::string_view text);
    /// Left, right, Home, End, Backspace, Delete. Whether the key was one of them.
    bool key(const Event& event);
    /// To the end of the row, from the column on; as much as has room, with the cursor in it.
    void draw(CellPainter& out, int column, int row, CellStyle style, CellStyle cursor) const;

private:
    std::string line;
    size_t at; ///< of the cursor, in bytes
    bool selected = false;
};
