#include "debugger/debugger.h"
#include "debugger/peek.h"
#include "debugger/source_text.h"
#include "debugger/symbols.h"
#include "debugger_view/instruction.h"
#include "debugger_view/section.h"
#include "debugger_view/services.h"
#include "platform/keyboard.h"
#include "z80/z80.h"

#include <algorithm>
#include <vector>

namespace {

constexpr int ADDRESS_COLUMN = 3, BYTES_COLUMN = 8, TEXT_COLUMN = 20, NARROW_TEXT_COLUMN = 8;
constexpr int NARROW = 44; ///< columns; below there is no room for the bytes
constexpr size_t MOST_RETURNS = 64;

/// A row is an instruction, or above one its label or its line of the source.
struct ListingRow {
    enum class Kind : uint8_t { instruction, data, label, source };
    Kind kind = Kind::instruction;
    uint16_t address = 0;
    std::string text = {};
    ShownInstruction shown = {};
};

const Breakpoint* execute_breakpoint_at(uint16_t address) {
    return view_breakpoint(BreakpointKind::execute, address);
}

class ListingSection final : public DebugSection {
public:
    const char* title() const override { return "Listing"; }
    const char* keys() const override {
        return "g address  Home PC  Enter follows  Backspace back  F4 runs to here";
    }

    void draw(CellPainter& out, const SectionLook& look) override {
        if (follows) {
            follows = false;
            bring_into_view(out.rows());
        }
        rows = rows_from(top, out.rows());
        for (size_t row = 0; row < rows.size(); ++row) draw_row(out, look, int(row));
    }

    bool key(const Event& event) override {
        switch (event.value) {
        case KEY_UP: move_up(1); return true;
        case KEY_DOWN: move_down(1); return true;
        case KEY_PAGE_UP: move_up(page()); return true;
        case KEY_PAGE_DOWN: move_down(page()); return true;
        case KEY_HOME: return go_to(z80_state.pc);
        case KEY_RETURN: return follow();
        case KEY_BACKSPACE: return go_back();
        default: return false;
        }
    }

    void type(std::string_view text) override {
        if (text != "g") return;
        view_ask_address("Show the address", {}, [this](uint16_t address) { go_to(address); });
    }

    void click(int column, int row, bool twice) override {
        if (row < 0 || row >= int(rows.size())) return;
        cursor = rows[size_t(row)].address;
        if (column < ADDRESS_COLUMN || twice) {
            view_toggle_breakpoint(BreakpointKind::execute, cursor);
        }
    }

    void scroll(int count) override {
        for (; count < 0; ++count) top = address_before(top);
        for (; count > 0; --count) top = next_in_view(top);
    }

    void stood() override {
        cursor = z80_state.pc;
        follows = true;
    }

    std::optional<uint16_t> address() const override { return cursor; }

    bool go_to(uint16_t address) override {
        if (address != cursor) returns.push_back(cursor);
        if (returns.size() > MOST_RETURNS) returns.erase(returns.begin());
        cursor = address;
        follows = true;
        return true;
    }

    std::string spoken() const override {
        const ShownInstruction shown = shown_instruction(cursor);
        const std::string label = debugger_symbols().name_at(cursor);
        return hex(cursor, 4) + " " + (label.empty() ? "" : label + ": ") + shown.text +
               (cursor == z80_state.pc ? ", program counter" : "") +
               (execute_breakpoint_at(cursor) ? ", breakpoint" : "");
    }

private:
    /// Up to the program counter and to the cursor whole instructions are shown, so that both
    /// begin a row whatever lies before them.
    static int length_in_view(uint16_t address, uint16_t here) {
        const int length = shown_instruction(address).length;
        int least = length;
        for (const uint16_t place : {z80_state.pc, here}) {
            const int distance = uint16_t(place - address);
            if (distance > 0 && distance < least) least = distance;
        }
        return least;
    }

    uint16_t next_in_view(uint16_t address) const {
        return uint16_t(address + length_in_view(address, cursor));
    }

