#include "debugger/symbol_files.h"

#include "files/file_names.h"
#include "files/whole_file.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace {

struct SymbolFileContents {
    std::vector<Symbol> symbols;
    std::vector<std::pair<SourceLine, uint16_t>> lines;
    std::string source;    ///< of the lines that follow, in a .noi file
    bool in_table = false; ///< the line is one of a table of sdcc's .map file
};

/// Takes one line, without its end and outer blanks; false when it is none of the format.
using LineReader = bool (*)(std::string_view line, SymbolFileContents& to);

bool is_blank(char c) { return c == ' ' || c == '\t'; }

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
    return text;
}

/// The next word up to one of the separators, which is taken as well; `text` keeps what follows.
std::string_view take_word(std::string_view& text, std::string_view separators = " \t") {
    text = trimmed(text);
    const size_t end = std::min(text.find_first_of(separators), text.size());
    const std::string_view word = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return trimmed(word);
}

std::optional<uint32_t> number_from(std::string_view digits, int base) {
    uint32_t value = 0;
    const char* const end = digits.data() + digits.size();
    const auto read = std::from_chars(digits.data(), end, value, base);
    if (digits.empty() || read.ptr != end || read.ec != std::errc()) return {};
    return value;
}

bool equals_in_any_case(std::string_view text, std::string_view small) {
    return lower_case(std::string(text)) == small;
}

/// 0x1F, $1F, #1F, 1FH or 31.
std::optional<uint32_t> assembler_number(std::string_view text) {
    if (text.starts_with("0x") || text.starts_with("0X")) return number_from(text.substr(2), 16);
    if (text.starts_with('$') || text.starts_with('#')) return number_from(text.substr(1), 16);
    if (text.ends_with('h') || text.ends_with('H')) {
        return number_from(text.substr(0, text.size() - 1), 16);
    }
    return number_from(text, 10);
}

bool is_name(std::string_view name) {
    return !name.empty() && name.size() <= LONGEST_SYMBOL &&
           std::ranges::none_of(name, [](char c) { return uint8_t(c) <= ' ' || c == 0x7F; });
}

/// Beyond 64 KB are banks and sizes, which the machine has not: they are passed over.
bool take_symbol(std::string_view name, uint32_t value, SymbolKind kind, SymbolFileContents& to) {
    if (!is_name(name)) return false;
    if (value <= 0xFFFF) to.symbols.push_back({std::string(name), uint16_t(value), kind});
    return true;
}

bool take_line(std::string_view file, std::string_view number, uint32_t address,
               SymbolFileContents& to) {
    const auto line = number_from(number, 10);
    if (!line || *line > 10'000'000 || !is_name(file)) return false;
    if (address <= 0xFFFF && *line) {
        to.lines.emplace_back(SourceLine{std::string(file), int(*line)}, uint16_t(address));
    }
    return true;
}

// ---- name EQU value ----------------------------------------------------------------------------

/// A place in memory and a number look the same here; up to FF it is taken for a number, since
/// programs for the machine begin above its ROM.
constexpr uint32_t LARGEST_NUMBER = 0xFF;

/// pasmo calls labels that only hold up to the next one by eight digits.
bool is_anonymous(std::string_view name) {
    return name.size() == 8 && number_from(name, 16).has_value();
}

bool read_equ(std::string_view line, SymbolFileContents& to) {
    line = trimmed(line.substr(0, line.find(';')));
    if (line.empty()) return true;
    std::string_view name = take_word(line);
    if (name.ends_with(':')) name.remove_suffix(1);
    const bool is_equ = equals_in_any_case(take_word(line), "equ");
    const auto value = assembler_number(trimmed(line));
    if (!is_equ || !value) return false;
    if (is_anonymous(name)) return true;
    const SymbolKind label = name.starts_with('.') ? SymbolKind::local_label : SymbolKind::label;
    return take_symbol(name, *value, *value <= LARGEST_NUMBER ? SymbolKind::constant : label, to);
}

// ---- sdcc --------------------------------------------------------------------------------------

/// The linker's own names are where areas begin and how long they are.
bool is_area(std::string_view name) {
    return name.starts_with("s__") || name.starts_with("l__") || name == ".__.ABS.";
}

