/// Runs a single instruction, for callers that look at the processor after each. Copying the
/// registers into those of the host and back would cost several times what an instruction costs, so
/// this works on the record itself. It is not flattened: that would inline the machine's bus into
/// every operation a second time and add 700 KB to a program optimised across files.

#include "z80/z80_instruction.h"

namespace z80_operations {

[[gnu::noinline]] int32_t run_single_instruction() {
    const int64_t start = z80_state.t_count;
    z80_state.instruction_start = start;
    z80_state.waits = 0;
    run_instruction(static_cast<Registers&>(z80_state));
    return int32_t(start - z80_state.t_count);
}

} // namespace z80_operations
