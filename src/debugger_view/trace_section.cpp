#include "debugger/debugger.h"
#include "debugger/trace.h"
#include "debugger_view/row_list.h"
#include "debugger_view/section.h"
#include "debugger_view/services.h"
#include "platform/keyboard.h"
#include "time/history.h"
#include "z80/z80.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace {

constexpr size_t FIRST_STEPS = 500; ///< more are looked for when the list is moved up to its top
constexpr int REGISTERS_COLUMN = 34;

/// The newest instruction is the last row. As long as the machine stands it shows the same.
class TraceSection final : public DebugSection {
public:
    const char* title() const override { return "Trace"; }
    const char* keys() const override { return "Enter shows the instruction  Home further back"; }

    void draw(CellPainter& out, const SectionLook& look) override {
        if (!debugger_stands() || !history_is_kept()) {
            const char* const why = history_is_kept() ? "The machine runs." : "No history is kept.";
            out.text(0, 0, why, look.theme.quiet);
            return;
        }
        list.fit(int(steps.size()), out.rows());
        if (is_new) list.choose(int(steps.size()) - 1);
        is_new = false;
        list.fit(int(steps.size()), out.rows());
        for (int row = 0; row < out.rows() && list.first() + row < int(steps.size()); ++row) {
            draw_row(out, look, row);
        }
    }

    bool key(const Event& event) override {
        const bool was_at_top = list.cursor() == 0;
        if (list.key(event)) {
            const bool grows = was_at_top && list.cursor() == 0 && wanted < LONGEST_TRACE;
            if (grows) wanted = std::min(4 * wanted, LONGEST_TRACE);
            return true;
        }
        if (event.value != KEY_RETURN) return false;
        if (address()) view_show_listing(*address());
        return true;
    }
    void click(int /*column*/, int row, bool twice) override {
        list.choose(list.first() + row);
        if (twice && address()) view_show_listing(*address());
    }
    void scroll(int rows) override { list.scroll(rows); }
    void stood() override {
        wanted = FIRST_STEPS;
        known = 0;
    }
    /// It takes some milliseconds for a few instructions, and forty for all.
    void look() override {
        if (known == wanted || !debugger_stands() || !history_is_kept()) return;
        const size_t before = steps.size();
        steps = debugger_trace(wanted);
        is_new = std::exchange(known, wanted) == 0;
        if (!is_new) list.move_by(int(steps.size()) - int(before));
    }
    std::optional<uint16_t> address() const override {
        const auto number = size_t(list.cursor());
        if (number >= steps.size()) return std::nullopt;
        return steps[number].registers.pc;
    }
    std::string spoken() const override {
        const auto number = size_t(list.cursor());
        if (number >= steps.size()) return {};
        return trace_text(steps[number]);
    }

private:
    void draw_row(CellPainter& out, const SectionLook& look, int row) const {
        const int number = list.first() + row;
        const TraceStep& step = steps[size_t(number)];
        const z80_registers& at = step.registers;
        CellStyle text = look.theme.text, quiet = look.theme.quiet;
        if (number == list.cursor()) out.clear_row(row, text = quiet = look.cursor());
        const int behind = out.text(0, row, trace_text(step), text);
        const std::string registers = "AF " + hex(at.af, 4) + " BC " + hex(at.bc, 4) + " DE " +
                                      hex(at.de, 4) + " HL " + hex(at.hl, 4) + " SP " +
                                      hex(at.sp, 4) + " cycle " + std::to_string(step.cycle);
        out.text(std::max(behind + 1, REGISTERS_COLUMN), row, registers, quiet);
    }

    std::vector<TraceStep> steps;
    size_t wanted = FIRST_STEPS, known = 0;
    bool is_new = false; ///< the newest gets the cursor
    RowList list;
};

} // namespace

NewSection new_trace_section() { return std::make_unique<TraceSection>(); }
