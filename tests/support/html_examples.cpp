#include "html_examples.h"

#include "support/test_files.h"

#include <algorithm>
#include <sstream>

namespace {

using Replacements = std::vector<std::pair<std::string, std::string>>;
const Replacements KEYS = {{"<kbd>BREAK</kbd>", "\x01"}, {"<kbd>F1</kbd>", "\xF1"}};
const Replacements ENTITIES = {{"&lt;", "<"}, {"&gt;", ">"}, {"&amp;", "&"}};

void replace_all(std::string& text, const Replacements& replacements) {
    for (const auto& [found, plain] : replacements)
        for (size_t at = 0; (at = text.find(found, at)) != text.npos; at += plain.size())
            text.replace(at, found.size(), plain);
}

std::vector<std::string> lines_of(std::string text) {
    replace_all(text, KEYS);
    for (size_t at = 0; (at = text.find('<', at)) != text.npos;)
        text.erase(at, text.find('>', at) + 1 - at);
    replace_all(text, ENTITIES);
    std::vector<std::string> lines;
    std::istringstream stream(text.substr(text.starts_with("\n")));
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line.substr(0, line.find_last_not_of(' ') + 1));
    return lines;
}

} // namespace

std::vector<std::string> HtmlExample::lines(const std::string& kind) const {
    std::vector<std::string> all;
    for (const HtmlBlock& block : blocks)
        if (block.kind == kind) all.insert(all.end(), block.lines.begin(), block.lines.end());
    return all;
}

std::vector<HtmlExample> read_html_examples(const std::string& path) {
    const std::string page = read_text(path), start = "<pre class=\"", end = "</pre>";
    std::vector<HtmlExample> examples;
    HtmlExample next;
    for (size_t at = 0; (at = page.find(start, at)) != page.npos;) {
        if (next.blocks.empty())
            next.line = unsigned(std::count(page.begin(), page.begin() + long(at), '\n')) + 1;
        const size_t kind = at + start.size(), text = page.find('>', at) + 1;
        at = page.find(end, text);
        next.blocks.push_back({page.substr(kind, page.find('"', kind) - kind),
                               lines_of(page.substr(text, at - text))});
        if (next.blocks.back().kind != "screen") continue;
        examples.push_back(next);
        next = {};
    }
    return examples;
}
