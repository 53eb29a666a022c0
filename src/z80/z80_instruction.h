#pragma once
/// Inside of the processor: one whole instruction and the interrupt after it.

#include "z80/z80_operations.h"
#include "z80/z80_unprefixed.h"

namespace z80_operations {

constexpr uint8_t OPCODE_HALT = 0x76;
constexpr uint8_t OPCODE_EI = 0xFB;

/// After an instruction that began with `opcode`: the NMI goes before the maskable interrupt, which
/// is not accepted directly behind EI. The address pushed for a HALT is the one behind it.
inline void offer_interrupts(Registers& s, uint8_t opcode) {
    const bool take_nmi = z80_state.nmi && !z80_state.nmi_in_progress;
    const bool take_irq = z80_state.irq && s.iff1 && opcode != OPCODE_EI;
    if (!take_nmi && !take_irq) return;
    if (opcode == OPCODE_HALT) ++s.pc;
    if (take_nmi) {
        accept_nmi(s);
    } else {
        accept_irq(s);
    }
}

/// One instruction on `s`, and the interrupt after it.
inline void run_instruction(Registers& s) {
    const uint8_t opcode = fetch(s);
    count_refresh(s);
    z80_state.t_count += execute(s, opcode);
    if (z80_state.irq | z80_state.nmi) offer_interrupts(s, opcode);
}

/// z80_run (0).
int32_t run_single_instruction();

} // namespace z80_operations
