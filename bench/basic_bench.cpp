/// bench_basic [ROM]: the eight small programs by which the magazines of the time compared BASICs.
/// Prints the emulated seconds of each and how many times as fast it is as the yardstick, an
/// interpreter of the same family at 1.77 MHz whose times are scaled to this machine's clock.
#include "support/basic_machine.h"
#include "support/test_files.h"

#include <cstdio>

namespace {

constexpr double CLOCK = 2216750, YARDSTICK_CLOCK = 1.77e6; ///< Hz
constexpr double FRAME_CYCLES = 44335;
constexpr int LONGEST_RUN = 50 * 400; ///< frames

struct Program {
    const char* name;
    double yardstick; ///< seconds; 0 = not known
};
constexpr Program PROGRAMS[] = {{"bm1", 2.5}, {"bm2", 18}, {"bm3", 34.5}, {"bm4", 39},
                                {"bm5", 45},  {"bm6", 67}, {"bm7", 109},  {"bm8", 0}};

} // namespace

int main(int count, char** words) {
    BasicMachine machine;
    machine.boot(0, count > 1 ? read_file(words[1]) : std::vector<uint8_t>());
    std::printf("program  seconds  yardstick  times as fast\n");
    for (const Program& program : PROGRAMS) {
        machine.type("NEW\n" + read_text(std::string(LISTINGS) + "/" + program.name + ".bas"));
        // What typing and waiting for the prompt take is not the program's time.
        machine.type("REM\n");
        const int around = machine.frames();
        if (!machine.type("RUN\n", LONGEST_RUN)) {
            std::fprintf(stderr, "%s does not end\n", program.name);
            return 1;
        }
        const double seconds = (machine.frames() - around) * FRAME_CYCLES / CLOCK;
        const double scaled = program.yardstick * YARDSTICK_CLOCK / CLOCK;
        std::printf("%-7s %8.2f", program.name, seconds);
        if (scaled > 0) std::printf("  %9.2f  %13.2f", scaled, scaled / seconds);
        std::printf("\n");
    }
}
