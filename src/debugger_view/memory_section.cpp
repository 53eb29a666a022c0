#include "debugger/command_words.h"
#include "debugger/debugger.h"
#include "debugger/peek.h"
#include "debugger_view/section.h"
#include "debugger_view/services.h"
#include "platform/keyboard.h"
#include "z80/z80.h"

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

namespace {

constexpr int MEMORY_SIZE_ALL = 0x10000;
constexpr int BYTES_BEGIN = 5;     ///< column, behind the address
constexpr int COLUMNS_OF_BYTE = 4; ///< two digits, a blank, and a character further right

char printable(uint8_t byte) { return byte >= ' ' && byte < 0x7F ? char(byte) : '.'; }

class MemorySection final : public DebugSection {
public:
    const char* title() const override { return "Memory"; }
    const char* keys() const override {
        return "0-F change  Enter values  F2 characters  Ctrl+G address  Ctrl+F find  F3 again  "
               "Ctrl+L fill  F9 watch  Shift+F9 who wrote it";
    }

    void draw(CellPainter& out, const SectionLook& look) override {
        width = 8;
        while (BYTES_BEGIN + 2 * width * COLUMNS_OF_BYTE + 2 <= out.columns() && width < 32) {
            width *= 2;
        }
        shown_rows = out.rows();
        if (follows) bring_into_view();
        follows = false;
        for (int row = 0; row < out.rows(); ++row) draw_row(out, look, row);
    }

    bool key(const Event& event) override {
        const bool control = event.modifiers & MODIFIER_CONTROL;
        if (control && event.value == 'F') return ask_what_to_find();
        if (control && event.value == 'L') return ask_what_to_fill();
        if (control) return false;
        switch (event.value) {
        case KEY_LEFT: return move(second_digit ? 0 : -1);
        case KEY_RIGHT: return move(1);
        case KEY_UP: return move(-width);
        case KEY_DOWN: return move(width);
        case KEY_PAGE_UP: return move(-width * std::max(shown_rows - 1, 1));
        case KEY_PAGE_DOWN: return move(width * std::max(shown_rows - 1, 1));
        case KEY_HOME: return move(-(uint16_t(cursor - top) % width));
        case KEY_END: return move(width - 1 - uint16_t(cursor - top) % width);
        case KEY_RETURN: return ask_for_values();
        case KEY_F2: in_characters = !in_characters; return true;
        case KEY_F3: find(); return true;
        default: return false;
        }
    }

    void type(std::string_view text) override {
        for (const char c : text) {
            if (in_characters) {
                if (uint8_t(c) < 0x80) write(uint8_t(c));
            } else if (std::isxdigit(uint8_t(c))) {
                type_digit(uint8_t(std::stoi(std::string(1, c), nullptr, 16)));
            } else if (c == 'g') {
                view_ask_address("Show the address", {},
                                 [this](uint16_t address) { go_to(address); });
            } else if (c == '/') {
                ask_what_to_find();
            }
        }
    }

    void click(int column, int row, bool twice) override {
        const int characters = BYTES_BEGIN + 3 * width + 1;
        column -= BYTES_BEGIN;
        in_characters = column >= characters - BYTES_BEGIN;
        const int place = in_characters ? column - (characters - BYTES_BEGIN) : column / 3;
        if (column < 0 || place >= width) return;
        cursor = uint16_t(top + row * width + place);
        second_digit = false;
        if (twice) ask_for_values();
    }

    void scroll(int rows) override { top = uint16_t(top + rows * width); }

    std::optional<uint16_t> address() const override { return cursor; }
    bool go_to(uint16_t address) override {
        cursor = address;
        second_digit = false;
        follows = true;
        return true;
    }

    std::string spoken() const override {
        const uint8_t byte = debug_peek(cursor);
        return hex(cursor, 4) + ": " + hex(byte, 2) + " " + printable(byte) + " " +
               debugger_symbols().near(cursor);
    }

private:
    void draw_row(CellPainter& out, const SectionLook& look, int row) const {
        const auto first = uint16_t(top + row * width);
        const int characters = BYTES_BEGIN + 3 * width + 1;
        out.text(0, row, hex(first, 4), look.theme.quiet);
        for (int n = 0; n < width; ++n) {
            const auto address = uint16_t(first + n);
            const uint8_t byte = debug_peek(address);
            CellStyle style = style_of(address, look);
            const CellStyle cursor_style = look.cursor();
            const bool is_here = address == cursor;
            const int column = BYTES_BEGIN + 3 * n;
            out.text(column, row, hex(byte, 2), is_here && !in_characters ? cursor_style : style);
            if (is_here && second_digit && look.focused) {
                out.text(column, row, hex(byte, 2).substr(0, 1), style);
            }
            out.text(characters + n, row, std::string(1, printable(byte)),
                     is_here && (in_characters || !look.focused) ? cursor_style : style);
        }
        out.text(characters + width + 2, row, debugger_symbols().near(first), look.theme.name);
    }