/// With --debug the linker also has names made of several parts with "$" between them: of a
/// global or static name, a local one behind its function, the end of a function, a line of C, a
/// line of assembly.
bool take_sdcc_parts(std::string_view name, uint32_t value, SymbolFileContents& to) {
    std::string_view rest = name;
    const std::string_view owner = take_word(rest, "$");
    const std::string_view part = take_word(rest, "$");
    if (owner == "C") return take_line(part, take_word(rest, "$"), value, to);
    if (owner == "A") {
        return take_line(std::string(part) + ".asm", take_word(rest, "$"), value, to);
    }
    if (std::ranges::count(name, '$') < 3) return take_symbol(name, value, SymbolKind::label, to);
    if (owner.starts_with('X')) return true;
    if (owner.starts_with('L')) {
        const size_t function = owner.find('.');
        if (function == std::string_view::npos) return true;
        const std::string whole = std::string(owner.substr(function + 1)) + "." + std::string(part);
        return take_symbol(whole, value, SymbolKind::local_label, to);
    }
    if (part.starts_with("__xinit_")) return true;
    return take_symbol("_" + std::string(part), value, SymbolKind::label, to);
}

bool take_sdcc_name(std::string_view name, uint32_t value, SymbolFileContents& to) {
    if (is_area(name)) return take_symbol(name, value, SymbolKind::constant, to);
    if (name.find('$') != std::string_view::npos) return take_sdcc_parts(name, value, to);
    return take_symbol(name, value, SymbolKind::label, to);
}

bool read_noi(std::string_view line, SymbolFileContents& to) {
    const std::string_view command = take_word(line);
    if (command == "LOAD" || command == "ENDF" || command.starts_with(';')) return true;
    const std::string_view name = take_word(line);
    if (command == "LINE") {
        const auto address = assembler_number(trimmed(line));
        return address && take_line(to.source, name, *address, to);
    }
    const auto value = assembler_number(trimmed(line));
    if (!value) return false;
    if (command == "FILE") {
        to.source = name;
        return is_name(name);
    }
    for (const char* known : {"DEF", "DEFS", "FUNC", "SFUNC"}) {
        if (command == known) return take_sdcc_name(name, *value, to);
    }
    return false;
}

bool read_cdb(std::string_view line, SymbolFileContents& to) {
    if (line.size() < 2 || line[1] != ':' || line[0] < 'A' || line[0] > 'Z') return false;
    if (line[0] != 'L') return true;
    line.remove_prefix(2);
    const size_t colon = line.rfind(':');
    if (colon == std::string_view::npos) return false;
    const auto value = number_from(line.substr(colon + 1), 16);
    return value && take_sdcc_name(line.substr(0, colon), *value, to);
}

/// The tables of globals stand between a line of dashes and a blank line, on pages of an area each.
bool read_sdcc_map(std::string_view line, SymbolFileContents& to) {
    if (line.empty()) {
        to.in_table = false;
        return true;
    }
    if (!to.in_table) {
        to.in_table = line.starts_with("-----  -");
        return true;
    }
    if (line.starts_with("ASxxxx")) { // a new page without a blank line before it
        to.in_table = false;
        return true;
    }
    const auto value = number_from(take_word(line), 16);
    return value && take_sdcc_name(take_word(line), *value, to);
}

// ---- z88dk -------------------------------------------------------------------------------------

/// A place in a source: main.c:12, or main.c::main::0::0:12 with function, block and level.
void take_z88dk_place(std::string_view place, uint32_t value, SymbolFileContents& to) {
    const size_t colon = place.rfind(':');
    if (colon == std::string_view::npos) return;
    const std::string_view file = place.substr(0, std::min(place.find("::"), colon));
    take_line(file, place.substr(colon + 1), value, to);
}

