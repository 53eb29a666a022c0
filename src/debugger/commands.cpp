#include "debugger/commands.h"

#include "debugger/breakpoints.h"
#include "debugger/command_words.h"
#include "debugger/debugger.h"
#include "debugger/looking_commands.h"
#include "debugger/peek.h"
#include "debugger/symbols.h"
#include "z80/disassembler.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>
#include <limits>

namespace {

constexpr int64_t MOST_STEPS = 10'000;
constexpr int64_t LAST_MOMENT = std::numeric_limits<int64_t>::max();

// ---- breakpoints -------------------------------------------------------------------------------

/// Takes what may stand behind the place of a breakpoint.
void take_options(CommandWords& words, Breakpoint& point) {
    for (;;) {
        if (words.take_if("if")) {
            point.condition = words.expression({"log", "count", "once"});
        } else if (words.take_if("log")) {
            point.action = BreakpointAction::log;
            point.text = words.text("the text to log");
        } else if (words.take_if("count")) {
            point.action = BreakpointAction::count;
        } else if (words.take_if("once")) {
            point.once = true;
        } else {
            return;
        }
    }
}

CommandResult add_breakpoints(CommandWords& words, std::vector<Breakpoint> points) {
    Breakpoint options;
    take_options(words, options);
    if (!words.acts()) return words.refusal();
    CommandResult result;
    for (Breakpoint& point : points) {
        point.condition = options.condition;
        point.action = options.action;
        point.text = options.text;
        point.once = options.once;
        std::string problem;
        point.number = breakpoint_add(point, problem);
        if (!point.number) return {.text = problem, .failed = true};
        if (!result.text.empty()) result.text += '\n';
        result.text += "Breakpoint " + std::to_string(point.number) + ": " + breakpoint_text(point);
    }
    return result;
}

Breakpoint over_range(BreakpointKind kind, CommandWords::Range range) {
    Breakpoint point;
    point.kind = kind;
    point.first = range.first;
    point.last = range.last;
    return point;
}

/// At the number that follows, `what`.
Breakpoint at_number(CommandWords& words, BreakpointKind kind, std::string_view what) {
    constexpr int64_t MOST_LINES = 1000;
    Breakpoint point;
    point.kind = kind;
    point.at = words.number(what, 0, kind == BreakpointKind::line ? MOST_LINES : LAST_MOMENT);
    return point;
}

/// [read|write] PORT[-PORT]
std::vector<Breakpoint> port_breakpoints(CommandWords& words) {
    const bool reads = words.take_if("read");
    const bool writes = !reads && words.take_if("write");
    const CommandWords::Range range = words.range();
    if (range.last > UINT8_MAX) words.fail("ports are from 0 to FF");
    std::vector<Breakpoint> points;
    if (!writes) points.push_back(over_range(BreakpointKind::port_read, range));
    if (!reads) points.push_back(over_range(BreakpointKind::port_write, range));
    return points;
}

CommandResult command_break(CommandWords& words) {
    using enum BreakpointKind;
    if (words.take_if("port")) {
        const std::vector<Breakpoint> points = port_breakpoints(words);
        return add_breakpoints(words, points);
    }
    if (words.take_if("interrupt")) return add_breakpoints(words, {over_range(interrupt, {})});
    if (words.take_if("cycle"))
        return add_breakpoints(words, {at_number(words, cycle, "the cycle")});
    if (words.take_if("frame"))
        return add_breakpoints(words, {at_number(words, frame, "the frame")});
    if (words.take_if("line")) return add_breakpoints(words, {at_number(words, line, "the line")});
    words.take_if("execute");
    const CommandWords::Range range = words.range();
    return add_breakpoints(words, {over_range(execute, range)});
}

bool are_options(std::string_view word) {
    constexpr std::array options = {"if", "log", "count", "once"};
    return std::ranges::find(options, word) != options.end();
}

CommandResult command_watch(CommandWords& words) {
    BreakpointKind kind = BreakpointKind::memory_write;
    if (words.take_if("read")) {
        kind = BreakpointKind::memory_read;
    } else if (words.take_if("access")) {
        kind = BreakpointKind::memory_access;
    } else {
        words.take_if("write");
    }
    std::vector<Breakpoint> points = {over_range(kind, words.range())};
    while (!words.empty() && !are_options(words.peek())) {
        points.push_back(over_range(kind, words.range()));
    }
    return add_breakpoints(words, points);
}

std::string list_line(const Breakpoint& point) {
    std::string line = std::to_string(point.number) + ": " + breakpoint_text(point);
    if (!point.enabled) line += ", off";
    if (point.hits) line += ", " + std::to_string(point.hits) + " hits";
    return line;
}

CommandResult command_list(CommandWords& words) {
    if (!words.acts()) return words.refusal();
    CommandResult result;
    for (const Breakpoint& point : breakpoints()) {
        if (point.front != 0) continue;
        if (!result.text.empty()) result.text += '\n';
        result.text += list_line(point);
    }
    if (result.text.empty()) result.text = "no breakpoints";
    return result;
}

/// The user's breakpoints of these numbers, or all.
std::vector<Breakpoint> chosen(CommandWords& words, CommandResult& result) {
    std::vector<Breakpoint> points;
    const bool all = words.take_if("all");
    std::vector<int64_t> numbers;
    while (!all && (numbers.empty() || !words.empty())) {
        numbers.push_back(words.number("the number of a breakpoint", 1, INT32_MAX));
    }
    if (!words.acts()) {
        result = words.refusal();
        return points;
    }
    for (const Breakpoint& point : breakpoints()) {
        const bool is_named = std::ranges::find(numbers, point.number) != numbers.end();
        if (point.front == 0 && (all || is_named)) points.push_back(point);
    }
    if (points.size() < numbers.size()) result = {"there is no such breakpoint", true};
    return points;
}

CommandResult command_delete(CommandWords& words) {
    CommandResult result;
    for (const Breakpoint& point : chosen(words, result)) breakpoint_remove(point.number);
    return result;
}

CommandResult enable(CommandWords& words, bool on) {
    CommandResult result;
    for (Breakpoint& point : chosen(words, result)) {
        point.enabled = on;
        breakpoint_change(point, result.text);
    }
    return result;
}

CommandResult command_enable(CommandWords& words) { return enable(words, true); }
CommandResult command_disable(CommandWords& words) { return enable(words, false); }

// ---- going -------------------------------------------------------------------------------------

void have_it_stand() {
    if (!debugger_stands()) debugger_stop();
}

/// Does it `count` times, unless something else than a step ends it.
CommandResult go_times(CommandWords& words, void (*act)()) {
    const int64_t count = words.number("the count", 1, MOST_STEPS, 1);
    if (!words.acts()) return words.refusal();
    have_it_stand();
    for (int64_t n = 1; n <= count; ++n) {
        act();
        if (n == count) break;
        while (debugger_turn()) continue;
        if (!debugger_stands() || debugger_last_stop().reason != StopReason::step) break;
    }
    return {.goes = true};
}

CommandResult go_now(CommandWords& words, void (*act)()) {
    if (!words.acts()) return words.refusal();
    act();
    return {.goes = true};
}

CommandResult go_from_here(CommandWords& words, void (*act)()) {
    if (!words.acts()) return words.refusal();
    have_it_stand();
    act();
    return {.goes = true};
}

CommandResult go_to_address(CommandWords& words, void (*act)(uint16_t)) {
    const uint16_t address = words.address();
    if (!words.acts()) return words.refusal();
    have_it_stand();
    act(address);
    return {.goes = true};
}

CommandResult go_to_moment(CommandWords& words, void (*act)(int64_t)) {
    const int64_t moment = words.number("the moment", 0, LAST_MOMENT);
    if (!words.acts()) return words.refusal();
    act(moment);
    return {.goes = true};
}

CommandResult command_step(CommandWords& words) { return go_times(words, debugger_step); }
CommandResult command_over(CommandWords& words) { return go_from_here(words, debugger_step_over); }
CommandResult command_out(CommandWords& words) { return go_from_here(words, debugger_step_out); }
CommandResult command_go(CommandWords& words) { return go_now(words, debugger_go); }
CommandResult command_stop(CommandWords& words) { return go_now(words, debugger_stop); }
CommandResult command_to(CommandWords& words) { return go_to_address(words, debugger_run_to); }
CommandResult command_present(CommandWords& words) { return go_now(words, debugger_to_present); }

CommandResult command_back(CommandWords& words) {
    if (words.take_if("over")) return go_times(words, debugger_back_over);
    if (words.take_if("out")) return go_times(words, debugger_back_out);
    if (words.take_if("go")) return go_now(words, debugger_back_go);
    if (words.take_if("to")) return go_to_address(words, debugger_back_to);
    if (words.take_if("write")) return go_to_address(words, debugger_back_to_write);
    if (words.take_if("frame")) return go_to_moment(words, debugger_to_frame);
    if (words.take_if("cycle")) return go_to_moment(words, debugger_to_cycle);
    words.take_if("step");
    return go_times(words, debugger_back_step);
}

CommandResult command_branch(CommandWords& words) {
    if (!words.acts()) return words.refusal();
    debugger_branch();
    return {};
}

CommandResult command_where(CommandWords& words) {
    if (!words.acts()) return words.refusal();
    return {.text = debugger_stop_text()};
}

// ---- the table ---------------------------------------------------------------------------------

using Act = CommandResult (*)(CommandWords& words);
CommandResult command_help(CommandWords& words);

struct Row {
    DebuggerCommand command;
    Act act;
};

constexpr bool ANY_TIME = false;
constexpr bool NEEDS_DEBUGGER = true;

constexpr auto command_rows = std::to_array<Row>({
    {{"help", "", "[COMMAND]", "shows all commands, or one", ANY_TIME}, command_help},
    {{"regs", "r", "[NAME=VALUE...]", "shows the registers, or changes some", ANY_TIME},
     command_regs},
    {{"peek", "", "ADDRESS [COUNT]", "shows bytes", ANY_TIME}, command_peek},
    {{"dump", "m", "ADDRESS [COUNT]", "shows bytes and characters", ANY_TIME}, command_dump},
    {{"poke", "", "ADDRESS BYTES", "changes memory: poke 4400 2A 10+3 \"TEXT\"", ANY_TIME},
     command_poke},
    {{"fill", "", "FIRST-LAST BYTES", "fills memory with the bytes, again and again", ANY_TIME},
     command_fill},
    {{"find", "", "FIRST-LAST BYTES", "looks for the bytes", ANY_TIME}, command_find},
    {{"disasm", "d", "[ADDRESS] [COUNT]", "lists instructions, at first from PC on", ANY_TIME},
     command_disasm},
    {{"print", "p", "EXPRESSION[:d|x|b|c|s]",
      "shows a value: decimal, hexadecimal, binary, as a character, as a symbol", ANY_TIME},
     command_print},
    {{"stack", "k", "[COUNT]", "shows words of the stack, and which may be returns", ANY_TIME},
     command_stack},
    {{"calls", "c", "[COUNT]", "shows the subroutines that have not returned, the innermost first",
      NEEDS_DEBUGGER},
     command_calls},
    {{"trace", "", "[COUNT]", "shows the last instructions, at most 65536", NEEDS_DEBUGGER},
     command_trace},
    {{"symbols", "", "[FILE]", "loads a symbol file, and counts the symbols", ANY_TIME},
     command_symbols},
    {{"symbol", "", "NAME", "shows a symbol, or those that begin so", ANY_TIME}, command_symbol},
    {{"break", "b", "PLACE [if EXPRESSION] [log \"TEXT\"|count] [once]",
      "stops at FIRST[-LAST], port [read|write] FIRST[-LAST], interrupt, cycle N, frame N or"
      " line N; log goes on and writes the text with {values}, count only counts",
      NEEDS_DEBUGGER},
     command_break},
    {{"watch", "w", "[write|read|access] FIRST[-LAST]... [as with break]",
      "stops behind the instruction that writes or reads there", NEEDS_DEBUGGER},
     command_watch},
    {{"list", "l", "", "shows the breakpoints with their numbers", NEEDS_DEBUGGER}, command_list},
    {{"delete", "", "all|NUMBER...", "removes breakpoints", NEEDS_DEBUGGER}, command_delete},
    {{"enable", "", "all|NUMBER...", "switches breakpoints on", NEEDS_DEBUGGER}, command_enable},
    {{"disable", "", "all|NUMBER...", "switches breakpoints off", NEEDS_DEBUGGER}, command_disable},
    {{"step", "s", "[COUNT]", "runs one instruction", NEEDS_DEBUGGER}, command_step},
    {{"over", "n", "", "runs one instruction, calls as a whole", NEEDS_DEBUGGER}, command_over},
    {{"out", "o", "", "runs to behind the return of this subroutine", NEEDS_DEBUGGER}, command_out},
    {{"go", "g", "", "runs to the next hit of a breakpoint", NEEDS_DEBUGGER}, command_go},
    {{"stop", "", "", "stops", NEEDS_DEBUGGER}, command_stop},
    {{"to", "t", "ADDRESS", "runs to the address", NEEDS_DEBUGGER}, command_to},
    {{"back", "", "[step|over|out] [COUNT] | go | to ADDRESS | write ADDRESS | frame N | cycle N",
      "goes back: by instructions, to before the call, to the last hit, to the last time at an"
      " address, to the last write of a byte, to a moment",
      NEEDS_DEBUGGER},
     command_back},
    {{"present", "", "", "comes back from the past", NEEDS_DEBUGGER}, command_present},
    {{"branch", "", "", "goes on from here in the past: what came after is forgotten",
      NEEDS_DEBUGGER},
     command_branch},
    {{"where", "", "", "shows why the machine stands, and where", ANY_TIME}, command_where},
});

constexpr auto command_table = [] {
    std::array<DebuggerCommand, command_rows.size()> commands;
    for (size_t n = 0; n < command_rows.size(); ++n) commands[n] = command_rows[n].command;
    return commands;
}();

const Row* row_of(const std::string& name) {
    const auto* const row = std::ranges::find_if(command_rows, [&](const Row& candidate) {
        const DebuggerCommand& known = candidate.command;
        return name == known.name || (!name.empty() && name == known.letter);
    });
    return row == command_rows.end() ? nullptr : row;
}

std::string help_line(const DebuggerCommand& command) {
    std::string line(command.name);
    if (!command.letter.empty()) line += ", " + std::string(command.letter);
    if (!command.arguments.empty()) line += " " + std::string(command.arguments);
    return line + "\n    " + std::string(command.text);
}

CommandResult command_help(CommandWords& words) {
    const std::string name = words.empty() ? std::string() : words.text("COMMAND");
    const Row* const row = row_of(name);
    if (!name.empty() && !row) words.fail(name + ": there is no such command");
    if (!words.acts()) return words.refusal();
    if (row) return {.text = help_line(row->command)};
    std::string lines;
    for (const DebuggerCommand& command : command_table) {
        lines += (lines.empty() ? "" : "\n") + help_line(command);
    }
    return {.text = lines};
}

CommandResult obey(std::string_view line, bool checks_only) {
    CommandWords words(line, checks_only);
    if (words.empty()) return {};
    const std::string name = words.text("a command");
    const Row* const row = row_of(name);
    if (!row) return {.text = name + ": unknown command; help lists them", .failed = true};
    if (!checks_only && row->command.needs_debugger && !debugger_is_on()) {
        return {.text = name + ": the debugger is off", .failed = true};
    }
    return row->act(words);
}

} // namespace

CommandResult debugger_command(std::string_view line) { return obey(line, false); }
std::string debugger_command_problem(std::string_view line) { return obey(line, true).text; }
std::span<const DebuggerCommand> debugger_commands() { return command_table; }

const DebuggerCommand* debugger_command_of(std::string_view line) {
    CommandWords words(line);
    if (words.empty()) return nullptr;
    const Row* const row = row_of(words.text("a command"));
    return row ? &row->command : nullptr;
}

std::string debugger_stop_text() {
    const uint16_t pc = z80_state.pc;
    std::string text = debugger_last_stop().text;
    if (!text.empty()) text += '\n';
    text += formatted("PC %04X", pc) + named(pc);
    if (const auto source = debugger_symbols().line_of(pc)) {
        text += ", " + source->file + ":" + std::to_string(source->line);
    }
    const ExpressionContext now = debugger_context();
    text += ", frame " + std::to_string(now.frame) + ", cycle " + std::to_string(now.cycle) +
            ", line " + std::to_string(now.line);
    if (debugger_is_in_past()) text += ", in the past";
    char line[DISASSEMBLY_LINE];
    disassemble_by(debug_peek, pc, line);
    return text + "\n>" + (line + 1);
}
