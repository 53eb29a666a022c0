#include "platform/settings_file.h"

#include "files/file_handle.h"
#include "files/file_identity.h"
#include "files/file_names.h"
#include "files/system_file.h"
#include "files/whole_file.h"

#define TOML_EXCEPTIONS 0
/// Without effect: the library asserts conditions that a damaged file breaks, and then reports the
/// same as an error.
#define TOML_ASSERT(condition) static_cast<void>(0)
#include <toml++/toml.h>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <sstream>
#include <string_view>
#include <utility>

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

// The library handles some characters outside of ASCII as impossible where it looks for white
// space; what it does then is undefined. So they are hidden from it: each of their bytes is
// replaced by a mark and two hexadecimal digits. The mark is a character that begins nothing in
// TOML and can only stand in texts and comments.

/// A mark that occurs neither in the text nor in the addition.
std::string free_mark(std::string_view text, std::string_view addition) {
    for (int n = 0;; ++n) {
        std::string mark = "$" + std::to_string(n) + "$";
        if (text.find(mark) == text.npos && addition.find(mark) == addition.npos) return mark;
    }
}

std::string hide_bytes(std::string_view text, const std::string& mark) {
    std::string hidden;
    for (const char& c : text) {
        if (uint8_t(c) < 0x80) {
            hidden += c;
        } else {
            hidden += mark + to_hex({&c, 1});
        }
    }
    return hidden;
}

std::string show_bytes(std::string_view hidden, const std::string& mark) {
    std::string text;
    size_t at = hidden.find(mark);
    while (at != std::string_view::npos) {
        const std::string_view digits = hidden.substr(at + mark.size(), 2);
        text += hidden.substr(0, at);
        text += from_hex(digits).value_or("");
        hidden.remove_prefix(at + mark.size() + digits.size());
        at = hidden.find(mark);
    }
    return text.append(hidden);
}

/// What stands in the file. A missing file is empty.
struct Contents {
    enum class State { good, missing, unreadable, damaged };
    State state = State::unreadable;
    std::string text; ///< with hidden bytes; the places in `table` refer to it
    toml::table table;
    std::string mark; ///< of hidden bytes
    std::string damage;
};

std::optional<std::string> text_in(const Contents& contents, const std::string& name) {
    const toml::node* node = contents.table.get(name);
    if (!node) return {};
    if (const auto* plain = node->as_string()) return show_bytes(plain->get(), contents.mark);
    const toml::table* coded = node->as_table();
    const toml::node* bytes = coded ? coded->get(BYTES_KEY) : nullptr;
    return bytes && bytes->is_string() ? from_hex(bytes->as_string()->get()) : std::nullopt;
}

