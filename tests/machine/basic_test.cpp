#include "basic_cases.h"

#include "core/frame_driver.h"
#include "support/basic_machine.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>

namespace {

const std::filesystem::path TABLES = std::filesystem::path(TEST_SOURCE_DIR) / "basic";

void run_table(BasicMachine& machine, const std::string& table) {
    const auto cases = read_basic_cases(TABLES / (table + ".txt"));
    ASSERT_FALSE(cases.empty());
    for (const BasicCase& basic_case : cases) {
        const auto rows = run_basic_case(machine, basic_case);
        EXPECT_EQ(join(rows), join(basic_case.rows)) << table << ".txt, " << basic_case.name();
        if (rows.size() == 1 && rows[0].starts_with("[")) break;
    }
}

// The models differ in their rows, and not in what they calculate.
TEST(BasicModels, RunTheSameCases) {
    BasicMachine machine;
    for (const int slot : {1, 2}) {
        SCOPED_TRACE(slot);
        machine.boot(slot, trial_rom());
        for (const char* table : {"words", "numbers", "control", "strings", "listing"})
            run_table(machine, table);
    }
}

/// Values of expressions as the machine prints them, a row each.
std::vector<double> calculate(BasicMachine& machine, const std::vector<std::string>& expressions) {
    BasicCase lines;
    for (size_t i = 0; i < expressions.size(); ++i)
        lines.program.push_back(std::to_string(i + 1) + " PRINT " + expressions[i]);
    lines.commands = {"RUN"};
    std::vector<double> values;
    for (std::string row : run_basic_case(machine, lines)) {
        std::ranges::replace(row, 'D', 'E');
        values.push_back(std::strtod(row.c_str(), nullptr));
    }
    return values;
}

struct Sum {
    std::string text;
    double value, tolerance; ///< the tolerance is relative

