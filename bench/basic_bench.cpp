/// bench_basic [ROM]: the eight small programs by which the magazines of the time compared BASICs.
/// Prints the emulated seconds of each and how many times as fast it is as the yardstick, an
/// interpreter of the same family at 1.77 MHz whose times are scaled to this machine's clock.
#include "cgenie/memory/memory.h"
#include "core/frame_driver.h"
#include "core/pacing/pacing.h"
#include "support/basic_machine.h"
#include "support/test_files.h"
#include "z80/z80.h"

#include <cstdio>

namespace {

constexpr double CLOCK = 2216750, YARDSTICK_CLOCK = 1.77e6; ///< Hz
constexpr int64_t LONGEST_RUN = int64_t(CLOCK) * 400;       ///< cycles
constexpr unsigned CURRENT_LINE = 0x40A2;                   ///< FFFF while no program runs

struct Program {
    const char* name;
    double yardstick; ///< seconds; 0 = not known
};
constexpr Program PROGRAMS[] = {{"bm1", 2.5}, {"bm2", 18}, {"bm3", 34.5}, {"bm4", 39},
                                {"bm5", 45},  {"bm6", 67}, {"bm7", 109},  {"bm8", 0}};

bool program_runs() { return memory[CURRENT_LINE + 1] != 0xFF; }

/// Emulated seconds from the first line to the end of the program; 0 when it does not end.
double run_program(BasicMachine& machine) {
    machine.type("CLS\n"); // a screen that rolls is not part of it
    machine.type("RUN\n", 0);
    const int64_t limit = z80_state.t_count + LONGEST_RUN;
    while (!program_runs() && z80_state.t_count < limit) run_with_answers(machine_step);
    const int64_t start = z80_state.t_count;
    while (program_runs() && z80_state.t_count < limit) run_with_answers(machine_step);
    const int64_t end = z80_state.t_count;
    machine.type("");
    return end < limit ? double(end - start) / CLOCK : 0;
}

} // namespace

int main(int count, char** words) {
    BasicMachine machine;
    machine.boot(0, count > 1 ? read_file(words[1]) : std::vector<uint8_t>());
    std::printf("program  seconds  yardstick  times as fast\n");
    for (const Program& program : PROGRAMS) {
        machine.type("NEW\n" + read_text(std::string(LISTINGS) + "/" + program.name + ".bas"));
        const double seconds = run_program(machine);
        if (seconds == 0) {
            std::fprintf(stderr, "%s does not end\n", program.name);
            return 1;
        }
        const double scaled = program.yardstick * YARDSTICK_CLOCK / CLOCK;
        std::printf("%-7s %8.2f", program.name, seconds);
        if (scaled > 0) std::printf("  %9.2f  %13.2f", scaled, scaled / seconds);
        std::printf("\n");
    }
}