Contents parse(std::string_view text, std::string_view addition) {
    constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";
    if (text.starts_with(BYTE_ORDER_MARK)) text.remove_prefix(BYTE_ORDER_MARK.size());
    Contents contents;
    contents.mark = free_mark(text, addition);
    contents.text = hide_bytes(text, contents.mark);
    toml::parse_result parsed = toml::parse(contents.text);
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

/// Reads the file. The mark is chosen so that `addition` can be put into the contents later.
Contents load(const std::string& path, std::string_view addition = {}) {
    if (const auto bytes = read_whole_file(path)) {
        return parse({reinterpret_cast<const char*>(bytes->data()), bytes->size()}, addition);
    }
    Contents contents;
    if (is_missing(path)) {
        contents.state = Contents::State::missing;
        contents.mark = free_mark({}, addition);
    }
    return contents;
}

/// The right to change the file, held until the object goes.
class Lock {
public:
    explicit Lock(const std::string& path) {
        make_folders(folder_of(path));
        file_ = open_file(path + ".lock", "a");
        if (file_ && !lock_file(file_.get(), LockWait::yes)) file_.reset();
    }
    bool held() const { return file_ != nullptr; }

private:
    FileHandle file_;
};

void put(toml::table& table, const std::string& name, const SettingsFile::Value& value,
         const std::string& mark) {
    if (const uint32_t* number = std::get_if<uint32_t>(&value)) {
        table.insert_or_assign(name, int64_t{*number});
        return;
    }
    const std::string& text = std::get<std::string>(value);
    if (is_utf8(text)) {
        table.insert_or_assign(name, hide_bytes(text, mark));
        return;
    }
    toml::table coded{{BYTES_KEY, to_hex(text)}};
    coded.is_inline(true);
    table.insert_or_assign(name, std::move(coded));
}

std::string lines_of(const toml::table& table) {
    std::ostringstream text;
    text << toml::toml_formatter(table, toml::format_flags::allow_unicode_strings |
                                            toml::format_flags::indentation);
    return text.str();
}

size_t offset_of(std::string_view text, const toml::source_position& place) {
    size_t at = 0;
    for (toml::source_index line = 1; line < place.line; ++line) at = text.find('\n', at) + 1;
    return at + place.column - 1;
}

/// Whether the node is a table under a heading of its own: keys put behind that would belong to it.
bool has_heading(const toml::node& node) {
    const auto* array = node.as_array();
    if (array) return !array->empty() && has_heading(*array->get(0));
    return node.is_table() && !node.as_table()->is_inline();
}

/// Puts "name = value" where the name stands, else behind the last key that is under no heading.
std::string with_line(const Contents& contents, const std::string& name, const std::string& line) {
    std::string text = contents.text;
    if (const auto found = contents.table.find(name); found != contents.table.end()) {
        const size_t start = offset_of(text, found->first.source().begin);
        const size_t end = offset_of(text, found->second.source().end);
        return start < end && end <= text.size() ? text.replace(start, end - start, line) : text;
    }
    size_t place = 0;
    bool headings = false;
    for (const auto& [key, node] : contents.table) {
        headings = headings || has_heading(node);
        if (!has_heading(node)) place = std::max(place, offset_of(text, node.source().end));
    }
    if (!headings) place = text.size();
    if (place > 0 && place < text.size()) place = std::min(text.find('\n', place), text.size());
    if (place < text.size()) place += place > 0;
    const bool open_line = place > 0 && text[place - 1] != '\n';
    return text.insert(place, (open_line ? "\n" : "") + line + "\n");
}

/// Changes the value and leaves all other text as it is. When the result does not read back as
/// wanted, as with a name that is a table, the library writes the whole file anew.
void change(Contents& contents, const std::string& name, const SettingsFile::Value& value) {
    toml::table line;
    put(line, name, value, contents.mark);
    const std::string text = with_line(contents, name, lines_of(line));
    put(contents.table, name, value, contents.mark);
    toml::parse_result parsed = toml::parse(text);
    const bool as_wished = parsed && parsed.table() == contents.table;
    contents.text = as_wished ? text : lines_of(contents.table) + "\n";
    contents.table = toml::parse(contents.text).table(); // with the places in the new text
}

bool has(const Contents& contents, const std::string& name, const SettingsFile::Value& value) {
    if (const uint32_t* number = std::get_if<uint32_t>(&value))
        return number_in(contents.table, name) == *number;
    return text_in(contents, name) == std::get<std::string>(value);
}

/// Moves a damaged file out of the way, while the lock is held. Returns its new name; empty when
/// that fails.
std::string put_aside(const std::string& path) {
    std::string name = path + ".damaged";
    for (int n = 1; name_is_taken(name); ++n) {
        name = path + ".damaged" + std::to_string(n);
    }
    return rename_file(path, name) ? name : std::string();
}

/// Makes the changes in the file, which is created when it is missing. A damaged one is put aside
/// and complained about.
bool update(const std::string& path, std::string& complaint, const SettingsFile::Changes& changes) {
    const Lock lock(path);
    if (!lock.held()) return false;
    std::string additions;
    for (const auto& [name, value] : changes) {
        if (const auto* text = std::get_if<std::string>(&value)) additions += *text;
    }
    Contents contents = load(path, additions);
    if (contents.state == Contents::State::unreadable) return false;
    if (contents.state == Contents::State::damaged) {
        const std::string aside = put_aside(path);
        if (aside.empty()) return false;
        complaint = "The settings in \"" + path + "\" are damaged (" + contents.damage +
                    "). The file was kept as \"" + aside + "\"; the defaults are used.";
        contents.text.clear();
    }
    bool changed = false;
    for (const auto& [name, value] : changes) {
        if (has(contents, name, value)) continue;
        change(contents, name, value);
        changed = true;
    }
    return !changed || replace_whole_file(path, show_bytes(contents.text, contents.mark));
}

} // namespace

SettingsFile::SettingsFile(std::string path) : path_(std::move(path)) {
    std::error_code error;
    if (std::filesystem::is_symlink(system_path(path_), error)) path_ = canonical_path(path_);
}

bool SettingsFile::open() {
    open_ = load(path_).state == Contents::State::good || update(path_, complaint_, {});
    return open_;
}

void SettingsFile::close() {
    flush();
    open_ = false;
}

std::string SettingsFile::complaint() { return std::exchange(complaint_, {}); }

std::optional<uint32_t> SettingsFile::number(const std::string& name) {
    if (!open_) return {};
    const auto held = changes_.find(name);
    if (held == changes_.end()) return number_in(load(path_).table, name);
    const uint32_t* number = std::get_if<uint32_t>(&held->second);
    return number ? std::optional(*number) : std::nullopt;
}

std::optional<std::string> SettingsFile::text(const std::string& name) {
    const auto held = changes_.find(name);
    if (held == changes_.end()) return text_in(load(path_), name);
    const std::string* text = std::get_if<std::string>(&held->second);
    return text ? std::optional(*text) : std::nullopt;
}

bool SettingsFile::set(const std::string& name, Value value) {
    if (!open_) return false;
    changes_[name] = std::move(value);
    return holding_ || flush();
}

bool SettingsFile::set_number(const std::string& name, uint32_t value) { return set(name, value); }

bool SettingsFile::set_text(const std::string& name, const std::string& value) {
    return set(name, value);
}

bool SettingsFile::flush() {
    holding_ = false;
    const Changes changes = std::exchange(changes_, {});
    return changes.empty() || (open_ && update(path_, complaint_, changes));
}
