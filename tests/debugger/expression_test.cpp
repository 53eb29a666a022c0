#include "debugger/expression.h"

#include "cgenie/memory/memory.h"
#include "core/machine.h"
#include "debugger/symbols.h"
#include "media/wd1771.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>

namespace {

/// A machine with values that no two registers share.
class Expressions : public testing::Test {
protected:
    void SetUp() override {
        machine_init();
        // af bc de hl, ix iy sp pc, the other af bc de hl, i r, iff1 iff2 im
        static_cast<z80_registers&>(z80_state) = {0x03D5, 0x1112, 0x1314, 0x9000, 0x1516, 0x1718,
                                                  0x9002, 0x191A, 0x2122, 0,      0,      0x2324,
                                                  0x25,   0,      0,      1,      2};
        const uint8_t bytes[] = {0x0B, 0x90, 0x34, 0x12, 7};
        std::copy(std::begin(bytes), std::end(bytes), memory + 0x9000);
        memory[0xF005] = 0x04;
        ports[0xFA] = 0x0C;
        symbols.add({"lives", 0x9004});
        symbols.add({"line", 0x9001});
    }

    int64_t value_of(const char* text) {
        std::string problem;
        const auto expression = Expression::parse(text, &symbols, problem);
        EXPECT_TRUE(expression) << text << ": " << problem;
        return expression ? expression->value(context) : -1;
    }

    SymbolTable symbols;
    /// hits, value, before, address, from, cycle, frame, line
    ExpressionContext context = {6, 0x77, 0x76, 0xF005, 0x8123, 1LL << 40, 50, 311};
};

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wparentheses"
TEST_F(Expressions, OperatorsBindAsInC) {
    // Variables keep compilers from warnings about constants.
    const volatile int64_t two = 2, one = 1, none = 0;
    const std::pair<const char*, int64_t> cases[] = {
        {"1 + 2 * 3 - 7 / 2 % 3", 1 + 2 * 3 - 7 / 2 % 3},
        {"2 << 3 + 1 >> 2", two << 3 + 1 >> 2},
        {"1 < 2 == 2 > 1 != 0", 1 < two == two > 1 != 0},
        {"5 & 3 == 3 | 6 & 3 ^ 4", 5 & 3 == 3 | 6 & 3 ^ 4},
        {"~-7 / 2 * 10 + !5 - -7 % 2", ~-7 / two * 10 + !5 - -7 % two},
        {"2 <= 2 && 3 >= 4 || 1 || 0 && 0", 2 <= two && 3 >= two * 2 || one || none && none},
    };
    for (const auto& [text, value] : cases) EXPECT_EQ(value_of(text), value) << text;
}
#pragma GCC diagnostic pop

/// Expressions and their values: what the registers and memory above hold, and what C leaves open.
const char* const looks =
    "a=>3; F=>0xD5; b=>0x11; c=>0x12; d=>0x13; e=>0x14; h=>0x90; l=>0; ixh=>0x15; ixl=>0x16;"
    "IYH=>0x17; iyl=>0x18; af=>0x03D5; bc=>0x1112; de=>0x1314; hl=>0x9000; ix=>0x1516; iy=>0x1718;"
    "sp=>0x9002; pc=>0x191A; af'=>0x2122; a'=>0x21; f'=>0x22; hl'=>0x2324; l'=>0x24; i=>0x25;"
    "iff1=>0; iff2=>1; im=>2; fs + fz * 2 + fh * 4 + fp * 8 + fn * 16 + fc * 32=>47; hits=>6;"
    "value=>0x77; before=>0x76; address=>0xF005; from=>0x8123; cycle=>0x10000000000; frame=>50;"
    "line=>311; @line=>0x9001; LIVES=>0x9004; 0x1F=>31; $1f=>31; 1Fh=>31; %101=>5; 0b11=>3; "
    "'a'=>97;"
    "''' + 0=>39; (hl)=>0x0B; (hl + 1)=>0x90; w(hl)=>0x900B; word(sp)=>0x1234; (lives)=>7;"
    "((a == 3))=>1; [hl + 4] * 2=>0x12008; byte(hl == 0x9000)=>0xC3; ((hl) + 0x8ff9)=>7;"
    "port(0xfa)=>0x0C; (address)=>0xF4; w(0xffff)=>0xF3FF; a == 3 && (hl) > 10 && hits > 5=>1;"
    "(a == 3 || b == 4) && c=>1; (!a) + 5=>5; (a & 1) + 0=>0xC3; 5 / 0=>0; 5 % 0=>0; 1 << 64=>0;"
    "1 << -1=>0; -1 >> 64=>-1; [1 << 63] / -1=>-0x8000000000000000; [1 << 63] % -1=>0;"
    "0x7fffffffffffffff + 1=>-0x8000000000000000";

TEST_F(Expressions, LookAtTheMachine) {
    std::istringstream rows(looks);
    for (std::string row; std::getline(rows, row, ';');) {
        const size_t arrow = row.find("=>");
        const int64_t value = std::strtoll(row.c_str() + arrow + 2, nullptr, 0);
        EXPECT_EQ(value_of(row.substr(0, arrow).c_str()), value) << row;
    }
    std::string problem;
    EXPECT_TRUE(Expression::parse("a == 1 || hits", nullptr, problem)->uses_hits());
    EXPECT_FALSE(Expression::parse("value", nullptr, problem)->uses_hits());
    const char* const format = "{{a={a} {hl:x} {a:b} {'x':c}{1:c} {lives+2:s}}}";
    EXPECT_EQ(format_log(format, &symbols, {}), "{a=3 9000 00000011 x<01> lives+2}");
}

/// Texts that are none, and what is told.
const char* const wrong = R"--(=>column 1: an operand is missing
a ===>column 5: an operand is missing
a == ) 3=>column 6: an operand is missing
a 3=>column 3: an operator is missing
1 + (a == 3=>column 5: the ")" of this bracket is missing
[1 + 2)=>column 1: the "]" of this bracket is missing
a + nothing=>column 5: "nothing" is no register and no symbol
@a=>column 1: "a" is no register and no symbol
12x=>column 1: "12x" is no number
$=>column 1: "$" is no number
99999999999999999999=>column 1: "99999999999999999999" is no number
'ab'=>column 1: a character stands between two "'"
)--";

