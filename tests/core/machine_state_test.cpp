#include "core/machine_state.h"

#include "core/frame_driver.h"
#include "core/machine.h"
#include "core/machine_events.h"
#include "files/whole_file.h"
#include "support/test_files.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <string>

namespace {

/// A machine that types a line of its own for ever, with its configuration and engine.
machine_state powered_on(int32_t engine, uint32_t model, const char* line) {
    machine_init();
    machine_apply(event_kind::choose, 0, 0, bytes_of(machine_choice{machine_cfg[4], model}));
    machine_apply(event_kind::configure, int32_t(model), 1);
    machine_apply(event_kind::engine, engine);
    const std::string text = std::string("\r") + line;
    machine_apply(event_kind::typing_trap);
    machine_apply(event_kind::type_text, 0, 0,
                  shared_bytes(std::vector<uint8_t>(text.begin(), text.end())));
    machine_state state;
    machine_save(state);
    return state;
}

TEST(MachineState, TwoParkedMachinesRunInTurn) {
    constexpr int TURNS = 20;
    machine_state machines[] = {powered_on(0, 0, "FORI=1TO9999:PRINTI;:NEXT\r"),
                                powered_on(1, 2, "10 SOUND1,5:SOUND7,62:GOTO10\rRUN\r")};
    machine_state alone[2];
    for (int n = 0; n < 2; ++n) {
        machine_load(machines[n]);
        for (int frame = 0; frame < 50 * TURNS; ++frame) machine_run();
        machine_save(alone[n]);
    }
    for (int turn = 0; turn < TURNS; ++turn) {
        for (machine_state& machine : machines) {
            machine_load(machine);
            for (int frame = 0; frame < 50; ++frame) machine_run();
            machine_save(machine);
        }
    }
    for (int n = 0; n < 2; ++n) EXPECT_EQ(machine_difference(alone[n], machines[n]), "") << n;
    EXPECT_NE(machine_difference(alone[0], alone[1]), "");
}

TEST(MachineState, DifferencesAreNamedAndBreakpointsAreNone) {
    machine_state before;
    machine_state after;
    EXPECT_EQ(machine_load(before), 0) << "nothing was saved in it";
    machine_init();
    machine_save(before);
    z80_state.hl ^= 0x1200;
    z80_state.breakpoint ^= 1;
    machine_save(after);
    EXPECT_EQ(machine_difference(before, after), "z80_state.hl: 0000 and 1200");
    EXPECT_EQ(machine_load(before), 1);
    machine_save(after);
    EXPECT_EQ(machine_equal(before, after), 1);
    EXPECT_EQ(z80_state.breakpoint, 0xFFFE) << "the debugger's, and not loaded";
}

/// The table is the same on every host; a change of it makes older states unreadable.
TEST(MachineState, LayoutIsThatOfEveryHost) {
    const auto expected = read_whole_file(std::string(TEST_SOURCE_DIR) + "/machine_layout.txt");
    ASSERT_TRUE(expected);
    EXPECT_EQ(machine_layout(), std::string(expected->begin(), expected->end()));
    EXPECT_EQ(machine_records_are_filled(), 1);
}

} // namespace
