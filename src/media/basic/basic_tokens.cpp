#include "media/basic/basic_tokens.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <map>
#include <string_view>

namespace {

using namespace std::literals;

constexpr unsigned FIRST_TOKEN = 0x80, TAPE_MARK = 0xFF, EXTENDED = 0xFF;
constexpr unsigned DATA = 0x88, REM = 0x93, ELSE = 0x95, PRINT = 0xB2, QUOTE = 0xFB;
constexpr unsigned PROGRAM_START = 0x5801, MEMORY_END = 0xC000, LAST_NUMBER = 65529;
constexpr unsigned LINE_HEAD = 4; ///< address of the next line, number

/// The arrow of the power operator; ASCII text has ^ for it.
constexpr char ARROW = '[';

/// 80 to FA.
constexpr std::array WORDS{
    "END"sv,     "FOR"sv,    "RESET"sv,  "SET"sv,    "CLS"sv,     "CMD"sv,   "RANDOM"sv, "NEXT"sv,
    "DATA"sv,    "INPUT"sv,  "DIM"sv,    "READ"sv,   "LET"sv,     "GOTO"sv,  "RUN"sv,    "IF"sv,
    "RESTORE"sv, "GOSUB"sv,  "RETURN"sv, "REM"sv,    "STOP"sv,    "ELSE"sv,  "TRON"sv,   "TROFF"sv,
    "DEFSTR"sv,  "DEFINT"sv, "DEFSNG"sv, "DEFDBL"sv, "LINE"sv,    "EDIT"sv,  "ERROR"sv,  "RESUME"sv,
    "OUT"sv,     "ON"sv,     "OPEN"sv,   "FIELD"sv,  "GET"sv,     "PUT"sv,   "CLOSE"sv,  "LOAD"sv,
    "MERGE"sv,   "NAME"sv,   "KILL"sv,   "LSET"sv,   "RSET"sv,    "SAVE"sv,  "SYSTEM"sv, "LPRINT"sv,
    "DEF"sv,     "POKE"sv,   "PRINT"sv,  "CONT"sv,   "LIST"sv,    "LLIST"sv, "DELETE"sv, "AUTO"sv,
    "CLEAR"sv,   "CLOAD"sv,  "CSAVE"sv,  "NEW"sv,    "TAB("sv,    "TO"sv,    "FN"sv,     "USING"sv,
    "VARPTR"sv,  "USR"sv,    "ERL"sv,    "ERR"sv,    "STRING$"sv, "INSTR"sv, "POINT"sv,  "TIME$"sv,
    "MEM"sv,     "INKEY$"sv, "THEN"sv,   "NOT"sv,    "STEP"sv,    "+"sv,     "-"sv,      "*"sv,
    "/"sv,       "["sv,      "AND"sv,    "OR"sv,     ">"sv,       "="sv,     "<"sv,      "SGN"sv,
    "INT"sv,     "ABS"sv,    "FRE"sv,    "INP"sv,    "POS"sv,     "SQR"sv,   "RND"sv,    "LOG"sv,
    "EXP"sv,     "COS"sv,    "SIN"sv,    "TAN"sv,    "ATN"sv,     "PEEK"sv,  "CVI"sv,    "CVS"sv,
    "CVD"sv,     "EOF"sv,    "LOC"sv,    "LOF"sv,    "MKI$"sv,    "MKS$"sv,  "MKD$"sv,   "CINT"sv,
    "CSNG"sv,    "CDBL"sv,   "FIX"sv,    "LEN"sv,    "STR$"sv,    "VAL"sv,   "ASC"sv,    "CHR$"sv,
    "LEFT$"sv,   "RIGHT$"sv, "MID$"sv};
static_assert(FIRST_TOKEN + WORDS.size() == QUOTE);

/// FF, and 80 to 99.
constexpr std::array EXTENDED_WORDS{
    "COLOUR"sv, "FCOLOU"sv, "KEYPAD"sv, "JOY"sv,   "PLOT"sv,  "FGR"sv,    "LGR"sv,
    "FCLS"sv,   "PLAY"sv,   "CIRCLE"sv, "SCALE"sv, "SHAPE"sv, "NSHAPE"sv, "XSHAPE"sv,
    "PAINT"sv,  "CPOINT"sv, "NPLOT"sv,  "SOUND"sv, "CHAR"sv,  "RENUM"sv,  "SWAP"sv,
    "FKEY"sv,   "CALL"sv,   "VERIFY"sv, "BGRD"sv,  "NBGRD"sv};

/// A character of the text; one that was written \xNN is never part of a word.
struct Character {
    uint8_t byte;
    bool escaped;
    bool is(char c) const { return !escaped && byte == uint8_t(c); }
    char capital() const {
        if (escaped) return 0;
        return char(byte >= 'a' && byte <= 'z' ? byte - 'a' + 'A' : byte);
    }
};
using Line = std::vector<Character>;

int hexadecimal(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    const int letter = std::tolower(static_cast<unsigned char>(c));
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

/// The keys that characters of a listing stand for when it is typed.
char machine_character(char c) {
    switch (c) {
    case '\t': return ' ';
    case '^': return ARROW;
    case '`': return '\'';
    default: return c;
    }
}

Line read_escapes(std::string_view text) {
    Line line;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text.substr(at, 2) == "\\x" && at + 3 < text.size()) {
            const int high = hexadecimal(text[at + 2]), low = hexadecimal(text[at + 3]);
            if (high >= 0 && low >= 0) {
                line.push_back({uint8_t(high * 16 + low), true});
                at += 3;
                continue;
            }
        }
        line.push_back({uint8_t(machine_character(text[at])), false});
    }
    return line;
}

