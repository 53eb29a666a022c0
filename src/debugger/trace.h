#pragma once
/// The last instructions before the moment at which the machine is, and the subroutines that it is
/// in. Nothing is recorded while the machine runs: the last frames of the history are run again
/// when somebody asks.

#include "z80/z80.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

constexpr size_t LONGEST_TRACE = 0x10000; ///< instructions

struct TraceStep {
    int64_t cycle = 0;              ///< at its start
    z80_registers registers = {};   ///< before it; `pc` is its address
    std::array<uint8_t, 4> bytes{}; ///< from there on
};

/// The last instructions before now, the oldest first: at least `count` of them where the history
/// reaches so far, and no more than LONGEST_TRACE. Valid until the machine moves. Some ten make
/// about two milliseconds of work, all of them some forty. Empty without a history.
const std::vector<TraceStep>& debugger_trace(size_t count);
/// The instruction of a step as the disassembler has it.
std::string trace_text(const TraceStep& step);

struct DebugCall {
    uint16_t call = 0;   ///< address of the CALL or RST, or of the instruction before an interrupt
    uint16_t target = 0; ///< where it led
    uint16_t slot = 0;   ///< where its return address is on the stack
    bool is_interrupt = false;
    bool is_traced = false; ///< seen in the trace; else the word only looks like a return address
};
/// The subroutines that have not returned yet, the innermost first, at most `most`. As far as the
/// trace of `count` instructions reaches, they are those that were called in it; beyond it, each
/// word of the stack counts that stands behind a CALL or RST.
std::vector<DebugCall> debugger_calls(size_t most, size_t count = 1000);