TEST_F(Expressions, WrongOnesAreToldWithTheirColumn) {
    std::istringstream rows(wrong);
    std::string problem;
    for (std::string row; std::getline(rows, row);) {
        const size_t arrow = row.rfind("=>");
        EXPECT_FALSE(Expression::parse(row.substr(0, arrow), &symbols, problem)) << row;
        EXPECT_EQ(problem, row.substr(arrow + 2));
    }
    EXPECT_FALSE(Expression::parse(std::string(150, '-') + "1", &symbols, problem));
    EXPECT_EQ(problem, "column 101: the expression is too deep");
    EXPECT_FALSE(Expression::parse(std::string(5000, '1'), &symbols, problem));
    EXPECT_EQ(format_log("x {b", &symbols, {}), "column 3: a \"{\" without its \"}\"");
    EXPECT_EQ(format_log("{a:q}", &symbols, {}), "column 4: a value is shown as d, x, b, c or s");
    EXPECT_EQ(format_log("{a+}", &symbols, {}), "in {a+}: column 3: an operand is missing");
    // Addresses are hexadecimal, unless they are names.
    EXPECT_EQ(parse_address(" 4020 ", &symbols, problem), 0x4020);
    EXPECT_EQ(parse_address("bc", &symbols, problem), 0x1112);
    EXPECT_EQ(parse_address("lives", &symbols, problem), 0x9004);
    EXPECT_EQ(parse_address("10+1", &symbols, problem), 11);
    EXPECT_FALSE(parse_address("xyz", &symbols, problem));
}

/// A look at all of the memory leaves keyboard, controller and clock as they were.
TEST_F(Expressions, LookingChangesNothing) {
    static int asked;
    asked = 0;
    machine_host.read_input = [](machine_input&) { ++asked; };
    wd1771_write_param_reg(1);
    wd1771_set_irq(1);
    const wd1771_controller before = wd1771;
    const int64_t now = z80_state.t_count;
    std::string problem;
    const auto expression = Expression::parse("(hl)", nullptr, problem);
    for (unsigned address = 0; address < 0x10000; ++address) {
        z80_state.hl = uint16_t(address);
        const int64_t value = expression->value({});
        EXPECT_EQ(value, address < 0xF800 ? mem_read(address) : value) << address;
        z80_state.t_count = now;
    }
    EXPECT_EQ(asked, 0);
    EXPECT_EQ(z80_state.irq, 1);
    EXPECT_EQ(std::memcmp(&before, &wd1771, sizeof before), 0);
    machine_host = machine_without_host();
}

} // namespace
