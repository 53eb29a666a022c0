#include "debugger/debugger.h"
#include "debugger/peek.h"
#include "debugger/symbols.h"
#include "debugger/trace.h"
#include "debugger_view/row_list.h"
#include "debugger_view/section.h"
#include "debugger_view/services.h"
#include "platform/keyboard.h"
#include "z80/z80.h"

#include <utility>
#include <vector>

namespace {

constexpr int MOST_WORDS = 512; ///< that are shown from SP on
constexpr size_t MOST_CALLS = 64;

std::string place_text(uint16_t address) {
    const std::string name = debugger_symbols().near(address);
    return hex(address, 4) + (name.empty() ? "" : " " + name);
}

class StackSection final : public DebugSection {
public:
    const char* title() const override { return "Stack"; }
    const char* keys() const override {
        return "Enter changes  Space listing  Shift+F9 who wrote it";
    }

    void draw(CellPainter& out, const SectionLook& look) override {
        list.fit(MOST_WORDS, out.rows());
        for (int row = 0; row < out.rows(); ++row) {
            const uint16_t at = place(list.first() + row);
            const uint16_t word = debug_peek_word(at);
            const bool changed = view_byte_changed(at) || view_byte_changed(uint16_t(at + 1));
            CellStyle style = changed ? look.theme.changed : look.theme.text;
            CellStyle name = look.theme.name, quiet = look.theme.quiet;
            if (list.first() + row == list.cursor()) {
                out.clear_row(row, style = name = quiet = look.cursor());
            }
            int column =
                out.text(0, row, hex(at, 4) + (at == z80_state.sp ? ">" : " "), look.theme.quiet);
            column = out.text(column, row, hex(word, 4), style) + 1;
            const auto call = debug_call_before(word);
            const std::string near = word ? debugger_symbols().near(word) : "";
            if (call) column = out.text(column, row, "ret ", quiet);
            out.text(column, row, near, name);
        }
    }

    bool key(const Event& event) override {
        if (list.key(event)) return true;
        if (event.value != KEY_RETURN) return false;
        const uint16_t at = place(list.cursor());
        view_ask_address(
            "Word at " + hex(at, 4) + " =", hex(debug_peek_word(at), 4), [at](uint16_t word) {
                view_change([at, word] { debugger_poke(at, {uint8_t(word), uint8_t(word >> 8)}); });
            });
        return true;
    }
    void type(std::string_view text) override {
        if (text == " ") view_show_listing(debug_peek_word(place(list.cursor())));
    }
    void click(int /*column*/, int row, bool twice) override {
        list.choose(list.first() + row);
        if (twice) type(" ");
    }
    void scroll(int rows) override { list.scroll(rows); }
    void stood() override { list.choose(0); }
    std::optional<uint16_t> address() const override { return place(list.cursor()); }
    std::string spoken() const override {
        const uint16_t at = place(list.cursor());
        return hex(at, 4) + ": " + place_text(debug_peek_word(at));
    }

private:
    static uint16_t place(int row) { return uint16_t(z80_state.sp + 2 * row); }
    RowList list;
};

class CallSection final : public DebugSection {
public:
    const char* title() const override { return "Calls"; }
    const char* keys() const override { return "Enter shows the call  Ctrl+F11 out"; }

    void draw(CellPainter& out, const SectionLook& look) override {
        list.fit(int(calls.size()) + 1, out.rows());
        for (int row = 0; row < out.rows() && list.first() + row <= int(calls.size()); ++row) {
            const int number = list.first() + row;
            CellStyle style = look.theme.text, quiet = look.theme.quiet;
            if (number == list.cursor()) out.clear_row(row, style = quiet = look.cursor());
            if (number == 0) {
                out.text(0, row, "PC  " + place_text(z80_state.pc), style);
                continue;
            }
            const DebugCall& call = calls[size_t(number) - 1];
            const std::string text = hex(call.slot, 4) + " " + place_text(call.call) +
                                     (call.is_interrupt ? " interrupt " : " called ") +
                                     place_text(call.target);
            out.text(0, row, text, call.is_traced ? style : quiet);
        }
    }

    bool key(const Event& event) override {
        if (list.key(event)) return true;
        if (event.value != KEY_RETURN) return false;
        if (address()) view_show_listing(*address());
        return true;
    }
    void click(int /*column*/, int row, bool /*twice*/) override {
        list.choose(list.first() + row);
        if (address()) view_show_listing(*address());
    }
    void scroll(int rows) override { list.scroll(rows); }
    void stood() override {
        list.choose(0);
        is_stale = true;
    }
    void look() override {
        if (!debugger_stands()) {
            calls.clear();
        } else if (std::exchange(is_stale, false)) {
            calls = debugger_calls(MOST_CALLS);
        }
    }
    std::optional<uint16_t> address() const override {
        const int number = list.cursor();
        if (number == 0 || number > int(calls.size())) return z80_state.pc;
        return calls[size_t(number) - 1].call;
    }
    std::string spoken() const override { return address() ? place_text(*address()) : ""; }

private:
    std::vector<DebugCall> calls;
    bool is_stale = true;
    RowList list;
};

} // namespace

NewSection new_stack_section() { return std::make_unique<StackSection>(); }
NewSection new_call_section() { return std::make_unique<CallSection>(); }
