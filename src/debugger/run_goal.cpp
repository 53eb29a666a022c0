#include "debugger/run_goal.h"

#include "debugger/instruction_class.h"
#include "z80/z80.h"

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
    RunGoal goal;
    if (is_halt(pc)) {
        goal.kind_ = Kind::interrupt;
        return goal;
    }
    if (is_repeating(pc)) return to(uint16_t(pc + 2));
    if (!call_length(pc)) return step();
    goal = to(uint16_t(pc + call_length(pc)));
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
