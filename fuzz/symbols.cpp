/// Symbol files of any tool: a refused one leaves nothing behind, and of one that is taken every
/// name and line is found again.

#include "debugger/symbol_files.h"

#include "support/input.h"

namespace {

void look_everything_up(const SymbolTable& table) {
    for (const auto& [name, symbol] : table.users()) {
        require(table.value_of(name) == symbol.value, "a name has its value");
        if (symbol.kind == SymbolKind::constant) continue;
        require(!table.name_at(symbol.value).empty(), "a label is told at its place");
        require(table.near(symbol.value) == table.name_at(symbol.value),
                "the nearest one is there");
        require(!table.names(name.substr(0, 1), 5).empty(), "a name is found by its beginning");
    }
    for (unsigned address = 0; address < 0x10000; address += 61) {
        const auto line = table.line_of(uint16_t(address));
        if (line)
            require(table.address_of(line->file, line->line).has_value(), "a line has a place");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    SymbolTable table;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::string problem = load_symbols("file", text, table);
    if (!problem.empty()) {
        require(table.size() == 0, "nothing of a refused file is kept");
        require(!table.line_of(0xFFFF) && table.names("", 1).empty(), "no line of it is, either");
        return 0;
    }
    look_everything_up(table);
    require(load_symbols("file", text, table).empty(), "it can be loaded again");
    look_everything_up(table);
    return 0;
}
