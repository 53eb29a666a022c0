#include "debugger/command_words.h"

#include "debugger/debugger.h"
#include "debugger/expression.h"
#include "debugger/symbols.h"
#include "files/file_names.h"
#include "z80/z80.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace {

constexpr int HEXADECIMAL = 16;

bool is_space(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
bool is_word_character(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

/// Behind the text whose opening quotation mark is at `at`.
size_t end_of_text(std::string_view line, size_t at) {
    for (++at; at < line.size() && line[at] != '"'; ++at) {
        if (line[at] == '\\') ++at;
    }
    return std::min(at + 1, line.size());
}

size_t end_of_word(std::string_view line, size_t at) {
    const size_t start = at;
    int depth = 0;
    while (at < line.size() && (depth > 0 || !is_space(line[at]))) {
        const char c = line[at];
        if (c == '"') {
            at = end_of_text(line, at);
            continue;
        }
        if (c == '(' || c == '[') ++depth;
        if (c == ')' || c == ']') --depth;
        // Behind a letter it belongs to the name of a register.
        const bool is_character = c == '\'' && (at == start || !is_word_character(line[at - 1]));
        at += is_character ? 3 : 1;
    }
    return std::min(at, line.size());
}

std::vector<std::string_view> words_of(std::string_view line) {
    std::vector<std::string_view> words;
    for (size_t at = 0; at < line.size();) {
        if (is_space(line[at])) {
            ++at;
            continue;
        }
        if (line[at] == '#' || line[at] == ';') break;
        const size_t end = end_of_word(line, at);
        words.push_back(line.substr(at, end - at));
        at = end;
    }
    return words;
}

bool is_same_word(std::string_view left, std::string_view right) {
    return lower_case(std::string(left)) == lower_case(std::string(right));
}

std::optional<uint8_t> hexadecimal_byte(std::string_view text) {
    uint8_t byte = 0;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, byte, HEXADECIMAL);
    if (text.size() != 2 || read.ptr != end || read.ec != std::errc()) return {};
    return byte;
}

/// The character behind a backslash at `at`, which is left at its last character.
std::optional<char> escaped(std::string_view text, size_t& at) {
    if (++at >= text.size()) return {};
    switch (text[at]) {
    case 'n':
    case 'r': return '\r';
    case 't': return '\t';
    case '"':
    case '\\': return text[at];
    case 'x':
        if (const auto byte = hexadecimal_byte(text.substr(at + 1, 2))) {
            at += 2;
            return char(*byte);
        }
        return {};
    default: return {};
    }
}

/// A text without its quotation marks, if it has any. Nothing when it is none.
std::optional<std::string> unquoted(std::string_view word) {
    if (!word.starts_with('"')) return std::string(word);
    if (word.size() < 2 || !word.ends_with('"')) return {};
    word = word.substr(1, word.size() - 2);
    std::string text;
    for (size_t at = 0; at < word.size(); ++at) {
        if (word[at] == '"') return {};
        const auto character = word[at] == '\\' ? escaped(word, at) : std::optional(word[at]);
        if (!character) return {};
        text += *character;
    }
    return text;
}

/// Where the "-" of FIRST-LAST stands.
size_t dash_of(std::string_view word) {
    int depth = 0;
    for (size_t at = 0; at < word.size(); ++at) {
        if (word[at] == '(' || word[at] == '[') ++depth;
        if (word[at] == ')' || word[at] == ']') --depth;
        if (word[at] == '-' && depth == 0 && at > 0) return at;
    }
    return std::string_view::npos;
}

} // namespace

ExpressionContext debugger_context() {
    const watch_hit& hit = debugger_last_stop().hit;
    return {.value = hit.value,
            .before = hit.before,
            .address = hit.address,
            .from = hit.pc,
            .cycle = z80_state.t_count,
            .frame = history_is_kept() ? history_position() : 0,
            .line = debugger_raster_line()};
}

CommandWords::CommandWords(std::string_view given, bool checks_only)
    : words(words_of(given)), checks(checks_only) {}

std::string_view CommandWords::take() { return empty() ? std::string_view() : words[next++]; }

bool CommandWords::take_if(std::string_view word) {
    if (empty() || !is_same_word(words[next], word)) return false;
    ++next;
    return true;
}

