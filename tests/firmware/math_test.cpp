// The number package of the firmware, called routine by routine on the bare processor and compared
// with the host's long double arithmetic.

#include "support/flat_bus.h"
#include "support/test_files.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <map>
#include <random>

namespace {

using Real = long double;
constexpr unsigned TYPE = 0x40AF, ACCUMULATOR = 0x4124, LEFT = 0x412E; ///< exponents, types behind
constexpr unsigned TEXT = 0x6000, STACK = 0x8000, RETURN = 0x4500;
constexpr int INTEGER = 2, SINGLE = 4, DOUBLE = 8;

class Numbers : public ::testing::Test {
protected:
    Numbers() {
        flat_bus.clear();
        z80_state = {};
        z80_init(2216750);
        std::ranges::copy(read_file(FIRMWARE_IMAGE), flat_bus.memory.begin());
        std::ifstream symbols(FIRMWARE_SYMBOLS);
        std::string name, equ, value;
        while (symbols >> name >> equ >> value) {
            symbols_[name] = uint16_t(std::stoul(value, nullptr, 16));
        }
        for (size_t n = 0; n < errors_.size(); n++) errors_[n] = symbols_[ERRORS[n]];
        // The restarts go through RAM.
        constexpr const char* RESTARTS[] = {"check_syntax", "next_character", "compare_words",
                                            "test_type"};
        for (unsigned n = 0; n < 4; n++) {
            const uint16_t target = symbols_[RESTARTS[n]];
            flat_bus.load(uint16_t(0x4000 + 3 * n), {0xC3, target & 0xFF, target >> 8});
        }
    }

    /// Runs a routine to its return; false if it raised an error.
    bool call(const std::string& name) {
        const auto found = symbols_.find(name);
        EXPECT_NE(found, symbols_.end()) << name;
        if (found == symbols_.end()) return false;
        flat_bus.memory[STACK] = RETURN & 0xFF;
        flat_bus.memory[STACK + 1] = RETURN >> 8;
        z80_state.sp = STACK;
        z80_state.pc = found->second;
        const int64_t start = z80_state.t_count;
        for (int steps = 0; steps < 300000; steps++) {
            z80_run(0);
            if (z80_state.pc == RETURN) break;
            if (std::find(errors_.begin(), errors_.end(), z80_state.pc) != errors_.end())
                return false;
        }
        EXPECT_EQ(z80_state.pc, RETURN) << name << " does not return";
        cost_ = z80_state.t_count - start;
        return true;
    }
    static void put(unsigned exponent, Real value, int type) {
        auto& memory = flat_bus.memory;
        if (type == INTEGER) {
            memory[exponent - 3] = uint8_t(int(value));
            memory[exponent - 2] = uint8_t(int(value) >> 8);
            return;
        }
        int power = 0;
        const int bytes = type - 1;
        const Real mantissa = std::frexp(std::fabs(value), &power);
        const auto bits = uint64_t(std::ldexp(mantissa, 8 * bytes));
        for (int n = 0; n < bytes; n++) memory[exponent - bytes + n] = uint8_t(bits >> 8 * n);
        memory[exponent - 1] = (memory[exponent - 1] & 0x7F) | (value < 0 ? 0x80 : 0);
        memory[exponent] = value == 0 ? 0 : uint8_t(power + 128);
    }
    static void right(Real value, int type) {
        put(ACCUMULATOR, value, type);
        flat_bus.memory[TYPE] = uint8_t(type);
    }
    static void left(Real value, int type) {
        put(LEFT, value, type);
        flat_bus.memory[LEFT + 1] = uint8_t(type);
    }
    static int type() { return flat_bus.memory[TYPE]; }
    static Real result() {
        const auto& memory = flat_bus.memory;
        if (type() == INTEGER) return int16_t(memory[0x4121] | memory[0x4122] << 8);
        if (!memory[ACCUMULATOR]) return 0;
        uint64_t bits = 0;
        for (int n = 1; n < type(); n++) bits = bits << 8 | memory[ACCUMULATOR - unsigned(n)];
        const uint64_t top = uint64_t(0x80) << 8 * (type() - 2);
        const Real value =
            std::ldexp(Real(bits | top), memory[ACCUMULATOR] - 128 - 8 * (type() - 1));
        return bits & top ? -value : value;
    }
    static std::string text() {
        std::string characters;
        for (unsigned n = z80_state.hl; flat_bus.memory[n]; n++) {
            characters += char(flat_bus.memory[n]);
        }
        return characters;
    }
    bool parse(const std::string& number) {
        std::copy(number.begin(), number.end(), flat_bus.memory.begin() + TEXT);
        flat_bus.memory[TEXT + number.size()] = 0;
        z80_state.hl = TEXT;
        return call("parse_number");
    }
    std::string print() { return call("format_number") ? text() : "error"; }
    /// Distance from the true value in units of the last place.
    static Real error(Real want, int bits) {
        if (want == 0) return result() == 0 ? 0 : 1e9L;
        int power = 0;
        std::frexp(want, &power);
        return std::fabs(result() - want) / std::ldexp(Real(1), power - bits);
    }
    Real uniform(Real from, Real to) {
        return std::uniform_real_distribution<double>(double(from), double(to))(random_);
    }
    Real number(int type, int range) {
        const int bits = 8 * (type - 1);
        uint64_t mantissa = random_() >> (64 - bits) | uint64_t(1) << (bits - 1);
        if (random_() % 4 == 0) mantissa &= ~((uint64_t(1) << bits / 2) - 1);
        const Real value = std::ldexp(Real(mantissa), int(random_() % unsigned(range)) - bits);
        return random_() & 1 ? -value : value;
    }

