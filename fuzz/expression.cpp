/// Conditions and other expressions: any text, and expressions grown from the input, whose value is
/// known from how they were grown.

#include "debugger/expression.h"

#include "cgenie/memory/memory.h"
#include "debugger/symbols.h"
#include "support/input.h"
#include "support/machine.h"
#include "z80/z80.h"

#include <iterator>

namespace {

using Wide = __int128;

struct Grown {
    std::string text;
    int64_t value;
};

/// The low 64 bits with their sign.
int64_t wrapped(Wide value) { return int64_t(uint64_t(value)); }

int64_t shifted(int64_t value, int64_t by, bool left) {
    if (by < 0 || by > 63) return !left && value < 0 ? -1 : 0;
    return left ? int64_t(uint64_t(value) << by) : value >> by;
}

const char* const signs[] = {"*", "/",  "%",  "+",  "-", "<<", ">>", "<",  "<=",
                             ">", ">=", "==", "!=", "&", "^",  "|",  "&&", "||"};

int64_t joined(unsigned sign, int64_t left, int64_t right) {
    const Wide a = left, b = right;
    switch (sign) {
    case 0: return wrapped(a * b);
    case 1: return b == 0 ? 0 : wrapped(a / b);
    case 2: return b == 0 ? 0 : wrapped(a % b);
    case 3: return wrapped(a + b);
    case 4: return wrapped(a - b);
    case 5: return shifted(left, right, true);
    case 6: return shifted(left, right, false);
    case 7: return a < b;
    case 8: return a <= b;
    case 9: return a > b;
    case 10: return a >= b;
    case 11: return a == b;
    case 12: return a != b;
    case 13: return left & right;
    case 14: return left ^ right;
    case 15: return left | right;
    case 16: return a && b;
    default: return a || b;
    }
}

Grown grow(Input& input, int depth) {
    const uint8_t kind = input.byte();
    if (depth == 0 || kind < 40) return {std::to_string(kind), kind};
    if (kind < 60) return {"hl'", z80_state.hl_alt};
    if (kind < 70) {
        const Grown of = grow(input, depth - 1);
        return {"byte(" + of.text + " & 0x3fff)", memory[of.value & 0x3FFF]};
    }
    if (kind < 100) {
        const Grown of = grow(input, depth - 1);
        if (kind % 3 == 0) return {"-" + of.text, wrapped(-Wide(of.value))};
        if (kind % 3 == 1) return {"~" + of.text, ~of.value};
        return {"!" + of.text, !of.value};
    }
    const Grown left = grow(input, depth - 1), right = grow(input, depth - 1);
    const unsigned sign = kind % std::size(signs);
    return {"[" + left.text + signs[sign] + right.text + "]",
            joined(sign, left.value, right.value)};
}

void any_text(const std::string& text, const SymbolTable& symbols) {
    const z80_record before = z80_state;
    std::string problem;
    if (const auto expression = Expression::parse(text, &symbols, problem)) {
        const int64_t value = expression->value({});
        const auto again = Expression::parse("[" + text + "]", &symbols, problem);
        require(!again || again->value({}) == value, "brackets around it change nothing");
    } else {
        require(problem.starts_with("column "), "a problem has its column");
    }
    parse_address(text, &symbols, problem);
    format_log(text, &symbols, {});
    require(std::memcmp(&before, &z80_state, sizeof before) == 0, "a look changes nothing");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool is_ready = [] {
        fresh_machine();
        return true;
    }();
    Input input(data, size);
    if (!is_ready || input.byte() & 1) {
        SymbolTable symbols;
        symbols.add({"lives", 0x9000});
        any_text(input.text(size), symbols);
        return 0;
    }
    z80_state.hl_alt = input.word();
    const Grown grown = grow(input, 8);
    std::string problem;
    const auto expression = Expression::parse(grown.text, nullptr, problem);
    require(expression.has_value() || grown.text.size() > 4000, "a grown expression is one");
    if (expression) require(expression->value({}) == grown.value, "its value is that of C");
    return 0;
}
