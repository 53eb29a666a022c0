#include "core/machine_state.h"

#include "core/machine.h"
#include "files/whole_file.h"
#include "support/test_files.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <string>

namespace {

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

/// Values that would reach outside of an array, divide by zero, go on for ever, or are no bool.
TEST(MachineState, ImpossibleValuesAreNamed) {
    // The value is of the field's last bytes, eight at most: 7FF8... is not a number, the disk's a
    // size without a disk.
    std::istringstream cases(R"(
        z80_state.interrupt_mode 3  z80_state.t_count 0x7FFFFFFFFFFFFFFF
        z80_state.cycles_per_line 0  z80_state.clock_hz 0  frame_state.left 0x7FFFFFFF
        frame_state.cycle_based 2  machine_setup.run 2  machine_setup.active 3
        bus_state.tape_level 2  input_state.look 3  crtc.selected 16  crtc.horizontal_displayed 256
        crtc.maximum_scan_line 32  video_state.mode 1  beam_state.lp_accu 0x7FF8000000000000
        beam_state.beam 1769472  beam_state.follows 1  palette_state.index 2  lowe.column 64
        typing.position 10  ay.noise_period 0  ay.envelope_period 0  ay.base 32
        ay.cycles_per_sample 0  ay.clean_sound 0x80  ay.clean_line 1  beeper.sound_level 1
        sound_core.sound_update_pos 960  sound_core.hpfilter 2  wd1771.head_track 84
        wd1771.buffer_offset 1025  wd1771.disks 0x0101000000000001  cassette.position 1
        cassette.saving 1  tape_audio.pending_count 4096  tape_audio.next_sample 1
        tape_audio.samples_per_clk -1  traps.cas_traps_installed 2  printer.char_count 65
        printer.open 2)");
    cases.unsetf(std::ios::dec);
    machine_init();
    machine_state state;
    machine_save(state);
    EXPECT_EQ(machine_state_problem(state), "");
    int64_t value = 0;
    for (std::string field; cases >> field >> value;) {
        size_t at = 0;
        size_t size = 0;
        char name[80];
        std::istringstream layout(machine_layout());
        for (std::string line; std::getline(layout, line) && !size;) {
            const int found = std::sscanf(line.c_str(), "%zu %zu %79s", &at, &size, name);
            if (found != 3 || std::string(name) != field) size = 0;
        }
        ASSERT_NE(size, 0U) << field;
        machine_state damaged = state;
        const size_t changed = std::min(size, sizeof value);
        std::memcpy(&damaged.records[at + size - changed], &value, changed);
        EXPECT_EQ(machine_state_problem(damaged), field + " has a value that is not possible");
    }
    EXPECT_TRUE(cases.eof());
    state.records.pop_back();
    EXPECT_EQ(machine_state_problem(state), "it is not complete");
}

/// The table is the same on every host; a change of it makes older states unreadable.
TEST(MachineState, LayoutIsThatOfEveryHost) {
    const auto expected = read_whole_file(std::string(TEST_SOURCE_DIR) + "/machine_layout.txt");
    ASSERT_TRUE(expected);
    EXPECT_EQ(machine_layout(), std::string(expected->begin(), expected->end()));
    EXPECT_EQ(machine_records_are_filled(), 1);
}

} // namespace
