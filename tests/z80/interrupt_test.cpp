// Budgets of the run loop, HALT, interrupts, traps and the breakpoint.

#include "support/flat_bus.h"
#include "z80/processor_setup.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <span>

namespace {

struct Interrupt : testing::Test {
    Interrupt() { fresh_processor(); }
};

/// Interrupts enabled and requested; the handlers in cleared memory are NOPs.
void assert_irq(int mode) {
    z80_state.iff1 = z80_state.iff2 = 1;
    z80_state.interrupt_mode = uint8_t(mode);
    z80_state.irq = 1;
}

uint16_t pushed() { return mem_read_word(z80_state.sp); }

TEST_F(Interrupt, BudgetRunsWholeInstructions) {
    struct {
        std::vector<int> code;
        int budget, left, pc, wait;
    } const cases[] = {
        {{0x00}, 0, -4, origin + 1, 0},
        {{0x00}, -100, -104, origin + 1, 0},
        {{0x00}, 10, -2, origin + 3, 0},
        {{0x00}, 8, 0, origin + 2, 0}, // an exact fit ends the call
        {{0x76}, 0, -4, origin, 0},
        {{0x76}, 1000, 0, origin, 0},
        {{0xDB, 0x10}, 0, -10, origin + 2, 0},
        {{0x00}, 10, 0, origin + 2, 1},              // 4 + 1 each
        {{0x22, 0x34, 0x12}, 0, -26, origin + 3, 2}, // 16 + 5 accesses of 2
        {{0xED, 0xB1}, 40, -18, origin + 2, 0},      // CPIR of 3 bytes in one step
        {{0xED, 0x80}, 0, 0, origin + 2, 0},
        {{0xED, 0x80, 0xED, 0xFF, 0x00}, 1, -3, origin + 5, 0}, // holes use nothing up
    };
    for (const auto& [code, budget, left, pc, wait] : cases) {
        // Around 2^31 and 2^32 the counter's low half wraps.
        for (const int64_t start : {int64_t(0), int64_t(0x7FFFFFFE), int64_t(0xFFFFFFFE)}) {
            fresh_processor();
            z80_state.bc = 3;
            z80_state.t_count = start;
            put_code(code);
            flat_bus.wait_cycles = wait;
            const auto name = testing::Message() << hex_bytes(code) << "budget " << budget;
            EXPECT_EQ(z80_run(budget), left) << name;
            EXPECT_EQ(z80_state.t_count - start, budget - left) << name;
            EXPECT_EQ(cpu_get_pc(), pc) << name;
        }
    }
}

TEST_F(Interrupt, ResetAndInit) {
    z80_state.t_count = 1234;
    z80_state.breakpoint_enabled = 1;
    z80_state.iff1 = z80_state.irq = z80_state.nmi = z80_state.nmi_in_progress = 1;
    z80_state.interrupt_mode = 2;
    z80_record want = z80_state;
    want.af = want.sp = 0xFFFF;
    want.pc = want.i = want.r = want.iff1 = want.iff2 = want.interrupt_mode = 0;
    z80_reset();
    EXPECT_EQ(describe(z80_state), describe(want));
    EXPECT_FALSE(z80_state.irq || z80_state.nmi || z80_state.nmi_in_progress);
    EXPECT_EQ(z80_state.t_count, 1234);
    z80_state.nmi = z80_state.nmi_in_progress = 1;
    z80_ack_nmi();
    EXPECT_FALSE(z80_state.nmi || z80_state.nmi_in_progress);
    EXPECT_EQ(z80_state.breakpoint_enabled, 1);
    EXPECT_EQ(z80_state.cycles_per_line, 141U);
    z80_init(4000000);
    EXPECT_EQ(z80_state.clock_hz, 4000000U);
    EXPECT_EQ(z80_state.cycles_per_line, 256U);
    EXPECT_EQ(z80_state.breakpoint, 0xFFFF);
    EXPECT_EQ(z80_state.breakpoint_enabled, 0);
    EXPECT_EQ(z80_state.t_count, 1234);
}

TEST_F(Interrupt, AcceptanceByMode) {
    struct {
        int mode, cost, vector;
        const char* accesses;
    } constexpr cases[] = {{0, 13, 0x0038, "w7EFF=80 w7EFE=01"},
                           {1, 13, 0x0038, "w7EFF=80 w7EFE=01"},
                           {2, 19, 0x1234, "w7EFF=80 w7EFE=01 r80FF r8100"}};
    for (const auto& [mode, cost, vector, accesses] : cases) {
        fresh_processor();
        assert_irq(mode);
        z80_state.i = 0x80;
        z80_state.r = 0xFE;
        flat_bus.load(0x80FF, {0x34, 0x12});
        flat_bus.record = true;
        EXPECT_EQ(z80_run(0), -(4 + cost)) << mode;
        EXPECT_EQ(data_accesses(origin, 1), accesses) << mode;
        const std::vector<int64_t> times = {0, 11, 14, 14, 14}; // the NOP's 4, then 7 and 3
        EXPECT_TRUE(std::ranges::equal(flat_bus.times, std::span(times).first(mode == 2 ? 5 : 3)));
        EXPECT_EQ(z80_state.pc, vector) << mode;
        EXPECT_EQ(z80_state.r, 0x80) << mode; // one count for the NOP, one for the acceptance
        EXPECT_EQ(z80_state.iff1 | z80_state.iff2, 0) << mode;
        EXPECT_EQ(z80_state.irq, 1) << mode;
        EXPECT_EQ(z80_run(0), -4) << mode; // held, but disabled
    }
    fresh_processor(); // the vector and the stack wrap around the top of memory
    assert_irq(2);
    z80_state.i = 0xFF;
    z80_state.sp = 0x0001;
    flat_bus.load(0xFFFE, {0x00, 0x78, 0x00});
    z80_run(0);
    EXPECT_EQ(z80_state.sp, 0xFFFF);
    EXPECT_EQ(flat_bus.memory[0], 0x80); // the return address, pushed before the vector is read
    EXPECT_EQ(z80_state.pc, 0x8001);
}

TEST_F(Interrupt, OpcodeDecidesWhereItIsAccepted) {
    struct {
        const char* name;
        std::vector<int> code;
        int steps, return_address; ///< steps until acceptance
    } const cases[] = {
        {"NOP", {0x00}, 1, origin + 1},
        {"EI delays by one instruction", {0xFB, 0x00}, 2, origin + 2},
        {"a row of EI delays on", {0xFB, 0xFB, 0xFB, 0x00}, 4, origin + 4},
        {"EI, then a jump", {0xFB, 0xC3, 0x00, 0x90}, 2, 0x9000},
        {"HALT returns behind itself", {0x76}, 1, origin + 1},
        {"EI, HALT", {0xFB, 0x76}, 2, origin + 2},
        {"76 as a second byte is no HALT", {0xED, 0x76}, 1, origin + 2},
        {"CB 76 is no HALT", {0xCB, 0x76}, 1, origin + 2},
        {"CB FB is no EI", {0xCB, 0xFB}, 1, origin + 2},
        {"76 as an operand is no HALT", {0x3E, 0x76}, 1, origin + 2},
        {"a lone prefix is an instruction", {0xDD, 0x00}, 1, origin + 1},
        {"LDIR between passes", {0xED, 0xB0}, 1, origin},
        {"CPIR not before its end", {0xED, 0xB1}, 1, origin + 2},
        {"a trap", {0xED, 0x03}, 1, origin + 2},
    };
    for (const auto& [name, code, steps, return_address] : cases) {
        fresh_processor();
        assert_irq(1);
        z80_state.bc = 3;
        put_code(code);
        for (int n = 1; n < steps; n++) {
            z80_run(0);
            EXPECT_EQ(z80_state.sp, 0x7F00) << name;
        }
        z80_run(0);
        EXPECT_EQ(z80_state.pc, 0x0038) << name;
        EXPECT_EQ(z80_state.sp, 0x7EFE) << name;
        EXPECT_EQ(pushed(), return_address) << name;

        fresh_processor(); // the NMI comes after the first instruction, EI or not
        assert_irq(1);
        z80_state.bc = 3;
        z80_assert_nmi();
        put_code(code);
        z80_run(0);
        EXPECT_EQ(z80_state.pc, 0x0066) << name;
        EXPECT_EQ(pushed(), code[0] == 0xFB ? origin + 1 : return_address) << name;
    }
}

TEST_F(Interrupt, DevicesSeeTheStartOfTheInstructionAndRaiseTheLine) {
    for (const auto& code : {std::vector{0xD3, 0x10}, {0xED, 0x79}, {0xED, 0xA3}}) {
        fresh_processor();
        assert_irq(1);
        z80_state.irq = 0;
        static int64_t seen;
        seen = 0;
        flat_bus.on_out = [](uint8_t, uint8_t) {
            seen = z80_state.t_count;
            z80_state.irq = 1;
        };
        put_code(code);
        z80_state.t_count = 100;
        z80_run(0);
        EXPECT_EQ(seen, 100) << hex_bytes(code); // costs are added when the work is done
        EXPECT_EQ(z80_state.pc, 0x0038) << hex_bytes(code);
        EXPECT_EQ(pushed(), origin + 2) << hex_bytes(code);
    }
}

TEST_F(Interrupt, Breakpoint) {
    const auto expect_breakpoint = [](int address, int enabled) {
        EXPECT_EQ(z80_state.breakpoint, address);
        EXPECT_EQ(z80_state.breakpoint_enabled, enabled);
    };
    z80_cpu_set_breakpoint(0x1234);
    expect_breakpoint(0x1234, 1);
    EXPECT_FALSE(cpu_check_breakpoint() || cpu_is_breakpoint_reached());
    z80_cpu_set_breakpoint(0x1234);
    expect_breakpoint(0x1234, 0);
    z80_state.pc = 0x1234;
    EXPECT_EQ(cpu_is_breakpoint_reached(), 1); // armed or not
    EXPECT_EQ(cpu_check_breakpoint(), 0);
    EXPECT_EQ(cpu_run_until_breakpoint(0x1234), 1);
    expect_breakpoint(0x1234, 1);
    EXPECT_EQ(z80_run(0), -4); // the run loop does not stop there
    z80_state.pc = 0x1234;
    EXPECT_EQ(cpu_check_breakpoint(), 1);
    EXPECT_EQ(z80_state.breakpoint_reached, 1);
    EXPECT_EQ(cpu_check_breakpoint(), 0); // latched
    z80_state.breakpoint_enabled = 7;
    z80_cpu_set_breakpoint(0x1234);
    expect_breakpoint(0x1234, 0);
    z80_cpu_set_breakpoint(0x4321);
    expect_breakpoint(0x4321, 1);
}

} // namespace
