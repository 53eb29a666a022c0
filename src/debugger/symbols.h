#pragma once
/// Names of addresses and numbers, and which line of a source an address comes from.
///
/// There are two layers: what the user has loaded, and below it the names of the firmware, which
/// count only while the ROM that they belong to is in the machine as it was built. A ROM of the
/// user's has none.

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct SourceLine {
    std::string file; ///< as the symbol file has it
    int line = 0;     ///< from 1 on
    bool operator==(const SourceLine&) const = default;
};

enum class SymbolKind : uint8_t {
    label,       ///< a place in memory
    local_label, ///< one that another label at the same place goes before
    constant     ///< a number that is no address: it is found by name only
};

struct Symbol {
    std::string name;
    uint16_t value = 0;
    SymbolKind kind = SymbolKind::label;
};

class SymbolTable {
public:
    /// One of the user's. A second one of the same name replaces it.
    void add(Symbol symbol);
    /// A line of C goes before one of assembly at the same address.
    void add_line(SourceLine line, uint16_t address);
    /// A folder in which the files of the source may lie: that of a symbol file.
    void add_folder(const std::string& folder);
    const std::vector<std::string>& folders() const { return symbol_folders; }
    /// Forgets what the user has loaded.
    void clear();
    /// How many are the user's.
    size_t size() const { return by_name.size(); }

    /// Looks for exactly this name, then for it in any case, and for a name of C, which the
    /// assembler knows with "_" before it.
    std::optional<uint16_t> value_of(std::string_view name) const;
    /// The best label exactly there; empty where there is none.
    std::string name_at(uint16_t address) const;
    /// "label", or "label+3" behind the nearest label up to 255 bytes below; else empty.
    std::string near(uint16_t address) const;

    /// The source line whose code begins exactly there.
    std::optional<SourceLine> line_at(uint16_t address) const;
    /// The source line whose code holds the address: the nearest below within 255 bytes.
    std::optional<SourceLine> line_of(uint16_t address) const;
    /// The lowest address of the line, or of the next one in the file that has code. The file is
    /// named with or without its folder, in any case.
    std::optional<uint16_t> address_of(std::string_view file, int line) const;

    /// Names that begin so, in any case: at most `most` of the user's, then the firmware's.
    std::vector<std::string> names(std::string_view beginning, size_t most) const;
    /// All names of the user's, by name.
    const std::map<std::string, Symbol, std::less<>>& users() const { return by_name; }

private:
    const Symbol* find(std::string_view name) const;
    const std::string* label_at(uint16_t address) const;

    std::map<std::string, Symbol, std::less<>> by_name;
    std::multimap<std::string, std::string> by_small_name; ///< in small letters
    std::multimap<uint16_t, std::string> labels;
    std::multimap<uint16_t, SourceLine> lines;
    std::vector<std::string> symbol_folders;
};

/// The names for the live machine, which all fronts of the debugger share.
SymbolTable& debugger_symbols();
