// Runs a CP/M program that needs only the console, such as a processor exerciser, on the bare
// processor: prints its output, then the T-states it took.

#include "support/cpm_machine.h"
#include "support/test_files.h"

#include <cinttypes>
#include <cstdio>
#include <limits>

int main(int count, char** arguments) {
    if (count != 2) {
        std::fprintf(stderr, "usage: run_com FILE.COM\n");
        return 2;
    }
    const std::vector<uint8_t> program = read_file(arguments[1]);
    if (program.empty()) {
        std::fprintf(stderr, "run_com: cannot read %s\n", arguments[1]);
        return 1;
    }
    const CpmRun run =
        run_cpm_program(program, std::numeric_limits<int64_t>::max(), [](char character) {
            std::putchar(character);
            std::fflush(stdout);
        });
    std::printf("\n%" PRId64 " T-states, %" PRId64 " instructions\n", run.cycles, run.instructions);
    return 0;
}
