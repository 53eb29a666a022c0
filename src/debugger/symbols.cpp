#include "debugger/symbols.h"

#include "cgenie/firmware_images.h"
#include "cgenie/memory/memory.h"
#include "files/file_names.h"
#include "firmware/firmware_symbols.h"

#include <algorithm>

namespace {

constexpr uint16_t FARTHEST = 255; ///< from a label to what is still told by it

bool holds(const uint8_t* rom, FirmwareImage image) {
    const std::span<const uint8_t> built_in = firmware_built_in(image);
    return std::equal(built_in.begin(), built_in.end(), rom);
}

/// The images that are in the machine as they were built, as bits of firmware_symbol::images.
uint8_t images_in_machine() {
    uint8_t images = 0;
    if (holds(active_rom, FirmwareImage::basic_v1)) {
        images = SYMBOL_BASIC_V1;
    } else if (holds(active_rom, FirmwareImage::basic_v2)) {
        images = SYMBOL_BASIC_V2;
    } else if (holds(active_rom, FirmwareImage::basic_v2sn)) {
        images = SYMBOL_BASIC_V2SN;
    }
    if (holds(current_eprom, FirmwareImage::disk)) images |= SYMBOL_DISK;
    return images;
}

char small_letter(char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; }

bool begins_with(std::string_view text, std::string_view small_beginning) {
    return text.size() >= small_beginning.size() &&
           std::equal(small_beginning.begin(), small_beginning.end(), text.begin(),
                      [](char a, char b) { return a == small_letter(b); });
}

/// The firmware's name nearest below the address, which may be there itself.
const firmware_symbol* firmware_name_below(uint16_t address) {
    const uint8_t images = images_in_machine();
    if (!images) return nullptr;
    auto at = std::ranges::upper_bound(firmware_symbols, address, {}, &firmware_symbol::address);
    const firmware_symbol* best = nullptr;
    while (at != firmware_symbols.begin()) {
        --at;
        if (best && at->address != best->address) break;
        if (at->images & images) best = &*at;
    }
    return best;
}

std::optional<uint16_t> firmware_value(std::string_view name, bool any_case) {
    const uint8_t images = images_in_machine();
    const std::string small = lower_case(std::string(name));
    for (const firmware_symbol& symbol : firmware_symbols) {
        if (!(symbol.images & images)) continue;
        const std::string_view known = symbol.name;
        if (known.size() != name.size()) continue;
        if (any_case ? begins_with(known, small) : known == name) return symbol.address;
    }
    return {};
}

bool is_assembly(const SourceLine& line) {
    const std::string extension = lower_case_extension(line.file);
    return extension != "c" && extension != "h";
}

std::string without_folder(std::string_view file) {
    return lower_case(std::string(file.substr(file.find_last_of("/\\") + 1)));
}

} // namespace

void SymbolTable::add(Symbol symbol) {
    const auto before = by_name.find(symbol.name);
    if (before != by_name.end()) {
        const auto there = labels.equal_range(before->second.value);
        const auto old = std::find_if(there.first, there.second, [&](const auto& label) {
            return label.second == symbol.name;
        });
        if (old != there.second) labels.erase(old);
        by_name.erase(before);
    } else {
        by_small_name.emplace(lower_case(symbol.name), symbol.name);
    }
    if (symbol.kind != SymbolKind::constant) labels.emplace(symbol.value, symbol.name);
    by_name.emplace(symbol.name, std::move(symbol));
}

void SymbolTable::add_line(SourceLine line, uint16_t address) {
    const auto there = lines.equal_range(address);
    const bool known = std::any_of(there.first, there.second,
                                   [&](const auto& other) { return other.second == line; });
    if (!known) lines.emplace(address, std::move(line));
}

void SymbolTable::clear() { *this = {}; }

void SymbolTable::add_folder(const std::string& folder) {
    if (std::ranges::find(symbol_folders, folder) == symbol_folders.end()) {
        symbol_folders.push_back(folder);
    }
}

