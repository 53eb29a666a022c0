#include "debugger/expression.h"

#include "debugger/expression_steps.h"
#include "debugger/registers.h"
#include "debugger/symbols.h"
#include "files/file_names.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace {

constexpr size_t LONGEST_EXPRESSION = 4096;
constexpr int DEEPEST_NESTING = 100;

/// What has happened, in the order of the variables.
constexpr std::string_view happenings[] = {"hits", "value", "before", "address",
                                           "from", "cycle", "frame",  "line"};

std::optional<int64_t> variable_of(std::string_view small_name) {
    if (const register_name* of = find_register(small_name)) return of - register_names.data();
    const auto* const found = std::ranges::find(happenings, small_name);
    if (found == std::end(happenings)) return {};
    return VARIABLE_HITS + (found - std::begin(happenings));
}

bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool is_digit(char c) { return c >= '0' && c <= '9'; }
bool begins_name(char c) { return is_letter(c) || c == '_' || c == '.' || c == '?'; }
bool goes_on_name(char c) { return begins_name(c) || is_digit(c) || c == '$'; }

std::optional<int64_t> number_in(std::string_view digits, int base) {
    int64_t value = 0;
    const char* const end = digits.data() + digits.size();
    const auto read = std::from_chars(digits.data(), end, value, base);
    if (digits.empty() || digits.front() == '-' || read.ptr != end || read.ec != std::errc()) {
        return {};
    }
    return value;
}

/// In the forms that begin with a digit.
std::optional<int64_t> number_of(const std::string& small_text) {
    const std::string_view text = small_text;
    if (text.ends_with('h')) return number_in(text.substr(0, text.size() - 1), 16);
    if (text.starts_with("0x")) return number_in(text.substr(2), 16);
    if (text.starts_with("0b")) return number_in(text.substr(2), 2);
    return number_in(text, 10);
}

} // namespace

class ExpressionParser {
public:
    ExpressionParser(std::string_view source, const SymbolTable* known)
        : text(source), symbols(known) {}

    std::optional<Expression> parse(std::string& told) {
        if (text.size() > LONGEST_EXPRESSION) {
            fail(LONGEST_EXPRESSION, "the expression is too long");
        } else {
            binary(0);
            if (at < text.size()) fail(at, "an operator is missing");
        }
        if (!problem.empty()) {
            told = problem;
            return {};
        }
        return std::move(result);
    }

private:
    using Op = Expression::Op;

    struct Operator {
        std::string_view sign;
        int priority;
        Op op;
    };
    static constexpr int AND = 1, OR = 0;
    /// Longer signs stand before those that they begin with.
    static constexpr Operator operators[] = {
        {"||", OR, Op::if_not_zero},  {"&&", AND, Op::if_zero},
        {"==", 5, Op::equal},         {"!=", 5, Op::not_equal},
        {"<<", 7, Op::shift_left},    {">>", 7, Op::shift_right},
        {"<=", 6, Op::less_or_equal}, {">=", 6, Op::greater_or_equal},
        {"<", 6, Op::less},           {">", 6, Op::greater},
        {"|", 2, Op::bit_or},         {"^", 3, Op::bit_xor},
        {"&", 4, Op::bit_and},        {"+", 8, Op::add},
        {"-", 8, Op::subtract},       {"*", 9, Op::multiply},
        {"/", 9, Op::divide},         {"%", 9, Op::remainder},
    };
    static bool is_decision(int priority) {
        return priority <= AND || priority == 5 || priority == 6;
    }

    void fail(size_t where, const std::string& why) {
        if (problem.empty()) problem = "column " + std::to_string(where + 1) + ": " + why;
        at = text.size(); // ends all loops
    }

