#include "host/page_query.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace {

/// A parameter, the setting that it stands for, and the values of both.
struct Parameter {
    std::string_view name;
    const char* setting;
    std::array<std::string_view, 3> values; ///< in the order of the setting's
};

constexpr Parameter PARAMETERS[] = {
    {"keyboard", "ScreenKeyboard", {"0", "1"}},
    {"tube", "PictureTube", {"0", "1", "2"}},
    {"scale", "WindowScale", {"fill", "whole"}},
    {"mute", "Sound", {"1", "0"}},
};

} // namespace

void read_page_query(std::string_view query, CommandLine& line) {
    if (query.starts_with('?')) query.remove_prefix(1);
    while (!query.empty()) {
        const size_t end = std::min(query.find('&'), query.size());
        const std::string_view given = query.substr(0, end);
        query.remove_prefix(std::min(end + 1, query.size()));
        const size_t equals = given.find('=');
        const auto* known =
            std::ranges::find(PARAMETERS, given.substr(0, equals), &Parameter::name);
        if (equals == given.npos || equals + 1 == given.size()) continue;
        if (known == std::end(PARAMETERS)) continue;
        const auto* value = std::ranges::find(known->values, given.substr(equals + 1));
        if (value == known->values.end()) continue;
        line.settings.emplace_back(known->setting, std::to_string(value - known->values.begin()));
    }
}
