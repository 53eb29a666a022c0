#pragma once
/// Inside of the processor: one whole instruction and the interrupt after it.

#include "z80/z80_operations.h"
#include "z80/z80_unprefixed.h"

namespace z80_operations {

constexpr uint8_t OPCODE_HALT = 0x76;
constexpr uint8_t OPCODE_EI = 0xFB;

/// A bit of `nmi`, set from the moment a trap has to wait until the end of that instruction. The
/// run loop tests `nmi` for interrupts anyway, so waiting costs it no other test.
constexpr int32_t NMI_WAIT = 2;
/// Another one, set where a watched run has hit something.
constexpr int32_t NMI_HIT = 4;

/// After an instruction that began with `opcode`: the NMI goes before the maskable interrupt, which
/// is not accepted directly behind EI. The address pushed for a HALT is the one behind it. False
/// when the instruction was a trap that has to wait.
[[gnu::always_inline]] inline bool offer_interrupts(BusRegisters auto& s, uint8_t opcode) {
    if (z80_state.nmi & NMI_WAIT) {
        z80_state.nmi &= ~NMI_WAIT;
        return false;
    }
    const bool take_nmi = z80_state.nmi && !z80_state.nmi_in_progress;
    const bool take_irq = z80_state.irq && s.iff1 && opcode != OPCODE_EI;
    if (!take_nmi && !take_irq) return true;
    if (opcode == OPCODE_HALT) ++s.pc;
    if (take_nmi) {
        accept_nmi(s);
    } else {
        accept_irq(s);
    }
    return true;
}

/// One instruction on `s`, and the interrupt after it. False when it was a trap that has to wait.
[[gnu::always_inline]] inline bool run_instruction(BusRegisters auto& s) {
    const uint8_t opcode = fetch(s);
    count_refresh(s);
    z80_state.t_count += execute(s, opcode);
    return (z80_state.irq | z80_state.nmi) == 0 || offer_interrupts(s, opcode);
}

/// What z80_run does for a budget of 0.
int32_t run_single_instruction();

} // namespace z80_operations
