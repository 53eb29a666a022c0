#include "debugger/source.h"

#include "debugger/code_trace.h"
#include "debugger/formatted.h"
#include "debugger/peek.h"
#include "files/file_names.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <set>

namespace {

constexpr size_t BYTES_IN_LINE = 8;
constexpr size_t SHORTEST_TEXT = 4;
constexpr size_t LONGEST_TEXT = 48;
constexpr size_t SHORTEST_FILL = 16;
constexpr uint16_t LARGEST_COUNT = 0xFF; ///< numbers up to here get no label
constexpr size_t MNEMONIC_COLUMN = 8;

/// With a digit in front, as assemblers want it.
std::string byte_text(uint8_t value) {
    return formatted(value < 10 ? "%u" : "0%02xh", unsigned{value});
}
std::string word_text(uint16_t value) { return formatted("0%04xh", unsigned{value}); }

/// What an assembler takes for something else, in small letters.
const std::set<std::string_view> reserved_words = {
    "a",     "b",    "c",    "d",       "e",       "h",      "l",      "i",     "r",     "af",
    "bc",    "de",   "hl",   "ix",      "iy",      "ixh",    "ixl",    "iyh",   "iyl",   "sp",
    "nz",    "z",    "nc",   "po",      "pe",      "p",      "m",      "not",   "and",   "or",
    "xor",   "shl",  "shr",  "mod",     "eq",      "ne",     "lt",     "le",    "gt",    "ge",
    "high",  "low",  "nul",  "defined", "org",     "equ",    "defl",   "defb",  "defm",  "defs",
    "defw",  "db",   "ds",   "dw",      "end",     "if",     "else",   "endif", "macro", "endm",
    "exitm", "rept", "irp",  "local",   "include", "incbin", "public", "proc",  "endp",  "adc",
    "add",   "bit",  "call", "ccf",     "cp",      "cpd",    "cpdr",   "cpi",   "cpir",  "cpl",
    "daa",   "dec",  "di",   "djnz",    "ei",      "ex",     "exx",    "halt",  "im",    "in",
    "inc",   "ind",  "indr", "ini",     "inir",    "jp",     "jr",     "ld",    "ldd",   "lddr",
    "ldi",   "ldir", "neg",  "nop",     "otdr",    "otir",   "out",    "outd",  "outi",  "pop",
    "push",  "res",  "ret",  "reti",    "retn",    "rl",     "rla",    "rlc",   "rlca",  "rld",
    "rr",    "rra",  "rrc",  "rrca",    "rrd",     "rst",    "sbc",    "scf",   "set",   "sla",
    "sll",   "sra",  "srl",  "sub"};

bool is_letter_or_digit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

class SourceWriter {
public:
    SourceWriter(uint16_t first_address, uint16_t last_address, const SymbolTable& known)
        : first(first_address), last(last_address), symbols(known),
          trace(first, last, known.value_of("rst_syntax") == 8) {}

    std::string write(std::span<const uint16_t> entries) {
        find_code(entries);
        name_places();
        write_lines();
        return formatted("; %04X-%04X, as it is in memory\n\n", unsigned{first}, unsigned{last}) +
               definitions() + formatted("        org %s\n", word_text(first).c_str()) + lines;
    }

private:
    bool is_in(int address) const { return address >= first && address <= last; }
    bool is_code(int address) const { return trace.begins_instruction(uint16_t(address)); }

    void find_code(std::span<const uint16_t> entries) {
        constexpr uint16_t RESTARTS_END = 0x40;
        for (const uint16_t entry : entries) trace.follow(entry);
        for (uint16_t restart = 0; restart < RESTARTS_END; restart += 8) trace.follow(restart);
        for (int address = first; address <= last; ++address) {
            const std::string name = symbols.name_at(uint16_t(address));
            if (name.empty()) continue;
            symbol_at.emplace(uint16_t(address), name);
        }
        for (const auto& [address, name] : symbol_at) {
            if (trace.is_data(address) && trace.is_likely(address)) trace.follow(address);
        }
    }

