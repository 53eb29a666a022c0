#include "debugger/breakpoints.h"
#include "debugger/commands.h"
#include "debugger_view/row_list.h"
#include "debugger_view/section.h"
#include "debugger_view/services.h"
#include "platform/keyboard.h"

#include <algorithm>
#include <vector>

namespace {

/// Those of the user: other fronts keep theirs to themselves.
std::vector<Breakpoint> users_breakpoints() {
    std::vector<Breakpoint> points;
    std::ranges::copy_if(breakpoints(), std::back_inserter(points),
                         [](const Breakpoint& point) { return point.front == 0; });
    return points;
}

bool is_of_memory(BreakpointKind kind) {
    return kind == BreakpointKind::memory_read || kind == BreakpointKind::memory_write ||
           kind == BreakpointKind::memory_access;
}

class BreakpointSection final : public DebugSection {
public:
    const char* title() const override { return "Breakpoints"; }
    const char* keys() const override {
        return "Insert adds  Enter changes  Space on or off  Delete removes";
    }

    void draw(CellPainter& out, const SectionLook& look) override {
        const std::vector<Breakpoint> points = users_breakpoints();
        list.fit(int(points.size()) + 1, out.rows());
        for (int row = 0; row < out.rows(); ++row) {
            const size_t number = size_t(list.first()) + size_t(row);
            if (number > points.size()) break;
            const bool is_cursor = int(number) == list.cursor() && look.focused;
            CellStyle style = is_cursor ? look.cursor() : look.theme.text;
            if (is_cursor) out.clear_row(row, style);
            if (number == points.size()) {
                out.text(0, row, "add: break PLACE or watch PLACE, if EXPRESSION, log \"TEXT\"",
                         is_cursor ? style : look.theme.quiet);
                break;
            }
            const Breakpoint& point = points[number];
            out.text(0, row, point.enabled ? "*" : "o",
                     point.enabled ? look.theme.breakpoint : look.theme.off);
            const int column =
                out.text(2, row, to_the_right(std::to_string(point.number), 2) + " ", style);
            const int behind = out.text(column, row, breakpoint_text(point) + "  ", style);
            out.text(behind, row, std::to_string(point.hits) + (point.hits == 1 ? " hit" : " hits"),
                     is_cursor ? style : look.theme.quiet);
        }
    }

    bool key(const Event& event) override {
        if (list.key(event)) return true;
        switch (event.value) {
        case KEY_INSERT: add(); return true;
        case KEY_RETURN: change(); return true;
        case KEY_DELETE:
            if (const auto point = here()) breakpoint_remove(point->number);
            return true;
        default: return false;
        }
    }
    void type(std::string_view text) override {
        if (text == " ") toggle();
    }
    void click(int column, int row, bool twice) override {
        list.choose(list.first() + row);
        if (column < 2) return toggle();
        if (twice || !here()) change();
    }
    void scroll(int rows) override { list.scroll(rows); }
    std::optional<uint16_t> address() const override {
        const auto point = here();
        if (!point || (point->kind != BreakpointKind::execute && !is_of_memory(point->kind))) {
            return std::nullopt;
        }
        return point->first;
    }
    std::string spoken() const override {
        const auto point = here();
        if (!point) return "add a breakpoint";
        return breakpoint_text(*point) + (point->enabled ? "" : ", off") + ", " +
               std::to_string(point->hits) + " hits";
    }

private:
    std::optional<Breakpoint> here() const {
        const std::vector<Breakpoint> points = users_breakpoints();
        const auto number = size_t(list.cursor());
        if (number >= points.size()) return std::nullopt;
        return points[number];
    }

    void toggle() const {
        auto point = here();
        if (!point) return;
        point->enabled = !point->enabled;
        std::string problem;
        if (!breakpoint_change(*point, problem)) view_tell(problem);
    }

    static void add() {
        view_ask("New:", "break ", [](const std::string& text) {
            const CommandResult result = debugger_command(text);
            if (!result.failed) view_tell(result.text);
            return result.failed ? result.text : std::string();
        });
    }

    void change() const {
        const auto point = here();
        if (!point) return add();
        view_ask("Breakpoint " + std::to_string(point->number) + ":", breakpoint_text(*point),
                 [old = *point](const std::string& text) { return replace(old, text); });
    }

    /// The number stays, and how often it was hit.
    static std::string replace(const Breakpoint& old, const std::string& command) {
        const CommandResult result = debugger_command(command);
        if (result.failed) return result.text;
        if (breakpoints().empty() || breakpoints().back().number == old.number) return {};
        Breakpoint made = breakpoints().back();
        breakpoint_remove(made.number);
        made.number = old.number;
        made.hits = old.hits;
        made.enabled = old.enabled;
        std::string problem;
        breakpoint_change(made, problem);
        return problem;
    }

    RowList list;
};

} // namespace

const Breakpoint* view_breakpoint(BreakpointKind kind, uint16_t address) {
    const auto found = std::ranges::find_if(breakpoints(), [=](const Breakpoint& point) {
        return point.kind == kind && point.front == 0 && point.first == address &&
               point.last == address;
    });
    return found == breakpoints().end() ? nullptr : &*found;
}

void view_toggle_breakpoint(BreakpointKind kind, uint16_t address) {
    if (const Breakpoint* there = view_breakpoint(kind, address)) {
        breakpoint_remove(there->number);
        return;
    }
    Breakpoint made;
    made.kind = kind;
    made.first = made.last = address;
    std::string problem;
    if (!breakpoint_add(made, problem)) view_tell(problem);
}

NewSection new_breakpoint_section() { return std::make_unique<BreakpointSection>(); }
