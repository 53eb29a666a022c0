#pragma once
/// A grid of character cells that is composed anew each time, and drawn into a pane where it
/// differs from what was drawn before.

#include "platform/geometry.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct Pane;

struct CellStyle {
    Colour colour = 0, ground = 0;
    bool operator==(const CellStyle&) const = default;
};

class CellGrid {
public:
    /// The grid gets that many cells, all blank in this style. Of another size than before, all of
    /// it is drawn the next time.
    void begin(Size cells, CellStyle style);
    Size size() const { return size_; }
    /// All is drawn the next time.
    void forget_drawn() { drawn_.clear(); }

    /// A character that the grid does not have is left out.
    void set(int column, int row, char32_t character, CellStyle style);
    /// A picture lies there: the cells are left as they are.
    void leave_out(const Rectangle& cells);
    /// The pane's cells that differ. Runs of one style are one text.
    void draw(Pane& pane);

private:
    struct Cell {
        char32_t character = U' ';
        CellStyle style = {};
        bool left_out = false;
        bool operator==(const Cell&) const = default;
    };
    size_t index(int column, int row) const { return size_t(row) * size_t(size_.width) + column; }
    void draw_row(Pane& pane, int row);

    Size size_;
    std::vector<Cell> cells_, drawn_;
};

/// Writes into a part of a grid; what lies outside of it is cut off. Columns and rows count from
/// its corner.
class CellPainter {
public:
    CellPainter(CellGrid& to, const Rectangle& cells) : grid(&to), area_(cells) {}
    /// A part of another one, in its columns and rows.
    CellPainter(const CellPainter& of, const Rectangle& part)
        : grid(of.grid), area_{of.area_.left + part.left, of.area_.top + part.top,
                               of.area_.left + part.right, of.area_.top + part.bottom} {}

    int columns() const { return area_.width(); }
    int rows() const { return area_.height(); }
    /// In cells of the grid.
    const Rectangle& area() const { return area_; }
    /// Texts are UTF-8. Returns the column behind the text.
    int text(int column, int row, std::string_view text, CellStyle style);
    /// The row from the column on in this style, blank.
    void clear_row(int row, CellStyle style, int column = 0);
    void leave_out(const Rectangle& cells);

private:
    CellGrid* grid;
    Rectangle area_;
};

/// Takes the first character out of a text in UTF-8; what is none is a question mark.
char32_t take_character(std::string_view& text);

/// Hexadecimal, in capitals.
std::string hex(uint32_t value, int digits);
/// With blanks to its right, or to its left, up to that many bytes.
std::string to_the_left(std::string text, size_t width);
std::string to_the_right(const std::string& text, size_t width);
