#include "debugger/expression.h"

#include "cgenie/memory/memory.h"
#include "debugger/expression_steps.h"
#include "debugger/formatted.h"
#include "debugger/peek.h"
#include "debugger/registers.h"
#include "debugger/symbols.h"
#include "z80/z80.h"

#include <algorithm>
#include <bitset>

namespace {

constexpr int64_t ALL_BITS = 63; ///< the farthest shift that leaves a bit

int64_t shifted_left(int64_t value, int64_t by) {
    return by < 0 || by > ALL_BITS ? 0 : int64_t(uint64_t(value) << by);
}

int64_t shifted_right(int64_t value, int64_t by) {
    return by < 0 || by > ALL_BITS ? (value < 0 ? -1 : 0) : value >> by;
}

/// The smallest number divided by -1 is itself, as its negative is.
int64_t quotient(int64_t left, int64_t right) {
    if (right == 0) return 0;
    return right == -1 ? int64_t(0 - uint64_t(left)) : left / right;
}

int64_t rest(int64_t left, int64_t right) { return right == 0 || right == -1 ? 0 : left % right; }

std::string hexadecimal(int64_t value) {
    const int digits = value >= 0 && value < 0x100 ? 2 : 4;
    return formatted("%0*llX", digits, static_cast<unsigned long long>(value));
}

std::string binary(int64_t value) {
    const auto bits = uint64_t(value);
    if (bits < 0x100) return std::bitset<8>(bits).to_string();
    if (bits < 0x10000) return std::bitset<16>(bits).to_string();
    return std::bitset<64>(bits).to_string();
}

std::string character(int64_t value) {
    const bool is_printable = value >= ' ' && value < 0x7F;
    return is_printable ? std::string(1, char(value)) : "<" + hexadecimal(value) + ">";
}

std::string in_form(int64_t value, char form, const SymbolTable* symbols) {
    switch (form) {
    case 'x': return hexadecimal(value);
    case 'b': return binary(value);
    case 'c': return character(value);
    case 's': {
        const std::string name = symbols ? symbols->near(uint16_t(value)) : "";
        return name.empty() ? hexadecimal(value) : name;
    }
    default: return std::to_string(value);
    }
}

/// The format's brackets that are no brackets of a value.
bool is_doubled(std::string_view format, size_t at) {
    return at + 1 < format.size() && format[at + 1] == format[at];
}

} // namespace

int64_t Expression::variable(int64_t which, const ExpressionContext& context) {
    if (which < VARIABLE_HITS) return register_value(z80_state, register_names[size_t(which)]);
    switch (which) {
    case VARIABLE_HITS: return context.hits;
    case VARIABLE_VALUE: return context.value;
    case VARIABLE_BEFORE: return context.before;
    case VARIABLE_ADDRESS: return context.address;
    case VARIABLE_FROM: return context.from;
    case VARIABLE_CYCLE: return context.cycle;
    case VARIABLE_FRAME: return context.frame;
    default: return context.line;
    }
}

int64_t Expression::calculate(Op op, int64_t left, int64_t right) {
    switch (op) {
    case Op::multiply: return int64_t(uint64_t(left) * uint64_t(right));
    case Op::divide: return quotient(left, right);
    case Op::remainder: return rest(left, right);
    case Op::add: return int64_t(uint64_t(left) + uint64_t(right));
    case Op::subtract: return int64_t(uint64_t(left) - uint64_t(right));
    case Op::shift_left: return shifted_left(left, right);
    case Op::shift_right: return shifted_right(left, right);
    case Op::less: return left < right;
    case Op::less_or_equal: return left <= right;
    case Op::greater: return left > right;
    case Op::greater_or_equal: return left >= right;
    case Op::equal: return left == right;
    case Op::not_equal: return left != right;
    case Op::bit_and: return left & right;
    case Op::bit_xor: return left ^ right;
    default: return left | right;
    }
}

int64_t Expression::value(const ExpressionContext& context) const {
    std::array<int64_t, EXPRESSION_STACK + 1> stack; // the first one is never used
    int64_t* top = stack.data();
    for (size_t n = 0; n < steps.size(); ++n) {
        const auto& [op, operand] = steps[n];
        switch (op) {
        case Op::number: *++top = operand; break;
        case Op::variable: *++top = variable(operand, context); break;
        case Op::negate: *top = int64_t(0 - uint64_t(*top)); break;
        case Op::complement: *top = ~*top; break;
        case Op::is_zero: *top = *top == 0; break;
        case Op::is_not_zero: *top = *top != 0; break;
        case Op::read_byte: *top = debug_peek(uint16_t(*top)); break;
        case Op::read_word: *top = debug_peek_word(uint16_t(*top)); break;
        case Op::read_port: *top = ports[uint8_t(*top)]; break;
        case Op::if_zero:
        case Op::if_not_zero:
            if ((*top == 0) == (op == Op::if_zero)) {
                n = size_t(operand) - 1;
            } else {
                --top;
            }
            break;
        default: --top; *top = calculate(op, top[0], top[1]);
        }
    }
    return *top;
}

bool Expression::uses_hits() const {
    return std::ranges::any_of(steps, [](const Step& step) {
        return step.op == Op::variable && step.operand == VARIABLE_HITS;
    });
}

std::optional<LogText> LogText::parse(std::string_view format, const SymbolTable* symbols,
                                      std::string& problem) {
    LogText log;
    log.names = symbols;
    log.parts.emplace_back();
    for (size_t at = 0; at < format.size(); ++at) {
        const char character = format[at];
        if (character != '{' || is_doubled(format, at)) {
            if (character == '{' || (character == '}' && is_doubled(format, at))) ++at;
            log.parts.back().before += character;
            continue;
        }
        const size_t end = format.find('}', at);
        if (end == std::string_view::npos) {
            problem = "column " + std::to_string(at + 1) + ": a \"{\" without its \"}\"";
            return {};
        }
        std::string_view inside = format.substr(at + 1, end - at - 1);
        Part& part = log.parts.back();
        if (inside.size() >= 2 && inside[inside.size() - 2] == ':') {
            part.form = inside.back();
            inside.remove_suffix(2);
        }
        if (std::string_view("dxbcs").find(part.form) == std::string_view::npos) {
            problem = "column " + std::to_string(end) + ": a value is shown as d, x, b, c or s";
            return {};
        }
        part.expression = Expression::parse(inside, symbols, problem);
        if (!part.expression) {
            problem.insert(0, "in {" + std::string(inside) + "}: ");
            return {};
        }
        log.parts.emplace_back();
        at = end;
    }
    return log;
}

std::string LogText::text(const ExpressionContext& context) const {
    std::string line;
    for (const Part& part : parts) {
        line += part.before;
        if (part.expression) line += in_form(part.expression->value(context), part.form, names);
    }
    return line;
}

std::string format_log(std::string_view format, const SymbolTable* symbols,
                       const ExpressionContext& context) {
    std::string problem;
    const std::optional<LogText> log = LogText::parse(format, symbols, problem);
    return log ? log->text(context) : problem;
}
