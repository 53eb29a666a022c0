#pragma once
/// Programs of the machine's BASIC as text and as the bytes that the machine keeps of them.
///
/// A tokenized file is FF, then the lines as they stand in memory from 5801: address of the next
/// line (2 bytes), line number (2), text, 00; after the last line the address 0000. In the text,
/// words are single bytes 80 to FB or FF and a second byte from 80 on; strings, DATA and remarks
/// keep their characters.
///
/// Text is ASCII. A byte without a printable character of its own is written \xNN with two
/// hexadecimal digits, and stands for that byte and nothing else wherever it is. ^ is the machine's
/// arrow (5B), ` its apostrophe, as when a listing is typed in.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

using BasicBytes = std::vector<uint8_t>;

/// Characters that the machine takes when a line is typed.
constexpr size_t LONGEST_BASIC_LINE = 240;

struct BasicProblem {
    unsigned line = 0; ///< of the text, counted from 1, or number of the program's line; 0 = none
    std::string text;
};

/// The tokens of one line without its number, as the machine's line editor makes them.
BasicBytes basic_tokenize(const std::string& text);

/// Text to tokenized file. Lines may come in any order, a later one replaces an earlier one of the
/// same number, as if they were typed; a last line RUN is left out. Nothing and `problem` when the
/// text is no program, or has a line of more than `longest_line` characters.
std::optional<BasicBytes> basic_encode(const std::string& text, BasicProblem& problem,
                                       size_t longest_line = SIZE_MAX);

/// Tokenized file to text with a line feed behind each line; ? for PRINT in lines that would be too
/// long to be typed. Nothing and `problem` when the bytes
/// are no program.
std::optional<std::string> basic_decode(const BasicBytes& file, BasicProblem& problem);