std::string escape(uint8_t byte) {
    constexpr char digits[] = "0123456789ABCDEF";
    return {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
}

/// A byte as text that gives the byte again.
std::string listed(uint8_t byte) {
    if (byte == ARROW) return "^";
    const bool plain = byte >= ' ' && byte < 0x7F && machine_character(char(byte)) == char(byte);
    return plain ? std::string(1, char(byte)) : escape(byte);
}

bool stands_at(const Line& line, size_t at, std::string_view word) {
    if (line.size() - at < word.size()) return false;
    for (size_t i = 0; i < word.size(); ++i)
        if (line[at + i].capital() != word[i]) return false;
    return true;
}

struct Word {
    unsigned token = 0; ///< below 80: number of a word of two bytes
    size_t length = 0;
};

/// The longest word at a place.
Word word_at(const Line& line, size_t at) {
    Word best;
    const auto search = [&](const auto& words, unsigned first) {
        for (unsigned i = 0; i < words.size(); ++i)
            if (words[i].size() > best.length && stands_at(line, at, words[i]))
                best = {first + i, words[i].size()};
    };
    search(WORDS, FIRST_TOKEN);
    search(EXTENDED_WORDS, 0);
    return best;
}

class Tokenizer {
public:
    explicit Tokenizer(const Line& line) : line_(line) {}

    BasicBytes run() {
        while (at_ < line_.size()) step();
        return std::move(out_);
    }

private:
    void copy() { out_.push_back(line_[at_++].byte); }
    void copy_rest() {
        while (at_ < line_.size()) copy();
    }
    void copy_string() {
        do copy();
        while (at_ < line_.size() && !line_[at_].is('"'));
        if (at_ < line_.size()) copy();
    }
    /// Up to a colon outside strings.
    void copy_data() {
        while (at_ < line_.size() && !line_[at_].is(':')) {
            if (line_[at_].is('"'))
                copy_string();
            else
                copy();
        }
    }
    /// Digits of a hexadecimal number are no words.
    void copy_hexadecimal() {
        copy();
        if (at_ >= line_.size() || line_[at_].capital() != 'H') return;
        do {
            out_.push_back(uint8_t(line_[at_++].capital()));
        } while (at_ < line_.size() && hexadecimal(line_[at_].capital()) >= 0);
    }

    void step() {
        const Character c = line_[at_];
        if (c.escaped) return copy();
        if (c.byte == '"') return copy_string();
        if (c.byte == '&') return copy_hexadecimal();
        if (c.byte == '?') {
            ++at_;
            return out_.push_back(PRINT);
        }
        if (c.byte == '\'') {
            ++at_;
            out_.insert(out_.end(), {':', REM, QUOTE});
            return copy_rest();
        }
        const Word word = word_at(line_, at_);
        if (word.length == 0) {
            ++at_;
            return out_.push_back(uint8_t(c.capital()));
        }
        at_ += word.length;
        put_word(word.token);
    }

    void put_word(unsigned token) {
        if (token < FIRST_TOKEN) {
            out_.insert(out_.end(), {EXTENDED, uint8_t(FIRST_TOKEN + token)});
            return;
        }
        if (token == ELSE) out_.push_back(':');
        out_.push_back(uint8_t(token));
        if (token == DATA) copy_data();
        if (token == REM) copy_rest();
    }

    const Line& line_;
    size_t at_ = 0;
    BasicBytes out_;
};

/// A piece of a line in memory with its text.
struct Piece {
    BasicBytes bytes;
    std::string text;
};

std::string escape_all(const BasicBytes& bytes) {
    std::string text;
    for (const uint8_t byte : bytes) text += escape(byte);
    return text;
}

/// Tells the characters of strings, DATA and remarks from words.
class Reader {
public:
    explicit Reader(const BasicBytes& line) : line_(line) {}

    std::vector<Piece> run() {
        while (at_ < line_.size()) pieces_.push_back(piece());
        return std::move(pieces_);
    }

private:
    unsigned ahead(size_t distance) const {
        return at_ + distance < line_.size() ? line_[at_ + distance] : 0u;
    }
    Piece take(size_t length, std::string text) {
        const auto first = line_.begin() + long(at_);
        at_ += length;
        return {{first, first + long(length)}, std::move(text)};
    }

    Piece piece() {
        const uint8_t byte = line_[at_];
        if (byte == '"') in_string_ = !in_string_;
        if (byte == ':' && !in_string_) in_data_ = false;
        if (in_string_ || in_data_ || in_remark_ || byte == '"') return character();
        if (byte == ':' && ahead(1) == ELSE) return take(2, "ELSE");
        if (byte == ':' && ahead(1) == REM && ahead(2) == QUOTE) {
            in_remark_ = true;
            return take(3, "'");
        }
        if (byte == EXTENDED) {
            const unsigned number = ahead(1) - FIRST_TOKEN;
            if (number >= EXTENDED_WORDS.size()) return character();
            return take(2, std::string(EXTENDED_WORDS[number]));
        }
        if (byte < FIRST_TOKEN || byte == ELSE || byte == QUOTE ||
            byte - FIRST_TOKEN >= WORDS.size())
            return character();
        in_data_ = byte == DATA;
        in_remark_ = byte == REM;
        const std::string_view word = WORDS[byte - FIRST_TOKEN];
        return take(1, word[0] == ARROW ? "^" : std::string(word));
    }
    Piece character() { return take(1, listed(line_[at_])); }

    const BasicBytes& line_;
    size_t at_ = 0;
    bool in_string_ = false, in_data_ = false, in_remark_ = false;
    std::vector<Piece> pieces_;
};

/// Splits the number off a typed line as the machine does: blanks between its digits do not
/// count, and one blank behind it is not kept.
struct NumberedLine {
    bool numbered = false;
    uint32_t number = 0;
    Line text;
};

NumberedLine split_number(const Line& line) {
    NumberedLine result;
    size_t end = 0;
    for (size_t at = 0; at < line.size(); ++at) {
        if (line[at].is(' ') || line[at].is('\t')) continue;
        if (line[at].escaped || line[at].byte < '0' || line[at].byte > '9') break;
        result.numbered = true;
        result.number = std::min(result.number * 10 + (line[at].byte - '0'), 1000000u);
        end = at + 1;
    }
    if (end < line.size() && line[end].is(' ')) ++end;
    result.text.assign(line.begin() + long(end), line.end());
    return result;
}

/// Repairs of a line, each of which reads all of it again: more than any that was typed needs.
constexpr size_t MOST_REPAIRS = 32;

/// Text of a line that becomes the same bytes again: what would be read otherwise, as the letters
/// of a word that are no token, is escaped. A line that is full of them is escaped from there on.
std::string line_text(unsigned number, const BasicBytes& bytes) {
    std::vector<Piece> pieces = Reader(bytes).run();
    size_t length = std::to_string(number).size() + 1;
    for (const Piece& piece : pieces) length += read_escapes(piece.text).size();
    for (Piece& piece : pieces)
        if (length > LONGEST_BASIC_LINE && piece.text == "PRINT") piece.text = "?";
    for (size_t tries = 0; tries <= std::min(pieces.size(), 2 * MOST_REPAIRS); ++tries) {
        std::string text = std::to_string(number) + " ";
        for (const Piece& piece : pieces) text += piece.text;
        const Line line = read_escapes(text);
        const BasicBytes back = Tokenizer(split_number(line).text).run();
        const auto [there, here] = std::ranges::mismatch(bytes, back);
        if (there == bytes.end() && here == back.end() && split_number(line).number == number)
            return text;
        const size_t wrong =
            split_number(line).number == number ? size_t(there - bytes.begin()) : 0;
        size_t at = 0, begin = 0;
        while (at + 1 < pieces.size() && begin + pieces[at].bytes.size() <= wrong)
            begin += pieces[at++].bytes.size();
        const size_t end = tries < MOST_REPAIRS ? at + 1 : pieces.size();
        for (; at < end; ++at) pieces[at].text = escape_all(pieces[at].bytes);
    }
    return std::to_string(number) + " " + escape_all(bytes);
}

void put_address(BasicBytes& out, size_t value) {
    out.push_back(uint8_t(value));
    out.push_back(uint8_t(value >> 8));
}

std::vector<std::string_view> split_lines(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const size_t end = std::min(text.find_first_of("\r\n"), text.size());
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end);
        text.remove_prefix(text.starts_with("\r\n") ? 2 : std::min<size_t>(text.size(), 1));
    }
    return lines;
}

