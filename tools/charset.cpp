// Turns drawings of characters into a character generator image of 256 characters x 8 bytes.
//
//   charset SHEET... IMAGE
//
// A sheet holds blocks: a line of codes (two hexadecimal digits each), then eight lines with as
// many drawings of eight signs, # for a lit pixel and . for a dark one. "copy FIRST LAST FROM"
// repeats the shapes from FROM on at FIRST to LAST; it is done at the end, so that it repeats what
// later sheets draw. Lines beginning with ; and empty lines say nothing. A later sheet replaces
// the glyphs of an earlier one; within a sheet no glyph may come twice, and in the end each of the
// 256 must be there.

#include "files/whole_file.h"

#include <array>
#include <bitset>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr unsigned CHARACTERS = 256;
constexpr unsigned ROWS = 8;
constexpr unsigned COLUMNS = 8;

struct Copy {
    unsigned first, last, from;
};

struct Charset {
    std::array<uint8_t, CHARACTERS * ROWS> image{};
    std::bitset<CHARACTERS> drawn;
    std::vector<Copy> copies;
};

int fail(const std::string& where, const std::string& text) {
    std::fprintf(stderr, "%s: %s\n", where.c_str(), text.c_str());
    return 0;
}

/// The words of the next line that says something; none at the end of the file.
std::vector<std::string> next_line(std::istream& file, unsigned& number) {
    std::string line;
    while (std::getline(file, line)) {
        ++number;
        std::istringstream stream(line);
        std::vector<std::string> words;
        for (std::string word; stream >> word;) words.push_back(word);
        if (!words.empty() && words[0][0] != ';') return words;
    }
    return {};
}

int parse_code(const std::string& word, unsigned& code) {
    if (word.size() != 2 || word.find_first_not_of("0123456789ABCDEFabcdef") != word.npos) return 0;
    code = unsigned(std::stoul(word, nullptr, 16));
    return 1;
}

int parse_row(const std::string& drawing, uint8_t& row) {
    if (drawing.size() != COLUMNS || drawing.find_first_not_of("#.") != drawing.npos) return 0;
    row = 0;
    for (char sign : drawing) row = uint8_t(row << 1 | (sign == '#'));
    return 1;
}

int add_copy(const std::vector<std::string>& words, Charset& set) {
    Copy copy{};
    if (words.size() != 4 || !parse_code(words[1], copy.first) ||
        !parse_code(words[2], copy.last) || !parse_code(words[3], copy.from))
        return 0;
    if (copy.last < copy.first || copy.from + (copy.last - copy.first) >= CHARACTERS) return 0;
    set.copies.push_back(copy);
    return 1;
}

int read_sheet(const std::string& path, Charset& set) {
    std::ifstream file(path);
    if (!file) return fail(path, "cannot read");
    std::bitset<CHARACTERS> here;
    unsigned number = 0;
    for (;;) {
        const std::vector<std::string> heads = next_line(file, number);
        if (heads.empty()) break;
        const std::string where = path + ":" + std::to_string(number);
        if (heads[0] == "copy") {
            if (!add_copy(heads, set)) return fail(where, "copy needs FIRST LAST FROM");
            continue;
        }
        std::vector<unsigned> codes;
        for (const std::string& head : heads) {
            unsigned code = 0;
            if (!parse_code(head, code)) return fail(where, "not a code: " + head);
            if (here[code]) return fail(where, "drawn twice: " + head);
            here[code] = true;
            codes.push_back(code);
        }
        for (unsigned y = 0; y < ROWS; ++y) {
            const std::vector<std::string> rows = next_line(file, number);
            const std::string row_place = path + ":" + std::to_string(number);
            if (rows.size() != codes.size()) return fail(row_place, "wrong number of drawings");
            for (size_t i = 0; i < rows.size(); ++i)
                if (!parse_row(rows[i], set.image[codes[i] * ROWS + y]))
                    return fail(row_place, "not eight # and . signs: " + rows[i]);
        }
    }
    set.drawn |= here;
    return 1;
}

void apply_copies(Charset& set) {
    for (const Copy& copy : set.copies)
        for (unsigned code = copy.first; code <= copy.last; ++code) {
            const unsigned from = copy.from + (code - copy.first);
            for (unsigned y = 0; y < ROWS; ++y)
                set.image[code * ROWS + y] = set.image[from * ROWS + y];
            set.drawn[code] = set.drawn[from];
        }
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) return fail("charset", "usage: charset SHEET... IMAGE"), 1;
    Charset set;
    for (int i = 1; i < argc - 1; ++i)
        if (!read_sheet(argv[i], set)) return 1;
    apply_copies(set);
    for (unsigned code = 0; code < CHARACTERS; ++code)
        if (!set.drawn[code])
            return fail(argv[1], "no drawing for code " + std::to_string(code)), 1;
    if (replace_whole_file(argv[argc - 1], set.image)) return 0;
    return fail(argv[argc - 1], "cannot write"), 1;
}
