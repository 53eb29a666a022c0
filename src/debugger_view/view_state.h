#pragma once
/// What the debugger's window is showing, for the sources that it is made of.

#include "debugger_view/layout.h"
#include "debugger_view/line_edit.h"
#include "debugger_view/section.h"
#include "debugger_view/services.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

DebugSection& view_section(SectionId section);
SectionId view_focused();

/// A line at the bottom that waits for an answer: a text, or yes or no.
struct ViewPrompt {
    std::string label;
    LineEdit edit = LineEdit();
    std::function<std::string(const std::string&)> done = {}; ///< of a text
    std::function<void()> yes = {};                           ///< of a question, else none
    std::string problem = {};                                 ///< with the answer that was given
};
/// None while nothing is asked.
std::optional<ViewPrompt>& view_prompt();
/// Whether the prompt took the event. There must be one.
bool view_prompt_take(const Event& event);

// ---- the rows above and below the sections -----------------------------------------------------

constexpr int ROWS_ABOVE = 2, ROWS_BELOW = 1;

/// Buttons and state.
void view_draw_above(CellPainter& out, const ViewTheme& theme);
/// Prompt, message or hints.
void view_draw_below(CellPainter& out, const ViewTheme& theme, const std::string& told,
                     const std::string& hints);
/// A click into the row of buttons.
void view_click_button(int column);
/// Why and where the machine stands, or that it runs.
std::string view_state_text();
