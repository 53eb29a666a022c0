#include "debugger/run_goal.h"

#include "debugger/peek.h"
#include "z80/z80.h"

namespace {

constexpr uint8_t OPCODE_HALT = 0x76;
constexpr uint8_t OPCODE_CALL = 0xCD;
constexpr uint8_t OPCODE_RET = 0xC9;
constexpr uint8_t PREFIX_ED = 0xED;
constexpr uint8_t LAST_TRAP = 0x0C; ///< behind ED

bool is_call(uint8_t opcode) { return opcode == OPCODE_CALL || (opcode & 0xC7) == 0xC4; }
bool is_rst(uint8_t opcode) { return (opcode & 0xC7) == 0xC7; }
/// LDIR, CPIR, INIR, OTIR and those that count down.
bool is_repeating(uint8_t behind_ed) { return (behind_ed & 0xF4) == 0xB0; }
/// RET, RET cc, RETN and RETI.
bool is_return(uint16_t pc) {
    const uint8_t opcode = debug_peek(pc);
    if (opcode != PREFIX_ED) return opcode == OPCODE_RET || (opcode & 0xC7) == 0xC0;
    return (debug_peek(uint16_t(pc + 1)) & 0xC7) == 0x45;
}
bool is_trap(uint16_t pc) {
    return debug_peek(pc) == PREFIX_ED && debug_peek(uint16_t(pc + 1)) <= LAST_TRAP;
}

} // namespace

RunGoal RunGoal::step() {
    RunGoal goal;
    goal.kind_ = Kind::step;
    // A trap takes no time: only the address tells that it is done.
    goal.every_address_ = is_trap(z80_state.pc);
    goal.cycle_ = z80_state.t_count + 1;
    return goal;
}

RunGoal RunGoal::over() {
    const uint16_t pc = z80_state.pc;
    const uint8_t opcode = debug_peek(pc);
    RunGoal goal;
    if (opcode == OPCODE_HALT) {
        goal.kind_ = Kind::interrupt;
        return goal;
    }
    if (opcode == PREFIX_ED && is_repeating(debug_peek(uint16_t(pc + 1)))) {
        return to(uint16_t(pc + 2));
    }
    if (!is_call(opcode) && !is_rst(opcode)) return step();
    goal = to(uint16_t(pc + (is_rst(opcode) ? 1 : 3)));
    goal.shortest_stack_ = z80_state.sp;
    return goal;
}

RunGoal RunGoal::out() {
    RunGoal goal;
    goal.kind_ = Kind::out;
    goal.every_address_ = true;
    goal.shortest_stack_ = z80_state.sp;
    goal.was_return_ = is_return(z80_state.pc);
    return goal;
}

RunGoal RunGoal::to(uint16_t address) {
    RunGoal goal;
    goal.kind_ = Kind::address;
    goal.address_ = address;
    return goal;
}

/// A stack that is made shorter by something else belongs to this subroutine.
bool RunGoal::returns() {
    const bool is_shorter = z80_state.sp > shortest_stack_;
    if (is_shorter && was_return_) return true;
    if (is_shorter) shortest_stack_ = z80_state.sp;
    was_return_ = is_return(z80_state.pc);
    return false;
}

bool RunGoal::takes(const watch_hit& hit) {
    const bool arrives = hit.kind == watch_kind::execute;
    switch (kind_) {
    case Kind::none: return false;
    case Kind::step: return arrives || (hit.kind == watch_kind::cycle && hit.cycle >= cycle_);
    case Kind::address:
        return arrives && hit.address == address_ && z80_state.sp >= shortest_stack_;
    case Kind::out: return arrives && returns();
    case Kind::interrupt: return hit.kind == watch_kind::interrupt;
    }
    return false;
}
