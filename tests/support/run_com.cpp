// Runs a CP/M program that needs only the console, such as a processor exerciser, on the bare
// processor: 64 KB of RAM, the program at 0100, and CALL 5 for a character or a string that ends in
// "$". Prints its output, then the T-states it took.

#include "support/flat_bus.h"
#include "support/test_files.h"
#include "z80/z80.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>

namespace {

constexpr uint16_t SYSTEM_CALL = 0x0005; // programs also read the top of memory from 0006
constexpr uint16_t PROGRAM_START = 0x0100;
constexpr uint16_t SYSTEM_ENTRY = 0xFE06;

void serve(int) {
    const auto function = uint8_t(z80_state.bc);
    if (function == 0) z80_state.pc = 0x0000;
    if (function == 2) std::putchar(uint8_t(z80_state.de));
    for (uint16_t at = z80_state.de; function == 9 && flat_bus.memory[at] != '$'; ++at) {
        std::putchar(flat_bus.memory[at]);
    }
    std::fflush(stdout);
}

} // namespace

int main(int count, char** arguments) {
    const std::vector<uint8_t> program =
        count == 2 ? read_file(arguments[1]) : std::vector<uint8_t>();
    if (program.empty()) {
        std::fprintf(stderr, "usage: run_com FILE.COM\n");
        return 2;
    }
    flat_bus.on_trap = serve;
    std::copy_n(program.begin(), std::min<size_t>(program.size(), SYSTEM_ENTRY - PROGRAM_START),
                flat_bus.memory.begin() + PROGRAM_START);
    flat_bus.load(SYSTEM_CALL, {0xC3, SYSTEM_ENTRY & 0xFF, SYSTEM_ENTRY >> 8}); // JP
    flat_bus.load(SYSTEM_ENTRY, {0xED, 0x05, 0xC9});                            // trap, RET
    z80_reset();
    z80_state.pc = PROGRAM_START;
    z80_state.sp = SYSTEM_ENTRY - 2; // a RET from the program finds 0000
    int64_t instructions = 0;
    for (; z80_state.pc != 0; ++instructions) {
        z80_run(0);
        flat_bus.traps.clear();
    }
    std::printf("\n%" PRId64 " T-states, %" PRId64 " instructions\n", z80_state.t_count,
                instructions);
    return 0;
}
