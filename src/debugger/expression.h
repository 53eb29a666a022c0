#pragma once
/// Expressions over the machine, for conditions, watches, logged lines and addresses.
///
/// Numbers: 12, 0x1F, $1F, 1Fh, %101, 0b101, 'A'. Registers in any case: a f b c d e h l i r, af bc
/// de hl ix iy sp pc, ixh ixl iyh iyl, the second set with "'" (a' to l', af' to hl'); flags fs fz
/// fh fp fn fc; iff1, iff2, im. What has happened, where that is known: hits, value, before,
/// address, from, cycle, frame, line. Any other name is a symbol, and so is any behind "@".
///
/// Operators are those of C with its priorities, all on 64 bits with a sign:
///   - ~ !   * / %   + -   << >>   < <= > >=   == !=   &   ^   |   &&   ||
/// Comparisons and && || ! give 0 or 1. Overflow wraps; a division by 0 gives 0; a shift by less
/// than 0 or more than 63 moves all bits out.
///
/// Memory: (address) is the byte there, as in the processor's assembly: (hl), (lives + 1). Round
/// brackets whose outermost operator is a comparison, &&, || or ! only group: (a == 3 || b == 4).
/// Square brackets always group: [a + 1] * 2. byte(address), word(address) or w(address), and
/// port(number), the byte last written to a port, are what they say whatever stands in them.
/// Looking at memory changes nothing.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class SymbolTable;

/// How the problem of a name that is not known ends.
constexpr std::string_view NO_SYMBOL = "is no register and no symbol";

/// What the variables of an expression are.
struct ExpressionContext {
    int64_t hits = 0;    ///< of the breakpoint, this one included
    int64_t value = 0;   ///< the byte that was read or written
    int64_t before = 0;  ///< what a written byte was before
    int64_t address = 0; ///< of the access
    int64_t from = 0;    ///< PC of the instruction that did it
    int64_t cycle = 0;
    int64_t frame = 0;
    int64_t line = 0; ///< raster line
};

class Expression {
public:
    /// Empty for a text that is none; `problem` then says why and in which column, from 1 on.
    /// Symbols are looked up now; `symbols` may be null.
    static std::optional<Expression> parse(std::string_view text, const SymbolTable* symbols,
                                           std::string& problem);

    /// Its value for the machine as it is. It allocates nothing.
    int64_t value(const ExpressionContext& context) const;
    bool holds(const ExpressionContext& context) const { return value(context) != 0; }
    /// Whether it depends on how often the breakpoint was hit.
    bool uses_hits() const;

private:
    friend class ExpressionParser;
    enum class Op : uint8_t;
    struct Step {
        Op op;
        int64_t operand;
    };
    static int64_t variable(int64_t which, const ExpressionContext& context);
    static int64_t calculate(Op op, int64_t left, int64_t right);

    std::vector<Step> steps;
};

/// Where an address is asked for: one to four hexadecimal digits that are no name, as the listing
/// has them, or an expression, of which the low 16 bits count.
std::optional<uint16_t> parse_address(std::string_view text, const SymbolTable* symbols,
                                      std::string& problem);

/// A line with values: {expression}, {expression:x} hexadecimal, {expression:b} binary,
/// {expression:c} as a character, {expression:s} as the nearest symbol; {{ and }} are brackets.
class LogText {
public:
    /// As Expression::parse. `symbols` must live as long as the text.
    static std::optional<LogText> parse(std::string_view format, const SymbolTable* symbols,
                                        std::string& problem);
    std::string text(const ExpressionContext& context) const;

private:
    struct Part {
        std::string before; ///< what stands before the value
        std::optional<Expression> expression;
        char form = 'd';
    };
    std::vector<Part> parts;
    const SymbolTable* names = nullptr;
};

/// The line, or what is wrong with the format.
std::string format_log(std::string_view format, const SymbolTable* symbols,
                       const ExpressionContext& context);
