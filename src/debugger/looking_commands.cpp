#include "debugger/looking_commands.h"

#include "core/machine_events.h"
#include "debugger/debugger.h"
#include "debugger/expression.h"
#include "debugger/peek.h"
#include "debugger/registers.h"
#include "debugger/symbol_files.h"
#include "debugger/symbols.h"
#include "debugger/trace.h"
#include "z80/disassembler.h"
#include "z80/z80.h"

#include <algorithm>

namespace {

constexpr int64_t WHOLE_MEMORY = 0x10000;
constexpr int64_t ROW = 16; ///< bytes of a line
constexpr int64_t MOST_FOUND = 64;
constexpr int64_t MOST_LINES = 4096;

/// Without the debugger there is no past that it could be in.
void change_memory(uint16_t address, const std::vector<uint8_t>& bytes) {
    if (debugger_is_on()) return debugger_poke(address, bytes);
    machine_apply(event_kind::poke, address, 0, shared_bytes(bytes));
}

bool change_register(const std::string& name, uint16_t value) {
    if (debugger_is_on()) return debugger_set_register(name, value);
    z80_registers registers = z80_state;
    if (!set_register(registers, name, value)) return false;
    machine_apply(event_kind::registers, 0, 0, bytes_of(registers));
    return true;
}

CommandResult lines_of(std::string lines) {
    while (lines.ends_with('\n')) lines.pop_back();
    return {.text = std::move(lines)};
}

char printable(uint8_t byte) { return byte >= ' ' && byte <= '~' ? char(byte) : '.'; }

std::string memory_lines(uint16_t address, int64_t count, bool characters) {
    std::string lines;
    for (int64_t at = 0; at < count; at += ROW) {
        lines += formatted("%04X:", uint16_t(address + at));
        std::string text;
        for (int64_t n = at; n < std::min(at + ROW, count); ++n) {
            const uint8_t byte = debug_peek(uint16_t(address + n));
            lines += formatted(" %02X", byte);
            text += printable(byte);
        }
        const auto missing = size_t(ROW) - text.size();
        if (characters) lines += std::string(3 * missing + 2, ' ') + text;
        lines += '\n';
    }
    return lines;
}

std::string flags_text() {
    const char names[] = "SZ5H3PNC";
    std::string text;
    for (int bit = 7; bit >= 0; --bit) text += z80_state.af >> bit & 1 ? names[7 - bit] : '-';
    return text;
}

std::string register_lines() {
    const z80_record& s = z80_state;
    return formatted("PC=%04X SP=%04X AF=%04X BC=%04X DE=%04X HL=%04X IX=%04X IY=%04X\n", s.pc,
                     s.sp, s.af, s.bc, s.de, s.hl, s.ix, s.iy) +
           formatted("AF'=%04X BC'=%04X DE'=%04X HL'=%04X I=%02X R=%02X IM=%d IFF1=%d IFF2=%d ",
                     s.af_alt, s.bc_alt, s.de_alt, s.hl_alt, s.i, s.r, s.interrupt_mode, s.iff1,
                     s.iff2) +
           flags_text();
}

struct NewRegister {
    std::string name;
    uint16_t value = 0;
};

/// Takes NAME=VALUE.
NewRegister new_register(CommandWords& words) {
    const std::string_view word = words.take();
    const size_t equals = word.find('=');
    const std::string name(word.substr(0, equals));
    std::string problem;
    if (equals == std::string_view::npos || !Expression::parse(name, nullptr, problem)) {
        words.fail(std::string(word) + ": not NAME=VALUE with the name of a register");
        return {};
    }
    return {name, words.address_in(word.substr(equals + 1))};
}

std::string stack_line(uint16_t at) {
    const uint16_t word = debug_peek_word(at);
    std::string line = formatted("%04X: %04X", at, word) + named(word);
    if (const auto call = debug_call_before(word)) {
        line += formatted("  returns behind %04X", *call) + named(*call);
    }
    return line + "\n";
}

} // namespace

std::string named(uint16_t address) {
    const std::string name = debugger_symbols().near(address);
    return name.empty() ? name : " (" + name + ")";
}

CommandResult command_regs(CommandWords& words) {
    std::vector<NewRegister> changes;
    while (!words.empty()) changes.push_back(new_register(words));
    if (!words.acts()) return words.refusal();
    for (const NewRegister& change : changes) {
        if (change_register(change.name, change.value)) continue;
        return {.text = change.name + " is no register", .failed = true};
    }
    return {.text = changes.empty() ? register_lines() : std::string()};
}

CommandResult command_peek(CommandWords& words) {
    const uint16_t address = words.address();
    const int64_t count = words.number("the count", 1, WHOLE_MEMORY, 1);
    return words.acts() ? lines_of(memory_lines(address, count, false)) : words.refusal();
}

CommandResult command_dump(CommandWords& words) {
    const uint16_t address = words.address();
    const int64_t count = words.number("the count", 1, WHOLE_MEMORY, 8 * ROW);
    return words.acts() ? lines_of(memory_lines(address, count, true)) : words.refusal();
}

CommandResult command_poke(CommandWords& words) {
    const uint16_t address = words.address();
    const std::vector<uint8_t> bytes = words.bytes();
    if (!words.acts()) return words.refusal();
    change_memory(address, bytes);
    return {};
}

