/// The processor for a caller that looks after every instruction. To fetch the registers into the
/// host's own and to store them again costs several times what an instruction does, so this one
/// works on the record. It is not flattened: that would put the machine's bus into every operation
/// once more, another 700 KB of a program optimised across files.

#include "z80/z80_instruction.h"

namespace z80_operations {

[[gnu::noinline]] int32_t run_single_instruction() {
    const int64_t start = z80_state.t_count;
    z80_state.instruction_start = start;
    z80_state.waits = 0;
    run_instruction(z80_state);
    return int32_t(start - z80_state.t_count);
}

} // namespace z80_operations
