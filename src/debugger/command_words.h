#pragma once
/// A line of a command language, taken word by word.
///
/// Words stand between blanks; brackets and quotation marks keep blanks in them together. A word
/// that begins with "#" or ";" begins a comment. Texts may stand in quotation marks, with \" \\ \n
/// (RETURN, as \r) \t and \x and two hexadecimal digits in them.
///
/// What is wrong first is kept; whatever is taken after that means nothing.

#include "debugger/commands.h"

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct ExpressionContext;

/// What an expression of the user's finds at this moment: the last hit, frame, cycle and line.
ExpressionContext debugger_context();

class CommandWords {
public:
    /// With `checks_only` symbols that are not known count as 0, and acts() is false.
    explicit CommandWords(std::string_view line, bool checks_only = false);

    bool empty() const { return next == words.size(); }
    /// The next word, as it stands there; empty at the end.
    std::string_view peek() const { return empty() ? std::string_view() : words[next]; }
    std::string_view take();
    /// Takes the next word if it is this one, in any case.
    bool take_if(std::string_view word);
    /// The next word without its quotation marks. Without one, `what` is missing.
    std::string text(std::string_view what);
    /// The number of the next word among these, in any case; -1 and a problem when it is none.
    int choice(std::initializer_list<std::string_view> of);
    uint16_t address();
    /// One that is a part of a word.
    uint16_t address_in(std::string_view text);
    struct Range {
        uint16_t first = 0, last = 0;
    };
    /// FIRST-LAST, or one address. A "-" within brackets subtracts.
    Range range();
    /// An expression from `least` to `most`; without any word `usual`, if there is one.
    int64_t number(std::string_view what, int64_t least, int64_t most,
                   std::optional<int64_t> usual = {});
    /// All words that are left: texts in quotation marks, two hexadecimal digits, or expressions.
    std::vector<uint8_t> bytes();
    /// The words up to one of these, to a text in quotation marks or to the end, as they stand in
    /// the line. It is looked whether they are an expression.
    std::string expression(std::initializer_list<std::string_view> ends = {});
    /// All words that are left, as they stand in the line. Without one, `what` is missing.
    std::string rest(std::string_view what);

    void fail(std::string why);
    /// Fails with an error message of the parser of expressions, if it counts.
    void judge(const std::string& why);
    const std::string& problem() const { return told; }
    /// Nothing is wrong and no word is left, and not only that is asked.
    bool acts();
    /// What a command returns when it does not act.
    CommandResult refusal() const { return {.text = told, .failed = !told.empty()}; }

private:
    std::optional<int64_t> value(std::string_view expression);
    std::string words_up_to(size_t end, std::string_view what);

    std::vector<std::string_view> words;
    size_t next = 0;
    bool checks;
    std::string told;
};