    static CellStyle style_of(uint16_t address, const SectionLook& look) {
        for (const Breakpoint& breakpoint : breakpoints()) {
            const bool watches = breakpoint.kind == BreakpointKind::memory_read ||
                                 breakpoint.kind == BreakpointKind::memory_write ||
                                 breakpoint.kind == BreakpointKind::memory_access;
            if (!watches || address < breakpoint.first || address > breakpoint.last) continue;
            return breakpoint.enabled ? look.theme.breakpoint : look.theme.off;
        }
        if (view_byte_changed(address)) return look.theme.changed;
        return debug_peek(address) ? look.theme.text : look.theme.quiet;
    }

    bool move(int bytes) {
        cursor = uint16_t(cursor + bytes);
        second_digit = false;
        follows = true;
        return true;
    }

    void bring_into_view() {
        const int distance = int16_t(uint16_t(cursor - top));
        if (distance >= 0 && distance < width * shown_rows) return;
        // An address that is far away begins its row at a multiple of the width.
        const bool is_near =
            distance < 0 ? distance >= -width * shown_rows : distance < 2 * width * shown_rows;
        if (!is_near) {
            top = uint16_t(cursor / width * width - shown_rows / 3 * width);
            return;
        }
        const int rows =
            distance < 0 ? (distance - width + 1) / width : distance / width - shown_rows + 1;
        top = uint16_t(top + rows * width);
    }

    /// A digit that is typed changes its half of the byte at once.
    void type_digit(uint8_t digit) {
        const uint8_t byte = debug_peek(cursor);
        const bool second = second_digit;
        const auto value = uint8_t(second ? (byte & 0xF0) | digit : (byte & 0x0F) | digit << 4);
        view_change([this, value, second] {
            debugger_poke(cursor, {value});
            second_digit = !second;
            if (second) move(1);
        });
    }

    void write(uint8_t value) {
        view_change([this, value] {
            debugger_poke(cursor, {value});
            move(1);
        });
    }

    bool ask_for_values() {
        view_ask("Bytes or \"text\" at " + hex(cursor, 4), {}, [this](const std::string& text) {
            CommandWords words(text);
            const std::vector<uint8_t> bytes = words.bytes();
            if (!words.problem().empty()) return words.problem();
            view_change([at = cursor, bytes] { debugger_poke(at, bytes); });
            return std::string();
        });
        return true;
    }

    bool ask_what_to_find() {
        view_ask_anew("Find bytes or \"text\"", sought_text, [this](const std::string& text) {
            CommandWords words(text);
            const std::vector<uint8_t> bytes = words.bytes();
            if (!words.problem().empty()) return words.problem();
            sought = bytes;
            sought_text = text;
            find();
            return std::string();
        });
        return true;
    }

    /// From behind the cursor all around the memory.
    void find() {
        if (sought.empty()) return view_tell("Ctrl+F says what is to be found.");
        for (int distance = 1; distance <= MEMORY_SIZE_ALL; ++distance) {
            const auto at = uint16_t(cursor + distance);
            size_t same = 0;
            while (same < sought.size() && debug_peek(uint16_t(at + same)) == sought[same]) ++same;
            if (same < sought.size()) continue;
            go_to(at);
            return view_tell("Found at " + hex(at, 4));
        }
        view_tell("It is nowhere in the memory.");
    }

    bool ask_what_to_fill() {
        view_ask_address("Fill from " + hex(cursor, 4) + " to", {}, [this](uint16_t last) {
            const uint16_t first = cursor;
            const int count = uint16_t(last - first) + 1;
            view_ask_anew("Fill " + hex(first, 4) + "-" + hex(last, 4) + " with", "00",
                          [first, count](const std::string& text) {
                              CommandWords words(text);
                              const std::vector<uint8_t> bytes = words.bytes();
                              if (!words.problem().empty()) return words.problem();
                              std::vector<uint8_t> all(size_t(count), 0);
                              for (size_t n = 0; n < all.size(); ++n)
                                  all[n] = bytes[n % bytes.size()];
                              view_change([first, all] { debugger_poke(first, all); });
                              return std::string();
                          });
        });
        return true;
    }

    uint16_t top = 0x4000, cursor = 0x4000;
    int width = 16; ///< bytes in a row
    int shown_rows = 1;
    bool in_characters = false; ///< typing writes characters, not digits
    bool second_digit = false;
    bool follows = false;
    std::vector<uint8_t> sought;
    std::string sought_text;
};

} // namespace

NewSection new_memory_section() { return std::make_unique<MemorySection>(); }