    /// Every address that gets a label or an offset to one, before lines are written.
    void name_places() {
        for (const auto& [address, name] : symbol_at) place(address);
        for (int address = first; address <= last; ++address) {
            if (!is_code(address)) continue;
            const TracedInstruction instruction = instruction_at(uint16_t(address));
            if (!instruction.is_plain) continue;
            if (const auto operand = operand_of(instruction); operand && is_in(*operand)) {
                place(*operand);
            }
        }
    }

    /// The address that the mnemonic may have a name for.
    static std::optional<uint16_t> operand_of(const TracedInstruction& instruction) {
        if (instruction.text.starts_with("rst")) return {};
        if (instruction.target) return instruction.target;
        const auto word = instruction.word;
        return word && (*word > LARGEST_COUNT || instruction.word_is_address) ? word : std::nullopt;
    }

    /// Where the line begins that holds the address.
    uint16_t line_start(uint16_t address) const {
        int start = address;
        while (start > first && !is_code(start) && !trace.is_data(uint16_t(start))) --start;
        return uint16_t(start);
    }

    void place(uint16_t address) {
        const uint16_t start = line_start(address);
        const auto symbol = symbol_at.find(address);
        if (start != address && symbol != symbol_at.end()) {
            if (!inner_names.contains(address)) {
                inner_names.emplace(address, free_name(symbol->second, address));
            }
            return;
        }
        if (labels.contains(start)) return;
        const auto known = symbol_at.find(start);
        const std::string name =
            known != symbol_at.end() ? known->second : formatted("L%04X", unsigned{start});
        labels.emplace(start, free_name(name, start));
    }

    /// The name with letters that the assembler takes, and no other's.
    std::string free_name(const std::string& name, uint16_t address) {
        std::string legal;
        for (const char c : name) legal += is_letter_or_digit(c) ? c : '_';
        const bool is_reserved = reserved_words.contains(lower_case(legal));
        if (is_reserved || legal[0] == '_' || (legal[0] >= '0' && legal[0] <= '9')) {
            legal.insert(0, "L");
        }
        if (!used.insert(legal).second) {
            legal += formatted("_%04X", unsigned{address});
            used.insert(legal);
        }
        return legal;
    }

    /// As a label with an offset, a name from outside, or a number.
    std::string address_text(uint16_t address) {
        if (!is_in(address)) {
            const std::string name = symbols.name_at(address);
            if (name.empty()) return word_text(address);
            auto known = outside.find(address);
            if (known == outside.end()) {
                known = outside.emplace(address, free_name(name, address)).first;
            }
            return known->second;
        }
        const auto inner = inner_names.find(address);
        if (inner != inner_names.end()) return inner->second;
        const uint16_t start = line_start(address);
        const std::string& label = labels.find(start)->second;
        return start == address ? label : label + formatted("+%u", unsigned(address - start));
    }

    /// The disassembler's text with a zero before numbers that begin with a letter, and names.
    std::string mnemonic(const TracedInstruction& instruction) {
        const auto operand = operand_of(instruction);
        std::string text;
        const std::string& from = instruction.text;
        for (size_t at = 0; at < from.size();) {
            const size_t end = from.find_first_not_of("0123456789abcdef", at);
            const bool is_number = end != std::string::npos && from[end] == 'h' && end - at >= 2 &&
                                   !is_letter_or_digit(at ? from[at - 1] : ' ');
            if (!is_number) {
                text += from[at++];
                continue;
            }
            const std::string digits = from.substr(at, end - at);
            const auto value = uint16_t(std::stoul(digits, nullptr, 16));
            if (digits.size() == 4) {
                text += operand ? address_text(*operand) : word_text(value);
            } else {
                append_byte(text, uint8_t(value));
            }
            at = end + 1;
        }
        return text;
    }

