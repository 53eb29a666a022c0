#include "platform/web/web_settings.h"

#include "platform/web/web_page.h"

#include <charconv>

bool WebSettings::open() { return call_page("settings.open") != 0; }

std::optional<uint32_t> WebSettings::number(const std::string& name) {
    const auto item = ask_page("settings.get", name);
    if (!item || !item->starts_with('#')) return {};
    uint32_t value = 0;
    const char* const end = item->data() + item->size();
    const auto read = std::from_chars(item->data() + 1, end, value);
    if (read.ec != std::errc() || read.ptr != end) return {};
    return value;
}

std::optional<std::string> WebSettings::text(const std::string& name) {
    const auto item = ask_page("settings.get", name);
    if (!item || !item->starts_with('$')) return {};
    return item->substr(1);
}

bool WebSettings::set_number(const std::string& name, uint32_t value) {
    return call_page("settings.set", name, "#" + std::to_string(value)) != 0;
}

bool WebSettings::set_text(const std::string& name, const std::string& value) {
    return call_page("settings.set", name, "$" + value) != 0;
}