    std::vector<ListingRow> rows_from(uint16_t address, int count) const {
        std::vector<ListingRow> made;
        using Kind = ListingRow::Kind;
        while (int(made.size()) < count) {
            if (const auto line = debugger_symbols().line_at(address)) {
                made.push_back({Kind::source, address,
                                line->file + ":" + std::to_string(line->line) + "  " +
                                    source_text(*line, debugger_symbols())});
            }
            const std::string label = debugger_symbols().name_at(address);
            if (!label.empty()) made.push_back({Kind::label, address, label + ":"});
            ListingRow row = {.address = address, .shown = shown_instruction(address)};
            const int length = length_in_view(address, cursor);
            if (length < row.shown.length) {
                row.kind = Kind::data;
                row.shown = {.address = address, .length = length};
                for (int n = 0; n < length; ++n) {
                    row.shown.bytes += (n ? " " : "") + hex(debug_peek(uint16_t(address + n)), 2);
                }
                row.shown.text = "db " + row.shown.bytes;
            }
            made.push_back(row);
            address = uint16_t(address + length);
        }
        made.resize(size_t(std::max(count, 0)));
        return made;
    }

    int row_of(uint16_t address) const {
        for (size_t row = 0; row < rows.size(); ++row) {
            const bool is_instruction = rows[row].kind <= ListingRow::Kind::data;
            if (is_instruction && rows[row].address == address) return int(row);
        }
        return -1;
    }

    /// The cursor gets into view: with as little movement as possible near the old view, else a
    /// third of the way down.
    void bring_into_view(int count) {
        rows = rows_from(top, count);
        const int row = row_of(cursor);
        if (row >= 0 && row < count - 1) return;
        top = cursor;
        for (int n = 0; n < count / 3; ++n) top = address_before(top);
    }

    void draw_row(CellPainter& out, const SectionLook& look, int number) const {
        const ListingRow& row = rows[size_t(number)];
        const ViewTheme& theme = look.theme;
        if (row.kind == ListingRow::Kind::label || row.kind == ListingRow::Kind::source) {
            const bool is_label = row.kind == ListingRow::Kind::label;
            out.text(ADDRESS_COLUMN, number, row.text, is_label ? theme.name : theme.quiet);
            return;
        }
        const bool is_counter = row.address == z80_state.pc, is_cursor = row.address == cursor;
        CellStyle text = theme.text, quiet = theme.quiet, name = theme.name;
        if (is_counter) text = quiet = name = theme.counter;
        if (is_cursor && !is_counter) text = quiet = name = look.cursor();
        if (is_counter || is_cursor) out.clear_row(number, text, ADDRESS_COLUMN - 1);
        draw_margin(out, look, number, is_counter, is_cursor);
        out.text(ADDRESS_COLUMN, number, hex(row.address, 4), quiet);
        const bool is_narrow = out.columns() < NARROW;
        if (!is_narrow) out.text(BYTES_COLUMN, number, row.shown.bytes, quiet);
        const int column = is_narrow ? NARROW_TEXT_COLUMN : TEXT_COLUMN;
        const int behind = out.text(column, number, row.shown.text, text);
        const int remark = std::max(behind + 2, column + 18);
        if (!row.shown.remark.empty()) out.text(remark, number, "; " + row.shown.remark, quiet);
    }

    void draw_margin(CellPainter& out, const SectionLook& look, int number, bool is_counter,
                     bool is_cursor) const {
        if (const Breakpoint* there = execute_breakpoint_at(rows[size_t(number)].address)) {
            const ViewTheme& theme = look.theme;
            out.text(0, number, there->enabled ? "*" : "o",
                     there->enabled ? theme.breakpoint : theme.off);
        }
        if (is_counter) {
            const bool both = is_cursor && look.focused;
            out.text(1, number, both ? "=>" : " >", both ? look.cursor() : look.theme.counter);
        }
    }

    int page() const { return std::max(int(rows.size()) - 1, 1); }

    void move_down(int count) {
        for (; count > 0; --count) cursor = next_in_view(cursor);
        follows = true;
    }
    void move_up(int count) {
        for (; count > 0; --count) {
            const int row = row_of(cursor);
            const int above = above_in_view(row);
            cursor = above >= 0 ? rows[size_t(above)].address : address_before(cursor);
        }
        follows = true;
    }
    int above_in_view(int row) const {
        for (--row; row >= 0; --row) {
            if (rows[size_t(row)].kind <= ListingRow::Kind::data) return row;
        }
        return -1;
    }

    bool follow() {
        const auto target = shown_instruction(cursor).target;
        return target && go_to(*target);
    }
    bool go_back() {
        if (returns.empty()) return false;
        cursor = returns.back();
        returns.pop_back();
        follows = true;
        return true;
    }

    uint16_t top = 0, cursor = 0;
    bool follows = true; ///< the cursor is brought into view when it is drawn next
    std::vector<ListingRow> rows;
    std::vector<uint16_t> returns; ///< where the cursor was before it followed or was sent away
};

} // namespace

NewSection new_listing_section() { return std::make_unique<ListingSection>(); }
