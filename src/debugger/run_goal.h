#pragma once
/// What a run forwards is to come to, beside the breakpoints: made from the machine as it stands,
/// armed with them (breakpoints_arm), and asked of every hit.

#include "z80/z80_watch.h"

#include <cstdint>

class RunGoal {
public:
    RunGoal() = default; ///< none: only breakpoints stop
    /// One instruction. An accepted interrupt belongs to it.
    static RunGoal step();
    /// The same, but a CALL, RST or repeating block instruction is run to its end, and HALT to an
    /// interrupt.
    static RunGoal over();
    /// Behind the return of the present subroutine: the first RET that leaves the stack shorter
    /// than it is now.
    static RunGoal out();
    static RunGoal to(uint16_t address);

    bool is_none() const { return kind_ == Kind::none; }
    bool is_step() const { return kind_ == Kind::step; }
    /// Whether it is come to with this hit. Each hit has to be shown to it, once.
    bool takes(const watch_hit& hit);

    // What it needs the processor to look out for.
    bool every_address() const { return every_address_; }
    bool interrupts() const { return kind_ == Kind::interrupt; }
    int64_t cycle() const { return cycle_; } ///< WATCH_NO_CYCLE for none
    /// WATCH_NOWHERE for none.
    int32_t address() const { return kind_ == Kind::address ? int32_t(address_) : WATCH_NOWHERE; }

private:
    enum class Kind : uint8_t { none, step, address, out, interrupt };
    bool returns();
    Kind kind_ = Kind::none;
    bool every_address_ = false;
    bool was_return_ = false; ///< the instruction before, for `out`
    uint16_t address_ = 0;
    int32_t shortest_stack_ = 0; ///< SP that is reached at least
    int64_t cycle_ = WATCH_NO_CYCLE;
};