    /// PRINT shows 16 digits.
    double allowed() const {
        const double last = std::pow(10, std::floor(std::log10(std::abs(value))) - 15);
        return std::abs(value) * tolerance + last * 0.51 + 3e-39;
    }
};

/// Sums of random numbers, and functions over the range where programs use them. What is single is
/// shown as double: all of its digits count.
Sum random_sum(std::mt19937& random) {
    const auto number = [&](int digits, int least, int greatest) {
        std::string text = (random() % 2 ? "-" : "") + std::to_string(1 + random() % 9);
        while (digits-- > 1) text += char('0' + random() % 10);
        const int exponent = least + int(random() % unsigned(greatest - least + 1));
        return text + "E" + std::to_string(exponent);
    };
    const auto single = [](const std::string& text) {
        return double(std::strtof(text.c_str(), nullptr));
    };
    constexpr double PLACE = 1.2e-7, DOUBLE = 4e-16; // what the formats can hold
    const unsigned kind = random() % 16;
    if (kind < 8) {
        const bool is_double = kind >= 4;
        std::string a = number(is_double ? 15 : 6, -14, 0), b = number(is_double ? 15 : 6, -14, 0);
        const double x = is_double ? std::strtod(a.c_str(), nullptr) : single(a),
                     y = is_double ? std::strtod(b.c_str(), nullptr) : single(b);
        if (is_double) std::ranges::replace(a, 'E', 'D'), std::ranges::replace(b, 'E', 'D');
        const char* sign[] = {"+", "-", "*", "/"};
        const double result[] = {x + y, x - y, x * y, x / y};
        // A difference of doubles loses what its operands do not have.
        const double lost =
            kind < 6 ? std::max(std::abs(x), std::abs(y)) / std::abs(result[kind % 4]) : 0;
        return {"CDBL(" + a + sign[kind % 4] + b + ")", result[kind % 4],
                is_double ? DOUBLE * (1 + lost) : PLACE * 0.51};
    }
    const struct {
        const char* name;
        double (*function)(double);
        int least; ///< of the exponent
    } functions[] = {{"SQR(", [](double x) { return std::sqrt(x); }, -6},
                     {"LOG(", [](double x) { return std::log(x); }, -6},
                     {"EXP(", [](double x) { return std::exp(x); }, -6},
                     {"EXP(-", [](double x) { return std::exp(-x); }, -6},
                     {"SIN(-", [](double x) { return std::sin(-x); }, -4},
                     {"COS(", [](double x) { return std::cos(x); }, -4},
                     {"TAN(", [](double x) { return std::tan(x); }, -5},
                     {"ATN(", [](double x) { return std::atan(x); }, -6}};
    const auto& [name, function, least] = functions[kind - 8];
    std::string a = number(5, least, least + 2);
    if (a[0] == '-') a.erase(0, 1); // the names have their signs
    const bool power = random() % 8 == 0;
    if (power) return {"CDBL(" + a + "^1.375)", std::pow(single(a), 1.375), 2 * PLACE};
    if (random() % 4 == 0) return {"CDBL(VAL(\"" + a + "\"))", single(a), DOUBLE};
    return {"CDBL(" + (name + a) + "))", function(single(a)), 2 * PLACE};
}

TEST(BasicArithmetic, AgreesWithTheHost) {
    BasicMachine machine;
    machine.boot(0, trial_rom());
    std::mt19937 random(3);
    for (int round = 0; round < 60; ++round) {
        std::vector<Sum> sums;
        std::vector<std::string> texts;
        while (sums.size() < 15) {
            sums.push_back(random_sum(random));
            texts.push_back(sums.back().text);
        }
        const auto values = calculate(machine, texts);
        ASSERT_EQ(values.size(), sums.size()) << join(texts) << join(machine.screen());
        for (size_t i = 0; i < sums.size(); ++i)
            EXPECT_NEAR(values[i], sums[i].value, sums[i].allowed()) << sums[i].text;
    }
}

// Strings are collected again and again. BREAK stops it anywhere, and nothing is lost.
TEST(BasicBreak, IsSeenWithinStatements) {
    BasicMachine machine;
    machine.boot(0, trial_rom());
    std::mt19937 random(5);
    const auto press_break = [&] {
        machine.platform().set_key(KEY_END, true);
        for (int i = 0; i < 5; ++i) machine_run();
        machine.platform().set_key(KEY_END, false);
        return machine.screen().back() == ">";
    };
    machine.type("10 CLEAR 4000:DEFINT A-Z:DIM A$(200),N(200),Z((MEM-200)/2)\n"
                 "20 FOR K=1 TO 1500:I=RND(201)-1:N(I)=RND(30)-1\n"
                 "30 A$(I)=\"\":A$(I)=STRING$(N(I),I):IF RND(50)=1 THEN F=FRE(\"\")\n"
                 "35 NEXT\n"
                 "40 FOR I=0 TO 200:IF A$(I)<>STRING$(N(I),I) THEN PRINT \"LOST\"\n"
                 "50 NEXT:PRINT \"DONE\"\nRUN\n",
                 250);
    do EXPECT_TRUE(press_break()) << join(machine.screen());
    while (!machine.type("CLS:CONT\n", 60 + int(random() % 99)));
    EXPECT_EQ(join(machine.screen()), "DONE\nREADY\n>\n");
    machine.type("FGR:PAINT 80,48,2,3\n", 40);
    EXPECT_TRUE(press_break());
}

TEST(BasicSticks, GiveTheirPositionsAndKeys) {
    BasicMachine machine;
    machine.boot(0, trial_rom());
    auto& sticks = machine.platform().joysticks().sticks;
    sticks.resize(2);
    for (unsigned key = 0; key < 10; ++key) {
        sticks[0].state = {0, uint16_t(65535 - key * 1024)};
        sticks[1].state = {uint16_t(32767 - key * 1024), 0};
        machine.platform().set_key(int(KEY_NUMPAD0 + key), true);
        machine.type("CLS:PRINT JOY1X;JOY1Y;JOY2X;JOY2Y;KEYPAD1\n");
        machine.platform().set_key(int(KEY_NUMPAD0 + key), false);
        const std::string n = std::to_string(key), pad = key ? n : "11";
        EXPECT_EQ(machine.screen()[0],
                  " 0  " + n + "  " + std::to_string(31 - key) + "  63  " + pad);
    }
}

class BasicTable : public testing::TestWithParam<std::string> {};

TEST_P(BasicTable, ScreensAreAsExpected) {
    BasicMachine machine;
    machine.boot(0, trial_rom());
    run_table(machine, GetParam());
}

// Typed in as a double click does it, the programs start and run on.
TEST(BasicExamples, RunFromTheirText) {
    for (const char* name : {"graphics", "music", "catch"}) {
        BasicMachine machine;
        machine.boot(0, trial_rom());
        const std::string text = read_text(EXAMPLES_DIR "/" + std::string(name) + ".txt");
        ASSERT_TRUE(text.ends_with("\nRUN\n")) << name;
        machine.type(text, 1500);
        const std::string screen = join(machine.screen());
        EXPECT_EQ(screen.find("ERROR"), std::string::npos) << name << "\n" << screen;
        EXPECT_NE(machine.screen().back(), ">") << name << " does not run";
    }
}

std::vector<std::string> tables() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(TABLES))
        if (entry.path().extension() == ".txt") names.push_back(entry.path().stem());
    std::ranges::sort(names);
    return names;
}
INSTANTIATE_TEST_SUITE_P(Basic, BasicTable, testing::ValuesIn(tables()),
                         [](const auto& table) { return table.param; });

} // namespace