    /// Displacements have a sign for assemblers, and none for the disassembler.
    static void append_byte(std::string& text, uint8_t value) {
        const bool is_displacement = text.ends_with("ix+") || text.ends_with("iy+");
        if (is_displacement && value >= 0x80) text.back() = '-';
        if (is_displacement) {
            text += std::to_string(std::abs(int8_t(value)));
        } else {
            text += byte_text(value);
        }
    }

    void line(const std::string& text) { lines.append(MNEMONIC_COLUMN, ' ').append(text) += '\n'; }

    std::string bytes_text(uint16_t address, size_t count) const {
        std::string text = "defb ";
        for (size_t n = 0; n < count; ++n) {
            if (n) text += ',';
            text += byte_text(debug_peek(uint16_t(address + n)));
        }
        return text;
    }

    void write_lines() {
        for (int address = first; address <= last;) {
            const auto label = labels.find(uint16_t(address));
            if (label != labels.end()) lines += label->second + ":\n";
            address += is_code(address) ? write_code(uint16_t(address)) : write_data(address);
        }
    }

    int write_code(uint16_t address) {
        const TracedInstruction instruction = instruction_at(address);
        if (instruction.is_plain) {
            line(mnemonic(instruction));
        } else {
            const std::string comment =
                instruction.text.substr(0, instruction.text.find_first_of("\t;"));
            line(bytes_text(address, instruction.length) + " ; " + comment);
        }
        if (instruction.ends_flow) lines += '\n';
        return instruction.length;
    }

    /// One line of the data up to the next label or code.
    int write_data(int address) {
        int end = address + 1;
        while (end <= last && trace.is_data(uint16_t(end)) && !labels.contains(uint16_t(end)))
            ++end;
        const auto length = size_t(end - address);
        const size_t fill =
            run_of(address, length, [first_byte = debug_peek(uint16_t(address))](uint8_t byte) {
                return byte == first_byte;
            });
        if (fill >= SHORTEST_FILL) {
            line(formatted("defs %u,", unsigned(fill)) + byte_text(debug_peek(uint16_t(address))));
            return int(fill);
        }
        const size_t text = run_of(address, std::min(length, LONGEST_TEXT), is_text);
        if (text >= SHORTEST_TEXT) {
            write_text(uint16_t(address), text);
            return int(text);
        }
        size_t count = 1;
        while (count < std::min(length, BYTES_IN_LINE) &&
               run_of(address + int(count), std::min(length - count, SHORTEST_TEXT), is_text) <
                   SHORTEST_TEXT) {
            ++count;
        }
        line(bytes_text(uint16_t(address), count));
        return int(count);
    }

    static bool is_text(uint8_t byte) { return byte >= ' ' && byte <= '~' && byte != '\''; }

    template <typename Wanted>
    static size_t run_of(int address, size_t most, Wanted wanted) {
        size_t count = 0;
        while (count < most && wanted(debug_peek(uint16_t(address + int(count))))) ++count;
        return count;
    }

    void write_text(uint16_t address, size_t count) {
        std::string text = "defm '";
        for (size_t n = 0; n < count; ++n) text += char(debug_peek(uint16_t(address + n)));
        line(text + "'");
    }

    /// Names of addresses outside, and of those within an instruction.
    std::string definitions() {
        std::string text;
        for (const auto& [address, name] : outside) {
            text += formatted("%-16s equ ", name.c_str()) + word_text(address) + "\n";
        }
        for (const auto& [address, name] : inner_names) {
            text += formatted("%-16s equ ", name.c_str()) + word_text(address) + "\n";
        }
        return text.empty() ? text : text + "\n";
    }

    uint16_t first, last;
    const SymbolTable& symbols;
    CodeTrace trace;
    std::map<uint16_t, std::string> symbol_at;
    std::map<uint16_t, std::string> labels;
    std::map<uint16_t, std::string> inner_names;
    std::map<uint16_t, std::string> outside;
    std::set<std::string> used;
    std::string lines;
};

} // namespace

std::string source_text(uint16_t first, uint16_t last, const SymbolTable& symbols,
                        std::span<const uint16_t> entries) {
    return SourceWriter(first, last, symbols).write(entries);
}