bool read_z88dk_map(std::string_view line, SymbolFileContents& to) {
    if (line.empty() || line.front() == ';' || line == "None.") return true;
    const size_t sign = line.find('=');
    if (sign == std::string_view::npos) return false;
    const std::string_view name = trimmed(line.substr(0, sign));
    line.remove_prefix(sign + 1);
    std::string_view digits = take_word(line, ";,");
    if (digits.starts_with('$')) digits.remove_prefix(1);
    const auto value = number_from(digits, 16);
    if (!value) return false;
    const std::string_view kind = take_word(line, ",:");
    const std::string_view scope = take_word(line, ",:");
    SymbolKind of = SymbolKind::label;
    if (kind == "const") of = SymbolKind::constant;
    if (kind == "L" || (of == SymbolKind::label && scope == "local")) of = SymbolKind::local_label;
    if (kind != "const") take_z88dk_place(trimmed(line.substr(line.rfind(',') + 1)), *value, to);
    if (name.starts_with("__C_LINE_") || name.starts_with("__ASM_LINE_")) return true;
    return take_symbol(name, *value, of, to);
}

// ---- any of them -------------------------------------------------------------------------------

/// Which format it is, from the first line that tells.
LineReader reader_for(std::string_view line) {
    if (line.starts_with("ASxxxx Linker")) return read_sdcc_map;
    if (line.size() > 2 && line[1] == ':' && line[0] >= 'A' && line[0] <= 'Z') return read_cdb;
    std::string_view rest = line;
    const std::string_view first = take_word(rest);
    for (const char* command : {"DEF", "DEFS", "FILE", "FUNC", "SFUNC", "LOAD"}) {
        if (first == command) return read_noi;
    }
    if (equals_in_any_case(take_word(rest), "equ")) return read_equ;
    if (line.find('=') != std::string_view::npos) return read_z88dk_map;
    return nullptr;
}

bool is_text(std::string_view line) {
    return std::ranges::none_of(line,
                                [](char c) { return uint8_t(c) < ' ' && c != '\t' && c != '\f'; });
}

std::string read_lines(std::string_view contents, SymbolFileContents& to) {
    LineReader reader = nullptr;
    for (int number = 1; !contents.empty(); ++number) {
        const size_t end = std::min(contents.find('\n'), contents.size());
        std::string_view line = contents.substr(0, end);
        contents.remove_prefix(std::min(end + 1, contents.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (!is_text(line)) return "line " + std::to_string(number) + " is no text";
        if (line.starts_with('\f')) line.remove_prefix(1); // before each page of sdcc's .map
        line = trimmed(line);
        if (!reader && !line.empty() && !line.starts_with(';') && line != "None.") {
            reader = reader_for(line);
            if (!reader) return "no symbol file of pasmo, sdcc or z88dk";
        }
        if (reader && !reader(line, to)) {
            if (line.empty()) continue;
            return "line " + std::to_string(number) + " is not of the kind of those before it";
        }
        if (to.symbols.size() > MOST_SYMBOLS || to.lines.size() > MOST_SYMBOLS) {
            return "line " + std::to_string(number) + " goes beyond what can be kept";
        }
    }
    return to.symbols.empty() && to.lines.empty() ? "it has no symbols" : "";
}

} // namespace

std::string load_symbols(std::string_view file_name, std::string_view contents, SymbolTable& to) {
    SymbolFileContents read;
    const std::string why =
        contents.size() > LARGEST_SYMBOL_FILE ? "it is too large" : read_lines(contents, read);
    if (!why.empty()) return std::string(file_name) + ": " + why;
    for (Symbol& symbol : read.symbols) to.add(std::move(symbol));
    for (auto& [line, address] : read.lines) to.add_line(std::move(line), address);
    return "";
}

std::string load_symbol_file(const std::string& path, SymbolTable& to) {
    const auto bytes = read_whole_file(path, LARGEST_SYMBOL_FILE);
    if (!bytes) return path + ": it cannot be read";
    to.add_folder(folder_of(path));
    return load_symbols(path, {reinterpret_cast<const char*>(bytes->data()), bytes->size()}, to);
}

std::string symbol_file_beside(const std::string& program) {
    for (const char* extension : {".noi", ".map", ".cdb", ".sym"}) {
        std::string found = find_in_any_case(folder_of(program), file_stem_of(program) + extension);
        if (!found.empty()) return found;
    }
    return "";
}
