// T-states, refresh counts and the next PC of every opcode behind every prefix.

#include "support/flat_bus.h"
#include "z80/processor_setup.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <sstream>

namespace {

/// The numbers of instruction_costs.txt; -1 where there are no more.
std::array<int, 832> all_numbers() {
    std::ifstream file(TEST_SOURCE_DIR "/instruction_costs.txt");
    std::array<int, 832> numbers;
    numbers.fill(-1);
    size_t count = 0;
    for (std::string line; std::getline(file, line);) {
        std::istringstream stream(line[0] == '#' ? "" : line);
        for (int number; stream >> number;) numbers.at(count++) = number;
    }
    return numbers;
}
const std::array<int, 832> numbers = all_numbers();
const int *const costs = &numbers[0], *const lengths = &numbers[256],
                 *const ed_costs = &numbers[512], *const index_costs = &numbers[576];

constexpr int stacked = 0x5678;

/// Runs one instruction from fixed registers and compares cost, refresh count and PC.
void expect_cost(const std::vector<int>& bytes, int f, int bc, int cost, int refresh, int pc) {
    fresh_processor();
    z80_state.af = uint16_t(0xA500 | f);
    z80_state.bc = uint16_t(bc);
    z80_state.r = 0xFE; // the count wraps below a set bit 7
    flat_bus.load(z80_state.sp, {stacked & 0xFF, stacked >> 8});
    put_code(bytes);
    const int64_t start = z80_state.t_count;
    const int left = z80_run(0);
    const auto name = ::testing::Message() << hex_bytes(bytes) << " F " << f << " BC " << bc;
    EXPECT_EQ(-left, cost) << name;
    EXPECT_EQ(z80_state.t_count - start, cost) << name;
    EXPECT_EQ(int(z80_state.pc), pc & 0xFFFF) << name;
    // LD R,A replaces the count by A.
    const bool loads_r = bytes[0] == 0xED && bytes[1] == 0x4F;
    EXPECT_EQ(int(z80_state.r), loads_r ? 0xA5 : 0x80 | ((0x7E + refresh) & 0x7F)) << name;
}

TEST(InstructionCost, UnprefixedWithBothOutcomesOfConditions) {
    constexpr int masks[4] = {FLAG_Z, FLAG_C, FLAG_PV, FLAG_S};
    for (int op = 0; op < 256; op++) {
        if (op == 0xCB || op == 0xDD || op == 0xED || op == 0xFD) continue;
        for (int run = 0; run < 20; run++) {
            // Each condition's flag alone, and all but it.
            constexpr int patterns[] = {0x00, 0x01, 0x04, 0x40, 0x80, 0xFF, 0xFE, 0xFB, 0xBF, 0x7F};
            const int f = patterns[run / 2], bc = run % 2 ? 0x0110 : 0x0210;
            const int condition = op < 0x40 ? op >> 3 & 3 : op >> 3 & 7;
            const bool met = ((f & masks[condition / 2]) != 0) == (condition % 2 != 0);
            int cost = costs[op], pc = origin + lengths[op];
            if ((op & 0xE7) == 0x20 && met) cost = 12, pc += 0x34;
            if (op == 0x18) pc += 0x34;
            if (op == 0x10 && bc == 0x0210) cost = 13, pc += 0x34;
            if ((op & 0xC7) == 0xC0 && met) cost = 11, pc = stacked;
            if (((op & 0xC7) == 0xC2 && met) || op == 0xC3 || op == 0xCD) pc = 0x1234;
            if ((op & 0xC7) == 0xC4 && met) cost = 17, pc = 0x1234;
            if (op == 0xC9) pc = stacked;
            if (op == 0xE9) pc = 0x4567;
            if ((op & 0xC7) == 0xC7) pc = op & 0x38;
            expect_cost({op, 0x34, 0x12}, f, bc, cost, 1, pc);
        }
    }
}

TEST(InstructionCost, BitGroups) {
    for (int op = 0; op < 256; op++) {
        const bool memory = (op & 7) == 6, test = op >> 6 == 1;
        expect_cost({0xCB, op}, 0, 1, !memory ? 8 : test ? 12 : 15, 2, origin + 2);
        for (const int prefix : {0xDD, 0xFD}) {
            expect_cost({prefix, 0xCB, 0x85, op}, 0, 1, test ? 20 : 23, 2, origin + 4);
        }
    }
}

TEST(InstructionCost, ExtendedGroup) {
    for (int op = 0; op < 256; op++) {
        const bool block = op >= 0xA0 && op < 0xC0 && (op & 4) == 0;
        const bool word_load = (op & 0xC7) == 0x43, returns = (op & 0xC7) == 0x45;
        const int pc = returns ? stacked : origin + (word_load ? 4 : 2);
        const int cost = block ? 16 : op >= 0x40 && op < 0x80 ? ed_costs[op - 0x40] : 0;
        // One left to do: in BC for transfers and searches, in B for input and output.
        const int last = block && (op & 2) ? 0x0110 : 0x0001;
        expect_cost({0xED, op, 0x34, 0x12}, 0, last, cost, 2, pc);
        EXPECT_EQ(flat_bus.traps, op <= 0x0C ? std::vector{op} : std::vector<int>()) << op;
        if (!block) continue;
        const bool repeats = op >= 0xB0, search = (op & 3) == 1;
        expect_cost({0xED, op}, 0, 0x0203,
                    !repeats ? 16
                    : search ? 0x203 * 21 - 5
                             : 21,
                    2, repeats && !search ? origin : origin + 2);
    }
}

TEST(InstructionCost, IndexGroups) {
    for (int op = 0; op < 256; op++) {
        if (op == 0xCB) continue;
        for (const int prefix : {0xDD, 0xFD}) {
            const bool displaced = index_costs[op] == 19 || (op | 1) == 0x35;
            int pc = origin + lengths[op] + 1 + (displaced ? 1 : 0);
            if (index_costs[op] == 0) pc = origin + 1;
            if (op == 0xE9) pc = prefix == 0xDD ? 0x5678 : 0x6789;
            const int cost = index_costs[op] ? index_costs[op] : 4;
            expect_cost({prefix, op, 0x34, 0x12}, 0, 1, cost, 2, pc);
            if (index_costs[op]) continue;
            fresh_processor(); // the prefix alone changes nothing
            z80_record want = behind({prefix, op});
            want.pc = origin + 1;
            expect_step("prefix alone", {prefix, op}, want, "");
        }
    }
}

} // namespace