    static constexpr const char* ERRORS[] = {"error_ov", "error_fc", "error_dz", "error_tm"};
    std::map<std::string, uint16_t> symbols_;
    std::array<uint16_t, std::size(ERRORS)> errors_ = {}; ///< reached: the routine has failed
    std::mt19937_64 random_{1};
    int64_t cost_ = 0; ///< T-states of the last call
};

TEST_F(Numbers, ArithmeticIsRoundedToNearest) {
    const std::pair<const char*, std::function<Real(Real, Real)>> operations[] = {
        {"num_add", std::plus<Real>()},
        {"num_subtract", std::minus<Real>()},
        {"num_multiply", std::multiplies<Real>()},
        {"num_divide", std::divides<Real>()}};
    for (const auto& [name, operation] : operations) {
        for (const int kind : {SINGLE, DOUBLE, INTEGER}) {
            for (int n = 0; n < (kind == DOUBLE ? 300 : 2000); n++) {
                const Real a = kind == INTEGER ? int16_t(random_()) >> random_() % 16
                                               : number(kind, n % 2 ? 60 : 6);
                Real b = kind == INTEGER ? int16_t(random_()) >> random_() % 16
                                         : number(kind, n % 2 ? 60 : 6);
                if (b == 0) b = 1;
                left(a, kind);
                right(b, kind);
                ASSERT_TRUE(call(name)) << a << ' ' << b;
                const Real want = operation(a, b);
                EXPECT_LE(error(want, kind == DOUBLE ? 56 : 24), 0.501L)
                    << name << ' ' << a << ' ' << b << " -> " << result();
                EXPECT_LT(cost_, kind == DOUBLE ? 120000 : 4000) << name;
            }
        }
    }
}

TEST_F(Numbers, FunctionsAreRightToTwoPlaces) {
    const struct {
        const char* name;
        std::function<Real(Real)> function;
        Real from, to;
    } cases[] = {
        {"func_sqr", [](Real x) { return std::sqrt(x); }, 0, 1e9L},
        {"func_exp", [](Real x) { return std::exp(x); }, -88, 88},
        {"func_log", [](Real x) { return std::log(x); }, 1e-9L, 1e9L},
        {"func_log", [](Real x) { return std::log(x); }, 0.99L, 1.01L},
        {"func_sin", [](Real x) { return std::sin(x); }, -7, 7},
        {"func_sin", [](Real x) { return std::sin(x); }, -5000, 5000},
        {"func_cos", [](Real x) { return std::cos(x); }, -5000, 5000},
        {"func_tan", [](Real x) { return std::tan(x); }, -100, 100},
        {"func_atn", [](Real x) { return std::atan(x); }, -3, 3},
        {"func_atn", [](Real x) { return std::atan(x); }, -1e5L, 1e5L},
    };
    for (const auto& [name, function, from, to] : cases) {
        for (int n = 0; n < 1000; n++) {
            const Real x = float(uniform(from, to));
            right(x, SINGLE);
            ASSERT_TRUE(call(name)) << x;
            EXPECT_LE(error(function(x), 24), 2) << name << ' ' << x << " -> " << result();
        }
    }
}

TEST_F(Numbers, Powers) {
    for (int n = 0; n < 1000; n++) {
        const Real base = float(std::exp(uniform(-20, 20)));
        const Real exponent = float(uniform(-4, 4));
        left(base, SINGLE);
        right(n % 4 ? exponent : std::round(exponent), SINGLE);
        ASSERT_TRUE(call("num_power"));
        EXPECT_LE(error(std::pow(base, n % 4 ? exponent : std::round(exponent)), 24), 2)
            << base << '^' << exponent;
    }
    const struct {
        Real base, exponent, want; ///< NAN: error
    } cases[] = {{2, 10, 1024},      {3, 4, 81},    {-2, 3, -8},    {2, -3, 0.125L},
                 {0, 0, 1},          {0, 2, 0},     {0, -1, NAN},   {-8, 0.5L, NAN},
                 {2, 126, 0x1p126L}, {2, 127, NAN}, {0.5L, 200, 0}, {-1, 1001, -1}};
    for (const auto& [base, exponent, want] : cases) {
        left(base, SINGLE);
        right(exponent, SINGLE);
        EXPECT_EQ(call("num_power"), !std::isnan(want)) << base << '^' << exponent;
        EXPECT_TRUE(std::isnan(want) || result() == want) << base << '^' << exponent;
    }
}

TEST_F(Numbers, WholeNumbersAndComparison) {
    for (int n = 0; n < 3000; n++) {
        const int kind = n % 2 ? SINGLE : DOUBLE;
        const Real a = n % 31 ? number(kind, n % 3 ? 22 : 60) : std::round(uniform(-9, 9));
        const Real b = n % 7 ? number(kind, 22) : a, whole = std::floor(a);
        const auto value_of = [&](const char* name) {
            right(a, kind);
            return call(name) ? result() : NAN;
        };
        EXPECT_EQ(value_of("num_fix"), std::trunc(a)) << a;
        EXPECT_EQ(value_of("num_int"), whole) << a;
        const Real integer = value_of("to_integer");
        if (std::fabs(whole + 0.5L) < 32768) {
            EXPECT_EQ(integer, whole) << a;
        } else {
            EXPECT_TRUE(std::isnan(integer)) << a;
        }
        left(a, kind);
        right(b, kind);
        ASSERT_TRUE(call("num_compare"));
        EXPECT_EQ(int8_t(z80_state.af >> 8), a < b ? -1 : a > b) << a << ' ' << b;
    }
}

TEST_F(Numbers, TextIsReadAndPrinted) {
    const struct {
        const char *number, *printed; ///< null: error
        int type;
    } cases[] = {{"1", " 1", INTEGER},
                 {"-32767", "-32767", INTEGER},
                 {"32768", " 32768", SINGLE},
                 {"1.5", " 1.5", SINGLE},
                 {".01", " .01", SINGLE},
                 {".001", " 1E-03", SINGLE},
                 {"1E10", " 1E+10", SINGLE},
                 {"1E+38", " 1E+38", SINGLE},
                 {"1E39", nullptr, 0},
                 {"1E-45", " 0", SINGLE},
                 {"999999.7", " 1E+06", SINGLE},
                 {"123456", " 123456", SINGLE},
                 {"1234567", " 1.23457E+06", SINGLE},
                 {"12345678", " 12345678", DOUBLE},
                 {"1D-3", " 1D-03", DOUBLE},
                 {"2.7%", " 2", INTEGER},
                 {"7!", " 7", SINGLE},
                 {"1#", " 1", DOUBLE}};
    for (const auto& [number, printed, kind] : cases) {
        ASSERT_EQ(parse(number), printed != nullptr) << number;
        if (!printed) continue;
        EXPECT_EQ(type(), kind) << number;
        EXPECT_EQ(print(), printed) << number;
    }
    left(1, DOUBLE);
    right(3, INTEGER);
    ASSERT_TRUE(call("num_divide"));
    EXPECT_EQ(print(), " .3333333333333333");
    for (int n = 0; n < 500; n++) { // what was read is printed again
        const bool wide = n % 2;
        std::string digits(1, char('1' + random_() % 9));
        while (digits.size() < (wide ? 15 : 5)) digits += char('0' + random_() % 10);
        digits += char('1' + random_() % 9);
        const int power = int(random_() % 30) + 6;
        const std::string sign = random_() & 1 || wide ? "-" : "+";
        const std::string tail =
            (wide ? 'D' : 'E') + sign + (power < 10 ? "0" : "") + std::to_string(power);
        const std::string number = digits.substr(0, 1) + '.' + digits.substr(1) + tail;
        ASSERT_TRUE(parse(number)) << number;
        EXPECT_EQ(print(), ' ' + number);
    }
}

TEST_F(Numbers, PrintUsing) {
    constexpr int EXPONENT = 1, BEHIND = 4, PLUS = 8, DOLLAR = 16, ASTERISKS = 32, COMMAS = 64;
    const struct {
        const char* number;
        int flags, before, behind;
        const char* printed;
    } cases[] = {{"12.345", 0, 3, 3, " 12.35"},
                 {"-123", 0, 3, 0, "%-123"},
                 {".5", 0, 2, 3, " 0.50"},
                 {"-.5", 0, 1, 3, "-.50"},
                 {"0.996", 0, 2, 3, " 1.00"},
                 {"999.99", 0, 3, 2, "%1000.0"},
                 {"1234567", COMMAS, 9, 0, "1,234,567"},
                 {"1234", COMMAS | DOLLAR, 6, 3, " $1,234.00"},
                 {"5", ASTERISKS, 4, 0, "***5"},
                 {"5", PLUS, 3, 0, "  +5"},
                 {"-5", BEHIND, 3, 0, "  5-"},
                 {"5", PLUS | BEHIND, 3, 0, "  5+"},
                 {"234.56", EXPONENT, 2, 3, " 2.35E+02"},
                 {"888888", EXPONENT | BEHIND, 0, 5, ".8889E+06 "},
                 {"0", EXPONENT, 2, 3, " 0.00E+00"},
                 {"12345678.91#", COMMAS, 10, 3, "12,345,678.91"}};
    for (const auto& [number, flags, before, behind, printed] : cases) {
        ASSERT_TRUE(parse(number));
        z80_state.af = uint16_t((0x80 | flags) << 8);
        z80_state.bc = uint16_t(before << 8 | behind);
        ASSERT_TRUE(call("format_using")) << number;
        EXPECT_EQ(text(), printed) << number;
    }
}

TEST_F(Numbers, Random) {
    int counts[6] = {};
    for (int n = 0; n < 6000; n++) {
        right(6, INTEGER);
        ASSERT_TRUE(call("func_rnd"));
        ASSERT_TRUE(result() >= 1 && result() <= 6) << result();
        counts[int(result()) - 1]++;
        right(0, INTEGER);
        ASSERT_TRUE(call("func_rnd"));
        ASSERT_TRUE(result() >= 0 && result() < 1) << result();
    }
    for (const int count : counts) EXPECT_NEAR(count, 1000, 150);
    right(-1, INTEGER);
    EXPECT_FALSE(call("func_rnd"));
}

} // namespace