CommandResult command_fill(CommandWords& words) {
    const CommandWords::Range range = words.range();
    const std::vector<uint8_t> pattern = words.bytes();
    if (!words.acts()) return words.refusal();
    std::vector<uint8_t> bytes(size_t(range.last - range.first) + 1);
    for (size_t n = 0; n < bytes.size(); ++n) bytes[n] = pattern[n % pattern.size()];
    change_memory(range.first, bytes);
    return {};
}

CommandResult command_find(CommandWords& words) {
    const CommandWords::Range range = words.range();
    const std::vector<uint8_t> wanted = words.bytes();
    if (!words.acts()) return words.refusal();
    std::string lines;
    int64_t found = 0;
    for (int64_t at = range.first; at + int64_t(wanted.size()) <= range.last + 1; ++at) {
        size_t same = 0;
        while (same < wanted.size() && debug_peek(uint16_t(at + int64_t(same))) == wanted[same]) {
            ++same;
        }
        if (same < wanted.size() || ++found > MOST_FOUND) continue;
        lines += formatted("%04X", uint16_t(at)) + named(uint16_t(at)) + "\n";
    }
    if (found > MOST_FOUND) lines += std::to_string(found - MOST_FOUND) + " more\n";
    return lines_of(found ? lines : "not found");
}

CommandResult command_disasm(CommandWords& words) {
    uint16_t address = words.empty() ? z80_state.pc : words.address();
    const int64_t count = words.number("the count", 1, MOST_LINES, 10);
    if (!words.acts()) return words.refusal();
    std::string lines;
    char line[DISASSEMBLY_LINE];
    for (int64_t n = 0; n < count; ++n) {
        const std::string label = debugger_symbols().name_at(address);
        if (!label.empty()) lines += label + ":\n";
        const bool is_next = address == z80_state.pc;
        address = disassemble_by(debug_peek, address, line);
        lines += (is_next ? ">" : " ") + std::string(line + 1) + "\n";
    }
    return lines_of(lines);
}

CommandResult command_print(CommandWords& words) {
    const std::string expression = words.rest("an expression");
    const size_t colon = expression.rfind(':');
    const bool has_form = colon != std::string::npos && colon + 2 == expression.size();
    std::string format = "{" + expression + "}";
    if (!has_form) format += " = {" + expression + ":x}h";
    std::string problem;
    const auto text = LogText::parse(format, &debugger_symbols(), problem);
    if (!text) words.judge(problem);
    if (!words.acts()) return words.refusal();
    return {.text = text->text(debugger_context())};
}

CommandResult command_stack(CommandWords& words) {
    const int64_t count = words.number("the count", 1, MOST_LINES, 8);
    if (!words.acts()) return words.refusal();
    std::string lines;
    for (int64_t n = 0; n < count; ++n) lines += stack_line(uint16_t(z80_state.sp + 2 * n));
    return lines_of(lines);
}

CommandResult command_calls(CommandWords& words) {
    const int64_t count = words.number("the count", 1, MOST_LINES, 8);
    if (!words.acts()) return words.refusal();
    std::string lines;
    for (const DebugCall& call : debugger_calls(size_t(count))) {
        lines += formatted("%04X", call.target) + named(call.target) +
                 formatted(call.is_interrupt ? " interrupted %04X" : " called by %04X", call.call) +
                 named(call.call) + (call.is_traced ? "\n" : ", perhaps\n");
    }
    return lines_of(lines.empty() ? "in no subroutine" : lines);
}

CommandResult command_trace(CommandWords& words) {
    const auto count = size_t(words.number("the count", 1, LONGEST_TRACE, 20));
    if (!words.acts()) return words.refusal();
    const std::vector<TraceStep>& steps = debugger_trace(count);
    std::string lines;
    for (size_t n = steps.size() - std::min(count, steps.size()); n < steps.size(); ++n) {
        const z80_registers& s = steps[n].registers;
        lines += formatted("%11lld%-32s AF=%04X BC=%04X DE=%04X HL=%04X SP=%04X\n",
                           static_cast<long long>(steps[n].cycle), trace_text(steps[n]).c_str(),
                           s.af, s.bc, s.de, s.hl, s.sp);
    }
    return lines_of(lines.empty() ? "no history" : lines);
}

CommandResult command_symbols(CommandWords& words) {
    const std::string path = words.empty() ? std::string() : words.text("FILE");
    if (!words.acts()) return words.refusal();
    SymbolTable& symbols = debugger_symbols();
    if (!path.empty()) {
        const std::string problem = load_symbol_file(path, symbols);
        if (!problem.empty()) return {.text = problem, .failed = true};
    }
    return {.text = std::to_string(symbols.size()) + " symbols"};
}

CommandResult command_symbol(CommandWords& words) {
    constexpr size_t MOST_NAMES = 32;
    const std::string name = words.text("NAME");
    if (!words.acts()) return words.refusal();
    const SymbolTable& symbols = debugger_symbols();
    const auto value = symbols.value_of(name);
    if (value) return {.text = name + formatted(" = %04X", *value)};
    std::string lines;
    for (const std::string& found : symbols.names(name, MOST_NAMES)) {
        lines += found + formatted(" = %04X\n", symbols.value_of(found).value_or(0));
    }
    if (lines.empty()) return {.text = name + " is no symbol", .failed = true};
    return lines_of(lines);
}
