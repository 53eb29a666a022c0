#include "debugger/debugger.h"
#include "debugger/source_text.h"
#include "debugger/symbols.h"
#include "debugger_view/actions.h"
#include "debugger_view/view_state.h"
#include "platform/keyboard.h"
#include "z80/z80.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int PROGRESS_CELLS = 20;

std::string button_text(const DebugAction& action) { return " " + std::string(action.label) + " "; }

void draw_buttons(CellPainter& out, const ViewTheme& theme) {
    out.clear_row(0, theme.bar);
    int column = 0;
    for (const DebugAction& action : debug_actions()) {
        if (!action.label) continue;
        const CellStyle style = action.possible() ? theme.button : theme.no_button;
        column = out.text(column, 0, button_text(action), style) + 1;
    }
}

} // namespace

void view_click_button(int column) {
    int left = 0;
    for (const DebugAction& action : debug_actions()) {
        if (!action.label) continue;
        const int width = int(button_text(action).size());
        if (column >= left && column < left + width) return action.act();
        left += width + 1;
    }
}

std::string view_state_text() {
    if (!debugger_stands()) return "Runs";
    const uint16_t pc = z80_state.pc;
    const std::string name = debugger_symbols().near(pc);
    const std::string place = hex(pc, 4) + (name.empty() ? "" : " " + name);
    std::string text = debugger_last_stop().text;
    if (text.empty()) text = "Stands";
    text += ", at " + place;
    if (const auto line = debugger_symbols().line_of(pc)) {
        text += ", " + line->file + ":" + std::to_string(line->line) + "  " +
                source_text(*line, debugger_symbols());
    }
    return text;
}

void view_draw_above(CellPainter& out, const ViewTheme& theme) {
    draw_buttons(out, theme);
    out.clear_row(1, theme.bar);
    if (const auto progress = debugger_progress()) {
        const int done = std::clamp(int(*progress * PROGRESS_CELLS), 0, PROGRESS_CELLS);
        int column = out.text(1, 1, "Working ", theme.bar);
        for (int n = 0; n < PROGRESS_CELLS; ++n) {
            column = out.text(column, 1, " ", n < done ? theme.focus : theme.front);
        }
        const int percent = std::clamp(int(*progress * 100), 0, 100);
        out.text(column + 1, 1, std::to_string(percent) + " %  Esc gives it up", theme.bar);
        return;
    }
    int column = 1;
    if (debugger_is_in_past()) column = out.text(0, 1, " PAST ", theme.past) + 1;
    out.text(column, 1, view_state_text(), theme.bar);
}

void view_draw_below(CellPainter& out, const ViewTheme& theme, const std::string& told,
                     const std::string& hints) {
    const int row = out.rows() - 1;
    const auto& prompt = view_prompt();
    if (!prompt) {
        const CellStyle style = told.empty() ? theme.bar : theme.front;
        out.clear_row(row, style);
        out.text(1, row, told.empty() ? hints : told, style);
        return;
    }
    const bool is_question = bool(prompt->yes);
    const CellStyle style = is_question ? theme.trouble : theme.text;
    out.clear_row(row, style);
    int column = out.text(0, row, " " + prompt->label + " ", is_question ? style : theme.focus);
    if (is_question) return;
    const int room = out.columns() - column;
    if (!prompt->problem.empty() && room > 24) {
        const std::string problem = " " + prompt->problem.substr(0, size_t(room) / 2) + " ";
        CellPainter edit(out, {0, row, out.columns() - int(problem.size()), row + 1});
        prompt->edit.draw(edit, column + 1, 0, theme.text, theme.cursor);
        out.text(out.columns() - int(problem.size()), row, problem, theme.trouble);
        return;
    }
    prompt->edit.draw(out, column + 1, row, theme.text, theme.cursor);
}

bool view_prompt_take(const Event& event) {
    auto& prompt = view_prompt();
    if (event.kind == Event::Kind::text) {
        if (!prompt->yes) {
            prompt->edit.type(event.text);
            prompt->problem.clear();
        } else if (event.text == "y" || event.text == "Y") {
            const auto act = std::exchange(prompt, std::nullopt)->yes;
            act();
        } else if (event.text == "n" || event.text == "N") {
            prompt.reset();
        }
        return true;
    }
    if (event.kind != Event::Kind::key_down) return false;
    if (event.value == KEY_ESCAPE) {
        prompt.reset();
    } else if (event.value == KEY_RETURN && !prompt->yes) {
        // What is done with the answer may ask for more.
        ViewPrompt answered = *std::exchange(prompt, std::nullopt);
        answered.problem = answered.done(answered.edit.text());
        if (!answered.problem.empty()) prompt = std::move(answered);
    } else {
        prompt->edit.key(event);
    }
    return true;
}
