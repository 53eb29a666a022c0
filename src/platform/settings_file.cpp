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

void put_text(toml::table& table, const std::string& name, const std::string& value) {
    if (is_utf8(value)) {
        table.insert_or_assign(name, value);
        return;
    }
    toml::table coded{{BYTES_KEY, to_hex(value)}};
    coded.is_inline(true);
    table.insert_or_assign(name, std::move(coded));
}

// Where the library looks for white space, it takes some characters outside of ASCII for
// impossible, with no telling what it does then. So it gets to see none: a mark and two hexadecimal
// digits stand for each of their bytes. The mark begins nothing in TOML, and is right in texts and
// comments only.

/// One that stands in neither.
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

/// What stands in the file. A missing file is an empty table.
struct Contents {
    enum class State { good, missing, unreadable, damaged };
    State state = State::unreadable;
    toml::table table;
    std::string mark; ///< of hidden bytes in the table
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
    toml::parse_result parsed = toml::parse(hide_bytes(text, contents.mark));
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

/// `addition` may become part of the contents.
Contents load(const std::string& path, std::string_view addition = {}) {
    if (const auto bytes = read_whole_file(path)) {
        return parse({reinterpret_cast<const char*>(bytes->data()), bytes->size()}, addition);
    }
    Contents contents;
    std::error_code error;
    const auto type = std::filesystem::status(path, error).type();
    if (type == std::filesystem::file_type::not_found) {
        contents.state = Contents::State::missing;
        contents.mark = free_mark({}, addition);
    }
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
bool store(const std::string& path, const Contents& contents) {
    std::ostringstream text;
    text << toml::toml_formatter(contents.table, toml::format_flags::allow_unicode_strings |
                                                     toml::format_flags::indentation)
         << '\n';
    const std::string bytes = show_bytes(text.str(), contents.mark);
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

/// Changes the file, which is created when it is missing, to one that may have `addition` in it. A
/// damaged one is put aside and complained about.
template <typename Change>
bool update(const std::string& path, std::string& complaint, std::string_view addition,
            Change change) {
    const Lock lock(path);
    if (!lock.held()) return false;
    Contents contents = load(path, addition);
    if (contents.state == Contents::State::unreadable) return false;
    if (contents.state == Contents::State::damaged) {
        const std::string aside = put_aside(path);
        if (aside.empty()) return false;
        complaint = "The settings in \"" + path + "\" are damaged (" + contents.damage +
                    "). The file was kept as \"" + aside + "\"; the defaults are used.";
    }
    const bool changed = change(contents);
    return contents.state == Contents::State::good && !changed ? true : store(path, contents);
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
            update(path_, complaint_, {}, [](Contents&) { return false; });
    return open_;
}

std::string SettingsFile::complaint() { return std::exchange(complaint_, {}); }

std::optional<uint32_t> SettingsFile::number(const std::string& name) {
    if (!open_) return {};
    return number_in(load(path_).table, name);
}

std::optional<std::string> SettingsFile::text(const std::string& name) {
    return text_in(load(path_), name);
}

bool SettingsFile::set_number(const std::string& name, uint32_t value) {
    return open_ && update(path_, complaint_, {}, [&](Contents& contents) {
               if (number_in(contents.table, name) == value) return false;
               contents.table.insert_or_assign(name, int64_t{value});
               return true;
           });
}

bool SettingsFile::set_text(const std::string& name, const std::string& value) {
    return open_ && update(path_, complaint_, value, [&](Contents& contents) {
               if (text_in(contents, name) == value) return false;
               put_text(contents.table, name, value);
               return true;
           });
}
