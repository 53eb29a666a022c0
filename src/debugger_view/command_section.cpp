#include "debugger/commands.h"
#include "debugger/symbols.h"
#include "debugger_view/line_edit.h"
#include "debugger_view/section.h"
#include "debugger_view/services.h"
#include "platform/keyboard.h"

#include <algorithm>
#include <deque>
#include <string>
#include <vector>

namespace {

constexpr size_t MOST_LINES = 2000, MOST_COMMANDS = 200;

struct PrintedLine {
    std::string text;
    bool is_command = false;
};
/// Kept while the window is closed.
struct {
    std::deque<PrintedLine> lines;
    std::vector<std::string> commands; ///< that were given, the last one last
} printed;

void print(const std::string& text, bool is_command) {
    for (size_t at = 0; at <= text.size();) {
        const size_t end = std::min(text.find('\n', at), text.size());
        printed.lines.push_back({text.substr(at, end - at), is_command});
        at = end + 1;
    }
    while (printed.lines.size() > MOST_LINES) printed.lines.pop_front();
}

class CommandSection final : public DebugSection {
public:
    const char* title() const override { return "Commands"; }
    const char* keys() const override {
        return "Enter does it  Up Down earlier ones  Page Up scrolls  help lists all";
    }

    void draw(CellPainter& out, const SectionLook& look) override {
        rows = std::max(out.rows() - 1, 0);
        back = std::clamp(back, 0, std::max(int(printed.lines.size()) - rows, 0));
        const int shown = std::min(rows, int(printed.lines.size()));
        const int first = int(printed.lines.size()) - back - shown;
        for (int row = 0; row < shown; ++row) {
            const PrintedLine& line = printed.lines[size_t(first) + size_t(row)];
            out.text(0, row, line.text, line.is_command ? look.theme.name : look.theme.text);
        }
        const int column = out.text(0, out.rows() - 1, "> ", look.theme.name);
        edit.draw(out, column, out.rows() - 1, look.theme.text,
                  look.focused ? look.theme.cursor : look.theme.rest);
    }

    bool key(const Event& event) override {
        if (event.modifiers & MODIFIER_CONTROL) return false;
        switch (event.value) {
        case KEY_RETURN: obey(); return true;
        case KEY_UP: return recall(-1);
        case KEY_DOWN: return recall(1);
        case KEY_PAGE_UP: back += rows; return true;
        case KEY_PAGE_DOWN: back -= rows; return true;
        default: return edit.key(event);
        }
    }
    void type(std::string_view text) override { edit.type(text); }
    void scroll(int count) override { back -= count; }
    std::string spoken() const override {
        const std::string last = printed.lines.empty() ? "" : printed.lines.back().text;
        return edit.text().empty() ? last : edit.text();
    }

private:
    void obey() {
        const std::string line = edit.text();
        edit.set({});
        back = 0;
        print("> " + line, true);
        if (line.empty()) return;
        if (printed.commands.empty() || printed.commands.back() != line) {
            printed.commands.push_back(line);
        }
        if (printed.commands.size() > MOST_COMMANDS) {
            printed.commands.erase(printed.commands.begin());
        }
        recalled = printed.commands.size();
        const auto answer = [line] {
            const CommandResult result = debugger_command(line);
            if (!result.text.empty()) print(result.text, false);
        };
        if (changes_machine(line)) return view_change(answer);
        answer();
    }

    static bool changes_machine(const std::string& line) {
        const DebuggerCommand* command = debugger_command_of(line);
        if (!command) return false;
        const bool sets = line.find('=') != std::string::npos;
        return command->name == "poke" || command->name == "fill" ||
               (command->name == "regs" && sets);
    }

    bool recall(int by) {
        const size_t count = printed.commands.size();
        recalled = std::min(recalled, count);
        if (by < 0 && recalled == 0) return true;
        recalled = std::min(recalled + size_t(by), count);
        edit.set(recalled < count ? printed.commands[recalled] : std::string());
        return true;
    }

    LineEdit edit;
    size_t recalled = MOST_COMMANDS;
    int back = 0; ///< rows that the view is scrolled back
    int rows = 1;
};

} // namespace

void view_print(const std::string& lines) { print(lines, false); }

NewSection new_command_section() { return std::make_unique<CommandSection>(); }
