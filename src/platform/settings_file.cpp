#include "platform/settings_file.h"

#include "platform/file_handle.h"
#include "platform/whole_file.h"

#define TOML_EXCEPTIONS 0
/// The library asserts what a damaged file may break, and reports it as an error just behind that.
#define TOML_ASSERT(condition) static_cast<void>(0)
#include <toml++/toml.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <sstream>
#include <string_view>
#include <utility>

#include <sys/file.h>

namespace {

constexpr std::string_view BYTES_KEY = "bytes"; ///< of a text that TOML cannot hold as it is
constexpr std::string_view HEX_DIGITS = "0123456789abcdef";

/// Length of the character at the start of `text` in UTF-8; 0 where there is none, as in overlong
/// forms, surrogates and values above 10FFFF.
size_t character_length(std::string_view text) {
    const auto byte = [text](size_t n) { return n < text.size() ? uint8_t(text[n]) : 0; };
    const uint8_t lead = byte(0);
    if (lead < 0x80) return 1;
    const size_t length = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
    for (size_t n = 1; n < length; ++n) {
        if ((byte(n) & 0xC0) != 0x80) return 0;
    }
    const unsigned start = lead << 8 | byte(1);
    const bool overlong = (lead == 0xE0 && start < 0xE0A0) || (lead == 0xF0 && start < 0xF090);
    const bool surrogate = start >= 0xEDA0 && start < 0xEE00;
    return overlong || surrogate || start >= 0xF490 ? 0 : length;
}

bool is_utf8(std::string_view text) {
    while (!text.empty()) {
        const size_t length = character_length(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string to_hex(std::string_view text) {
    std::string hex;
    for (const char c : text) {
        hex += HEX_DIGITS[uint8_t(c) >> 4];
        hex += HEX_DIGITS[uint8_t(c) & 0x0F];
    }
    return hex;
}

std::optional<std::string> from_hex(std::string_view hex) {
    if (hex.size() % 2) return {};
    std::string text;
    for (size_t n = 0; n < hex.size(); n += 2) {
        const size_t high = HEX_DIGITS.find(hex[n]), low = HEX_DIGITS.find(hex[n + 1]);
        if (high == std::string_view::npos || low == std::string_view::npos) return {};
        text += char(high << 4 | low);
    }
    return text;
}

std::optional<uint32_t> number_in(const toml::table& table, const std::string& name) {
    const toml::node* node = table.get(name);
    const auto* value = node ? node->as_integer() : nullptr;
    if (!value || value->get() < 0 || value->get() > std::numeric_limits<uint32_t>::max())
        return {};
    return uint32_t(value->get());
}

std::optional<std::string> text_in(const toml::table& table, const std::string& name) {
    const toml::node* node = table.get(name);
    if (!node) return {};
    if (const auto* plain = node->as_string()) return plain->get();
    const toml::table* coded = node->as_table();
    const toml::node* bytes = coded ? coded->get(BYTES_KEY) : nullptr;
    return bytes && bytes->is_string() ? from_hex(bytes->as_string()->get()) : std::nullopt;
}

void put_text(toml::table& table, const std::string& name, const std::string& value) {
    if (is_utf8(value)) {
        table.insert_or_assign(name, value);
        return;
    }
    toml::table coded{{BYTES_KEY, to_hex(value)}};
    coded.is_inline(true);
    table.insert_or_assign(name, std::move(coded));
}

/// The quotes that `text` begins with, or nothing.
std::string_view quotes_of(std::string_view text) {
    for (const std::string_view quotes : {"\"\"\"", "'''", "\"", "'"}) {
        if (text.starts_with(quotes)) return quotes;
    }
    return {};
}

/// Where a character outside ASCII stands in no text and no comment, or npos. Looking for white
/// space, the library takes some of them for impossible, with no telling what it does then; it also
/// looks behind a backslash in a text of several lines.
size_t stray_character(std::string_view toml) {
    constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";
    const auto is_ascii = [](char c) { return uint8_t(c) < 0x80; };
    std::string_view quotes; // of the text around `at`
    size_t at = toml.starts_with(BYTE_ORDER_MARK) ? BYTE_ORDER_MARK.size() : 0;
    while (at < toml.size()) {
        const std::string_view rest = toml.substr(at);
        const bool of_lines = quotes.size() > 1;
        if (quotes.empty()) {
            if (!is_ascii(rest[0])) return at;
            quotes = quotes_of(rest);
            at = rest[0] == '#' ? toml.find('\n', at) : at + std::max<size_t>(quotes.size(), 1);
        } else if (rest[0] == '\\' && quotes[0] == '"') {
            const size_t next = rest.find_first_not_of(" \t\r\n", 1);
            if (of_lines && next < rest.size() && !is_ascii(rest[next])) return at + next;
            at += 2;
        } else if (rest.starts_with(quotes) || (rest[0] == '\n' && !of_lines)) {
            at += std::min(quotes.size(), rest.size());
            quotes = {};
        } else {
            ++at;
        }
    }
    return std::string_view::npos;
}

/// What stands in the file. A missing file is an empty table.
struct Contents {
    enum class State { good, missing, unreadable, damaged };
    State state = State::unreadable;
    toml::table table;
    std::string damage;
};

Contents parse(const std::string& text) {
    Contents contents;
    const size_t stray = stray_character(text);
    if (stray != std::string::npos) {
        const auto lines = std::count(text.begin(), text.begin() + ptrdiff_t(stray), '\n');
        contents.state = Contents::State::damaged;
        contents.damage = "line " + std::to_string(lines + 1) + ": a character outside of ASCII";
        return contents;
    }
    toml::parse_result parsed = toml::parse(text);
    if (parsed) {
        contents.state = Contents::State::good;
        contents.table = std::move(parsed).table();
    } else {
        contents.state = Contents::State::damaged;
        contents.damage = "line " + std::to_string(parsed.error().source().begin.line) + ": " +
                          std::string(parsed.error().description());
    }
    return contents;
}

Contents load(const std::string& path) {
    if (const auto bytes = read_whole_file(path)) return parse({bytes->begin(), bytes->end()});
    Contents contents;
    std::error_code error;
    const auto type = std::filesystem::status(path, error).type();
    if (type == std::filesystem::file_type::not_found) contents.state = Contents::State::missing;
    return contents;
}

std::filesystem::path folder_of(const std::string& path) {
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    return folder.empty() ? std::filesystem::path(".") : folder;
}

/// The right to change the file, held until the object goes.
class Lock {
public:
    explicit Lock(const std::string& path) {
        std::error_code error;
        std::filesystem::create_directories(folder_of(path), error);
        file_ = open_file(path + ".lock", "ae");
        if (!file_) return;
        int result = 0;
        do {
            result = flock(fileno(file_.get()), LOCK_EX);
        } while (result != 0 && errno == EINTR);
        if (result != 0) file_.reset();
    }
    bool held() const { return file_ != nullptr; }

private:
    FileHandle file_;
};

/// Replaces the file at one stroke. Under the lock.
bool store(const std::string& path, const toml::table& table) {
    std::ostringstream text;
    text << toml::toml_formatter(table, toml::format_flags::allow_unicode_strings |
                                            toml::format_flags::indentation)
         << '\n';
    const std::string bytes = text.str();
    return replace_whole_file(path, {reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()});
}

/// Moves a damaged file out of the way. Returns its new name, or nothing. Under the lock.
std::string put_aside(const std::string& path) {
    std::string name = path + ".damaged";
    std::error_code error;
    for (int n = 1; std::filesystem::exists(std::filesystem::symlink_status(name, error)); ++n) {
        name = path + ".damaged" + std::to_string(n);
    }
    return std::rename(path.c_str(), name.c_str()) == 0 ? name : std::string();
}

/// Changes the file, which is created when it is missing. A damaged one is put aside and complained
/// about.
template <typename Change>
bool update(const std::string& path, std::string& complaint, Change change) {
    const Lock lock(path);
    if (!lock.held()) return false;
    Contents contents = load(path);
    if (contents.state == Contents::State::unreadable) return false;
    if (contents.state == Contents::State::damaged) {
        const std::string aside = put_aside(path);
        if (aside.empty()) return false;
        complaint = "The settings in \"" + path + "\" are damaged (" + contents.damage +
                    "). The file was kept as \"" + aside + "\"; the defaults are used.";
    }
    const bool changed = change(contents.table);
    return contents.state == Contents::State::good && !changed ? true : store(path, contents.table);
}

} // namespace

SettingsFile::SettingsFile(std::string path) : path_(std::move(path)) {
    std::error_code error;
    if (!std::filesystem::is_symlink(path_, error)) return;
    const std::filesystem::path target = std::filesystem::weakly_canonical(path_, error);
    if (!error) path_ = target.string();
}

bool SettingsFile::open() {
    open_ = load(path_).state == Contents::State::good ||
            update(path_, complaint_, [](toml::table&) { return false; });
    return open_;
}

std::string SettingsFile::complaint() { return std::exchange(complaint_, {}); }

std::optional<uint32_t> SettingsFile::number(const std::string& name) {
    if (!open_) return {};
    return number_in(load(path_).table, name);
}

std::optional<std::string> SettingsFile::text(const std::string& name) {
    return text_in(load(path_).table, name);
}

bool SettingsFile::set_number(const std::string& name, uint32_t value) {
    return open_ && update(path_, complaint_, [&](toml::table& table) {
               if (number_in(table, name) == value) return false;
               table.insert_or_assign(name, int64_t{value});
               return true;
           });
}

bool SettingsFile::set_text(const std::string& name, const std::string& value) {
    return open_ && update(path_, complaint_, [&](toml::table& table) {
               if (text_in(table, name) == value) return false;
               put_text(table, name, value);
               return true;
           });
}
