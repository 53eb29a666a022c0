#include "debugger_view/row_list.h"
#include "debugger_view/section.h"
#include "debugger_view/services.h"
#include "platform/keyboard.h"

#include <vector>

namespace {

struct WatchedValue {
    std::string expression;
    int64_t before = 0; ///< at the last stop
    int64_t now = 0;
    std::string problem = {};
};

class WatchSection final : public DebugSection {
public:
    const char* title() const override { return "Watches"; }
    const char* keys() const override { return "Insert adds  Enter changes  Delete removes"; }

    void draw(CellPainter& out, const SectionLook& look) override {
        list.fit(int(watched.size()) + 1, out.rows());
        for (int row = 0; row < out.rows(); ++row) {
            const size_t number = size_t(list.first()) + size_t(row);
            if (number > watched.size()) break;
            const bool is_cursor = int(number) == list.cursor() && look.focused;
            if (number == watched.size()) {
                const CellStyle style = is_cursor ? look.cursor() : look.theme.quiet;
                out.text(0, row, "add: an expression such as (hl) or lives", style);
                break;
            }
            WatchedValue& value = watched[number];
            refresh(value);
            CellStyle style = value.now == value.before ? look.theme.text : look.theme.changed;
            if (is_cursor) out.clear_row(row, style = look.cursor());
            const int column =
                out.text(0, row, value.expression + "  ", is_cursor ? style : look.theme.name);
            out.text(column, row, shown(value), style);
        }
    }

    bool key(const Event& event) override {
        if (list.key(event)) return true;
        switch (event.value) {
        case KEY_INSERT: ask(watched.size()); return true;
        case KEY_RETURN: ask(size_t(list.cursor())); return true;
        case KEY_DELETE: {
            const auto number = size_t(list.cursor());
            if (number < watched.size()) watched.erase(watched.begin() + list.cursor());
            return true;
        }
        default: return false;
        }
    }
    void click(int /*column*/, int row, bool twice) override {
        list.choose(list.first() + row);
        if (twice || size_t(list.first()) + size_t(row) >= watched.size())
            ask(size_t(list.cursor()));
    }
    void scroll(int rows) override { list.scroll(rows); }
    void stood() override {
        for (WatchedValue& value : watched) {
            value.before = value.now;
            refresh(value);
        }
    }
    std::string spoken() const override {
        const auto number = size_t(list.cursor());
        if (number >= watched.size()) return "add a watch";
        return watched[number].expression + " = " + shown(watched[number]);
    }

private:
    static void refresh(WatchedValue& value) {
        value.problem.clear();
        value.now = view_value(value.expression, value.problem).value_or(0);
    }
    static std::string shown(const WatchedValue& value) {
        if (!value.problem.empty()) return value.problem;
        std::string text = std::to_string(value.now);
        const bool is_word = value.now >= -0x8000 && value.now <= 0xFFFF;
        const bool is_byte = value.now >= -0x80 && value.now <= 0xFF;
        if (is_word) text += "  " + hex(uint32_t(value.now), is_byte ? 2 : 4);
        if (value.now >= ' ' && value.now < 0x7F)
            text += std::string("  '") + char(value.now) + "'";
        return text;
    }
    void ask(size_t number) {
        const bool is_new = number >= watched.size();
        view_ask("Watch", is_new ? std::string() : watched[number].expression,
                 [this, number, is_new](const std::string& text) {
                     std::string problem;
                     const auto value = view_value(text, problem);
                     if (!value) return problem;
                     if (is_new) watched.emplace_back();
                     watched[is_new ? watched.size() - 1 : number] = {text, *value, *value};
                     return std::string();
                 });
    }

    std::vector<WatchedValue> watched;
    RowList list;
};

} // namespace

NewSection new_watch_section() { return std::make_unique<WatchSection>(); }