const Symbol* SymbolTable::find(std::string_view name) const {
    const auto exact = by_name.find(name);
    if (exact != by_name.end()) return &exact->second;
    const auto in_any_case = by_small_name.find(lower_case(std::string(name)));
    if (in_any_case == by_small_name.end()) return nullptr;
    return &by_name.find(in_any_case->second)->second;
}

std::optional<uint16_t> SymbolTable::value_of(std::string_view name) const {
    const auto exact = by_name.find(name);
    if (exact != by_name.end()) return exact->second.value;
    if (const auto firmware = firmware_value(name, false)) return firmware;
    if (const Symbol* symbol = find(name)) return symbol->value;
    if (const Symbol* symbol = find("_" + std::string(name))) return symbol->value;
    return firmware_value(name, true);
}

const std::string* SymbolTable::label_at(uint16_t address) const {
    const auto there = labels.equal_range(address);
    const std::string* best = nullptr;
    for (auto label = there.first; label != there.second; ++label) {
        const SymbolKind kind = by_name.find(label->second)->second.kind;
        if (kind == SymbolKind::label) return &label->second;
        if (!best) best = &label->second;
    }
    return best;
}

std::string SymbolTable::name_at(uint16_t address) const {
    if (const std::string* label = label_at(address)) return *label;
    const firmware_symbol* symbol = firmware_name_below(address);
    return symbol && symbol->address == address ? symbol->name : "";
}

std::string SymbolTable::near(uint16_t address) const {
    std::string name;
    int distance = FARTHEST + 1;
    auto user = labels.upper_bound(address);
    if (user != labels.begin()) {
        distance = address - (--user)->first;
        if (distance <= FARTHEST) name = *label_at(user->first);
    }
    const firmware_symbol* symbol = firmware_name_below(address);
    if (symbol && address - symbol->address < distance) {
        distance = address - symbol->address;
        name = symbol->name;
    }
    if (distance > FARTHEST) return "";
    return distance ? name + "+" + std::to_string(distance) : name;
}

std::optional<SourceLine> SymbolTable::line_at(uint16_t address) const {
    const auto there = lines.equal_range(address);
    const SourceLine* best = nullptr;
    for (auto line = there.first; line != there.second; ++line) {
        if (!best || (is_assembly(*best) && !is_assembly(line->second))) best = &line->second;
    }
    if (!best) return {};
    return *best;
}

std::optional<SourceLine> SymbolTable::line_of(uint16_t address) const {
    const SourceLine* assembly = nullptr;
    for (auto line = lines.upper_bound(address); line != lines.begin();) {
        --line;
        if (address - line->first > FARTHEST) break;
        if (!is_assembly(line->second)) return line_at(line->first);
        if (!assembly) assembly = &line->second;
    }
    if (!assembly) return {};
    return *assembly;
}

std::optional<uint16_t> SymbolTable::address_of(std::string_view file, int line) const {
    const std::string wanted = without_folder(file);
    std::optional<uint16_t> best;
    int best_line = 0;
    for (const auto& [address, known] : lines) {
        if (known.line < line || (best && known.line >= best_line)) continue;
        if (without_folder(known.file) != wanted) continue;
        best = address;
        best_line = known.line;
    }
    return best;
}

std::vector<std::string> SymbolTable::names(std::string_view beginning, size_t most) const {
    const std::string small = lower_case(std::string(beginning));
    std::vector<std::string> found;
    for (auto name = by_small_name.lower_bound(small);
         name != by_small_name.end() && name->first.starts_with(small) && found.size() < most;
         ++name) {
        found.push_back(name->second);
    }
    const uint8_t images = images_in_machine();
    for (const firmware_symbol& symbol : firmware_symbols) {
        if (found.size() >= most) break;
        if ((symbol.images & images) && begins_with(symbol.name, small)) {
            found.emplace_back(symbol.name);
        }
    }
    return found;
}

SymbolTable& debugger_symbols() {
    static SymbolTable table;
    return table;
}