std::string CommandWords::text(std::string_view what) {
    if (empty()) fail(std::string(what) + " is missing");
    const std::string_view word = take();
    const auto text = unquoted(word);
    if (!text) fail(std::string(word) + ": not a text");
    return text.value_or("");
}

int CommandWords::choice(std::initializer_list<std::string_view> of) {
    std::string names;
    for (const std::string_view name : of) {
        if (take_if(name)) return int(std::ranges::find(of, name) - of.begin());
        names += (names.empty() ? "" : ", ") + std::string(name);
    }
    fail(empty() ? "one of these is missing: " + names
                 : std::string(peek()) + ": none of " + names);
    return -1;
}

void CommandWords::judge(const std::string& why) {
    if (!checks || !why.ends_with(NO_SYMBOL)) fail(why);
}

uint16_t CommandWords::address_in(std::string_view text) {
    std::string why;
    const auto found = parse_address(text, &debugger_symbols(), why);
    if (!found) judge(std::string(text) + ": " + why);
    return found.value_or(0);
}

uint16_t CommandWords::address() {
    if (empty()) return fail("an address is missing"), uint16_t(0);
    return address_in(take());
}

CommandWords::Range CommandWords::range() {
    const size_t dash = dash_of(peek());
    if (dash == std::string_view::npos) {
        const uint16_t only = address();
        return {only, only};
    }
    const std::string_view word = take();
    const Range range = {address_in(word.substr(0, dash)), address_in(word.substr(dash + 1))};
    const bool is_known = !checks || word.find_first_not_of("0123456789-") == word.npos;
    if (is_known && range.last < range.first) {
        fail(std::string(word) + ": the end is below the start");
    }
    return range;
}

std::optional<int64_t> CommandWords::value(std::string_view text) {
    std::string why;
    const auto parsed = Expression::parse(text, &debugger_symbols(), why);
    if (!parsed) {
        judge(std::string(text) + ": " + why);
        return {};
    }
    // What registers hold now is not what they will hold.
    if (checks && text.find_first_not_of("-0123456789") != std::string_view::npos) return {};
    return parsed->value(debugger_context());
}

int64_t CommandWords::number(std::string_view what, int64_t least, int64_t most,
                             std::optional<int64_t> usual) {
    if (empty() && usual) return *usual;
    if (empty()) return fail(std::string(what) + " is missing"), least;
    const std::string_view word = take();
    const int64_t number = value(word).value_or(least);
    if (number >= least && number <= most) return number;
    fail(std::string(word) + ": " + std::string(what) + " is from " + std::to_string(least) +
         " to " + std::to_string(most));
    return least;
}

std::vector<uint8_t> CommandWords::bytes() {
    std::vector<uint8_t> bytes;
    if (empty()) fail("bytes are missing");
    while (!empty()) {
        if (peek().starts_with('"')) {
            const std::string characters = text("a text");
            bytes.insert(bytes.end(), characters.begin(), characters.end());
        } else if (const auto byte = hexadecimal_byte(peek())) {
            bytes.push_back(*byte);
            take();
        } else {
            bytes.push_back(uint8_t(number("a byte", INT8_MIN, UINT8_MAX)));
        }
    }
    return bytes;
}

std::string CommandWords::words_up_to(size_t end, std::string_view what) {
    if (next == end) return fail(std::string(what) + " is missing"), std::string();
    const char* const first = words[next].data();
    const char* const last = words[end - 1].data() + words[end - 1].size();
    next = end;
    return {first, last};
}

std::string CommandWords::expression(std::initializer_list<std::string_view> ends) {
    const auto is_end = [&](std::string_view word) {
        return word.starts_with('"') || std::ranges::any_of(ends, [&](std::string_view end) {
                   return is_same_word(word, end);
               });
    };
    size_t end = next;
    while (end < words.size() && !is_end(words[end])) ++end;
    std::string text = words_up_to(end, "an expression");
    std::string why;
    if (!text.empty() && !Expression::parse(text, &debugger_symbols(), why)) {
        judge(text + ": " + why);
    }
    return text;
}

std::string CommandWords::rest(std::string_view what) { return words_up_to(words.size(), what); }

void CommandWords::fail(std::string why) {
    if (told.empty()) told = std::move(why);
}

bool CommandWords::acts() {
    if (!empty()) fail(std::string(peek()) + ": not expected here");
    return told.empty() && !checks;
}