std::string check_characters(std::string_view text) {
    for (const char c : text) {
        const auto byte = static_cast<uint8_t>(c);
        if (c != '\t' && (byte < ' ' || byte >= 0x7F))
            return "byte " + escape(byte).substr(2) + " is not ASCII text, write it as " +
                   escape(byte);
    }
    return {};
}

bool is_run(std::string_view text) {
    std::string word;
    for (const char c : text)
        if (c != ' ') word += char(std::toupper(static_cast<unsigned char>(c)));
    return word == "RUN";
}

} // namespace

BasicBytes basic_tokenize(const std::string& text) {
    const Line line = read_escapes(text);
    return Tokenizer(line).run();
}

std::optional<BasicBytes> basic_encode(const std::string& text, BasicProblem& problem,
                                       size_t longest_line) {
    const std::vector<std::string_view> lines = split_lines(text);
    size_t last = lines.size();
    while (last > 0 && lines[last - 1].find_first_not_of(" \t") == std::string_view::npos) --last;

    std::map<uint32_t, BasicBytes> program;
    for (size_t i = 0; i < last; ++i) {
        problem.line = unsigned(i + 1);
        if (lines[i].find_first_not_of(" \t") == std::string_view::npos) continue;
        if (i + 1 == last && is_run(lines[i])) continue;
        problem.text = check_characters(lines[i]);
        if (!problem.text.empty()) return {};
        const Line characters = read_escapes(lines[i]);
        for (const Character& c : characters)
            if (c.byte == 0) return problem.text = "a line cannot hold the byte 00", std::nullopt;
        if (characters.size() > longest_line)
            return problem.text = "a line of " + std::to_string(characters.size()) +
                                  " characters, of which the machine takes " +
                                  std::to_string(longest_line),
                   std::nullopt;
        const NumberedLine line = split_number(characters);
        if (!line.numbered) return problem.text = "no line number", std::nullopt;
        if (line.number > LAST_NUMBER)
            return problem.text = "line number above " + std::to_string(LAST_NUMBER), std::nullopt;
        if (line.text.empty())
            program.erase(line.number);
        else
            program[line.number] = Tokenizer(line.text).run();
    }

    problem.line = 0;
    BasicBytes file{TAPE_MARK};
    for (const auto& [number, bytes] : program) {
        // FF stands before 5801 in the file, so that the place there is one ahead of the address.
        put_address(file, PROGRAM_START - 1 + file.size() + LINE_HEAD + bytes.size() + 1);
        put_address(file, number);
        file.insert(file.end(), bytes.begin(), bytes.end());
        file.push_back(0);
    }
    put_address(file, 0);
    if (PROGRAM_START - 1 + file.size() > MEMORY_END)
        return problem.text = "the program is too long for the memory", std::nullopt;
    return file;
}

std::optional<std::string> basic_decode(const BasicBytes& file, BasicProblem& problem) {
    problem.line = 0;
    if (file.empty() || file[0] != TAPE_MARK)
        return problem.text = "no tokenized program: the first byte is not FF", std::nullopt;
    std::string text;
    for (size_t at = 1;;) {
        if (at + 2 > file.size()) break;
        if (file[at] == 0 && file[at + 1] == 0) return text;
        if (at + LINE_HEAD > file.size()) break;
        const unsigned number = file[at + 2] + 256u * file[at + 3];
        problem.line = number;
        if (number > LAST_NUMBER)
            return problem.text = "line number above " + std::to_string(LAST_NUMBER), std::nullopt;
        const auto first = file.begin() + long(at + LINE_HEAD);
        const auto end = std::find(first, file.end(), 0);
        if (end == file.end()) break;
        text += line_text(number, BasicBytes(first, end)) + "\n";
        at = size_t(end - file.begin()) + 1;
    }
    problem.text = "the file ends before the program does";
    return {};
}