    void skip_blanks() {
        while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) ++at;
    }

    bool take(char wanted) {
        if (at >= text.size() || text[at] != wanted) return false;
        ++at;
        skip_blanks();
        return true;
    }

    const Operator* next_operator() const {
        for (const Operator& op : operators) {
            if (text.substr(at).starts_with(op.sign)) return &op;
        }
        return nullptr;
    }

    void emit(Op op, int64_t operand = 0) {
        result.steps.push_back({op, operand});
        if (op == Op::number || op == Op::variable) ++height;
        if (op >= Op::multiply) --height;
        if (height > EXPRESSION_STACK) fail(at, "the expression is too deep");
    }

    /// What follows, as far as its operators have at least this priority. Returns whether the
    /// outermost one decides something, so that round brackets around it only group.
    bool binary(int least) {
        skip_blanks();
        bool decides = operand();
        while (const Operator* op = at < text.size() ? next_operator() : nullptr) {
            if (op->priority < least) break;
            at += op->sign.size();
            if (op->priority <= AND) {
                decision(*op);
            } else {
                binary(op->priority + 1);
                emit(op->op);
            }
            decides = is_decision(op->priority);
        }
        return decides;
    }

    /// The right side is left out where the left one decides.
    void decision(const Operator& op) {
        emit(Op::is_not_zero);
        const size_t jump = result.steps.size();
        emit(op.op);
        binary(op.priority + 1);
        emit(Op::is_not_zero);
        result.steps[jump].operand = int64_t(result.steps.size());
    }

    bool operand() {
        if (at >= text.size()) fail(at, "an operand is missing");
        if (++nesting > DEEPEST_NESTING) fail(at, "the expression is too deep");
        const bool decides = at < text.size() && primary();
        --nesting;
        skip_blanks();
        return decides;
    }

    bool primary() {
        const size_t start = at;
        const char first = text[at];
        if (take('[')) return bracketed(start, ']');
        if (take('(')) return round_brackets(start);
        if (take('!')) {
            operand();
            emit(Op::is_zero);
            return true;
        }
        if (take('-') || take('~')) {
            operand();
            emit(first == '-' ? Op::negate : Op::complement);
        } else if (take('+')) {
            operand();
        } else if (take('@')) {
            symbol(start, name());
        } else if (first == '\'') {
            quoted(start);
        } else if (first == '$' || first == '%') {
            prefixed(start, first == '$' ? 16 : 2);
        } else if (is_digit(first)) {
            number(start);
        } else if (begins_name(first)) {
            named(start);
        } else {
            fail(start, "an operand is missing");
        }
        return false;
    }

    bool bracketed(size_t start, char end) {
        const bool decides = binary(0);
        if (!take(end)) fail(start, std::string("the \"") + end + "\" of this bracket is missing");
        return decides;
    }

    bool round_brackets(size_t start) {
        const bool groups = bracketed(start, ')');
        if (!groups) emit(Op::read_byte);
        return groups;
    }

    std::string_view name() {
        const size_t start = at;
        while (at < text.size() && goes_on_name(text[at])) ++at;
        return text.substr(start, at - start);
    }

    void symbol(size_t start, std::string_view name) {
        const auto value = symbols ? symbols->value_of(name) : std::nullopt;
        if (!value) return fail(start, "\"" + std::string(name) + "\" " + std::string(NO_SYMBOL));
        emit(Op::number, *value);
    }

    void number_or_fail(size_t start, std::optional<int64_t> value) {
        if (value) return emit(Op::number, *value);
        fail(start, "\"" + std::string(text.substr(start, at - start)) + "\" is no number");
    }

    void number(size_t start) {
        const std::string digits = lower_case(std::string(name()));
        number_or_fail(start, number_of(digits));
    }

    void prefixed(size_t start, int base) {
        ++at;
        const std::string_view digits = name();
        number_or_fail(start, number_in(digits, base));
    }

    void quoted(size_t start) {
        if (start + 2 >= text.size() || text[start + 2] != '\'') {
            return fail(start, "a character stands between two \"'\"");
        }
        emit(Op::number, uint8_t(text[start + 1]));
        at = start + 3;
    }

    void named(size_t start) {
        const std::string_view whole = name();
        std::string small = lower_case(std::string(whole));
        if (at < text.size() && text[at] == '\'' && variable_of(small + "'")) {
            small += text[at++];
        }
        const size_t behind = at;
        skip_blanks();
        if (at < text.size() && text[at] == '(') {
            if (small == "byte") return function(Op::read_byte);
            if (small == "word" || small == "w") return function(Op::read_word);
            if (small == "port") return function(Op::read_port);
        }
        at = behind;
        if (const auto variable = variable_of(small)) return emit(Op::variable, *variable);
        symbol(start, whole);
    }

    void function(Op op) {
        const size_t start = at;
        take('(');
        bracketed(start, ')');
        emit(op);
    }

    std::string_view text;
    const SymbolTable* symbols;
    size_t at = 0;
    int nesting = 0;
    int height = 0; ///< of the stack behind the steps so far
    std::string problem;
    Expression result;
};

std::optional<Expression> Expression::parse(std::string_view text, const SymbolTable* symbols,
                                            std::string& problem) {
    return ExpressionParser(text, symbols).parse(problem);
}

std::optional<uint16_t> parse_address(std::string_view text, const SymbolTable* symbols,
                                      std::string& problem) {
    while (text.ends_with(' ')) text.remove_suffix(1);
    while (text.starts_with(' ')) text.remove_prefix(1);
    const bool is_name =
        variable_of(lower_case(std::string(text))) || (symbols && symbols->value_of(text));
    if (text.size() <= 4 && !is_name) {
        if (const auto digits = number_in(text, 16)) return uint16_t(*digits);
    }
    const auto expression = Expression::parse(text, symbols, problem);
    if (!expression) return {};
    return uint16_t(expression->value({}));
}
