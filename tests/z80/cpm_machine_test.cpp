// The console, the end and the counts of the harness that runs processor exercisers.

#include "support/cpm_machine.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

TEST(CpmMachine, PrintsCountsAndEnds) {
    const std::vector<uint8_t> program = {0x0E, 0x09,       // LD C,9           7
                                          0x11, 0x14, 0x01, // LD DE,0114      10
                                          0xCD, 0x05, 0x00, // CALL 5          17, JP and RET 20
                                          0x0E, 0x02,       // LD C,2           7
                                          0x1E, '!',        // LD E,"!"         7
                                          0xCD, 0x05, 0x00, // CALL 5          37
                                          0xC3, 0x00, 0x00, // JP 0            10
                                          0x00, 0x00, 'H',  'e', 'l', 'l', 'o', '$', 'x'};
    std::string heard;
    const CpmRun run = run_cpm_program(program, 1000, [&](char character) { heard += character; });
    EXPECT_TRUE(run.finished);
    EXPECT_EQ(run.output, "Hello!");
    EXPECT_EQ(heard, "Hello!");
    EXPECT_EQ(run.cycles, 7 + 10 + 37 + 7 + 7 + 37 + 10);
    EXPECT_EQ(run.instructions, 7 + 2 * 3);
}

TEST(CpmMachine, OtherEndings) {
    const std::vector<uint8_t> returns = {0xC9}, reset = {0x0E, 0x00, 0xC3, 0x05, 0x00},
                               endless = {0x18, 0xFE};
    EXPECT_TRUE(run_cpm_program(returns, 1000).finished);
    EXPECT_TRUE(run_cpm_program(reset, 1000).finished);
    const CpmRun run = run_cpm_program(endless, 1000);
    EXPECT_FALSE(run.finished);
    EXPECT_EQ(run.cycles, 84 * 12); // the first whole jump past the limit
}

} // namespace
