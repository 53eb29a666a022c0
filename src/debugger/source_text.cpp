#include "debugger/source_text.h"

#include "files/file_names.h"
#include "files/whole_file.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <string_view>
#include <vector>

namespace {

constexpr size_t LARGEST_SOURCE = 4 << 20;
constexpr std::string_view BLANKS = " \t\r";

using SourceLines = std::vector<std::string>;

std::optional<std::vector<uint8_t>> find_source(const std::string& file,
                                                const std::vector<std::string>& folders) {
    if (auto bytes = read_whole_file(file, LARGEST_SOURCE)) return bytes;
    for (const std::string& folder : folders) {
        for (const std::string& name : {file, file_name_of(file)}) {
            if (auto bytes = read_whole_file(path_in(folder, name), LARGEST_SOURCE)) return bytes;
        }
    }
    return std::nullopt;
}

SourceLines lines_of_source(std::string_view text) {
    SourceLines lines;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        const size_t first = std::min(line.find_first_not_of(BLANKS), line.size());
        const size_t last = line.find_last_not_of(BLANKS);
        lines.emplace_back(line.substr(first, last + 1 - first));
    }
    return lines;
}

} // namespace

std::string source_text(const SourceLine& line, const SymbolTable& symbols) {
    static std::map<std::string, SourceLines> known; // by file; without lines where there is none
    static std::vector<std::string> known_folders;
    if (known_folders != symbols.folders()) {
        known.clear();
        known_folders = symbols.folders();
    }
    auto found = known.find(line.file);
    if (found == known.end()) {
        const auto bytes = find_source(line.file, known_folders);
        const auto* const text = bytes ? reinterpret_cast<const char*>(bytes->data()) : "";
        found = known.emplace(line.file, lines_of_source({text, bytes ? bytes->size() : 0})).first;
    }
    const auto number = size_t(line.line) - 1;
    return number < found->second.size() ? found->second[number] : std::string();
}
