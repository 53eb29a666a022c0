#include "support/cpm_machine.h"

#include "support/flat_bus.h"
#include "z80/z80.h"

#include <algorithm>

namespace {

constexpr uint16_t system_call = 0x0005;   // programs also read the top of memory from 0006
constexpr uint16_t program_start = 0x0100; // COM files load and start here
constexpr uint16_t system_entry = 0xFE06;
constexpr int trap_number = 5;

constexpr uint8_t function_reset = 0;
constexpr uint8_t function_print_character = 2;
constexpr uint8_t function_print_string = 9;

CpmRun run;
const std::function<void(char)>* listener;

void print(uint8_t character) {
    run.output += char(character);
    if (*listener) (*listener)(char(character));
}

void serve(int) {
    switch (uint8_t(z80_state.bc)) {
    case function_reset: z80_state.pc = 0x0000; break;
    case function_print_character: print(uint8_t(z80_state.de)); break;
    case function_print_string:
        // A string without an end stops after one round through memory.
        for (uint32_t n = 0; n < 0x10000; n++) {
            const uint8_t character = flat_bus.memory[uint16_t(z80_state.de + n)];
            if (character == '$') break;
            print(character);
        }
        break;
    default: break;
    }
}

} // namespace

CpmRun run_cpm_program(std::span<const uint8_t> program, int64_t cycle_limit,
                       const std::function<void(char)>& console) {
    run = {};
    listener = &console;
    flat_bus.clear();
    flat_bus.on_trap = serve;
    const size_t length = std::min<size_t>(program.size(), system_entry - program_start);
    std::copy_n(program.begin(), length, flat_bus.memory.begin() + program_start);
    flat_bus.load(system_call, {0xC3, system_entry & 0xFF, system_entry >> 8}); // JP
    flat_bus.load(system_entry, {0xED, trap_number, 0xC9});                     // trap, RET
    z80_reset();
    z80_state.pc = program_start;
    z80_state.sp = system_entry - 2; // a RET from the program finds 0000
    const int64_t start = z80_state.t_count;
    while (z80_state.pc != 0 && run.cycles < cycle_limit) {
        z80_run(0);
        run.instructions++;
        run.cycles = z80_state.t_count - start;
        flat_bus.traps.clear();
    }
    run.finished = z80_state.pc == 0;
    flat_bus.on_trap = nullptr;
    return run;
}
