#include "apps/source_output.h"

#include "debugger/source.h"
#include "debugger/symbol_files.h"
#include "files/whole_file.h"
#include "media/program_outline.h"
#include "z80/z80.h"

#include <cstdio>
#include <vector>

namespace {

/// Where code is known to be: the next instruction, and the start of a load module.
std::vector<uint16_t> entries(const std::string& program) {
    std::vector<uint16_t> known = {cpu_get_pc()};
    const auto module = read_whole_file(program);
    if (!module) return known;
    const ProgramOutline outline = load_module_outline(*module);
    if (outline.entry && outline.damage.empty()) known.push_back(*outline.entry);
    return known;
}

} // namespace

std::string load_named_symbols(const CommandLine& line) {
    for (const std::string& path : line.symbols) {
        std::string problem = load_symbol_file(path, debugger_symbols());
        if (!problem.empty()) return problem;
    }
    return "";
}

void print_source(const CommandLine& line) {
    SymbolTable& symbols = debugger_symbols();
    const std::string program = line.starts_file ? line.files.back() : "";
    const std::string beside = program.empty() ? "" : symbol_file_beside(program);
    if (symbols.size() == 0 && !beside.empty()) load_symbol_file(beside, symbols);
    const auto [first, last] = *line.source;
    std::fputs(source_text(first, last, symbols, entries(program)).c_str(), stdout);
}
