#include "debugger/trace.h"

#include "debugger/instruction_class.h"
#include "debugger/peek.h"
#include "time/history_moments.h"
#include "z80/disassembler.h"

#include <algorithm>

namespace {

constexpr size_t STEPS_OF_FRAME = 5000; ///< about
constexpr int STACK_WORDS = 512;        ///< that are looked at
constexpr uint8_t OPCODE_DI = 0xF3;

struct {
    history_moment end = {};
    int64_t from = -1; ///< frame that it begins with
    std::vector<TraceStep> steps = {};
} trace_now;

void note_step() {
    const uint16_t pc = z80_state.pc;
    TraceStep& step = trace_now.steps.emplace_back();
    step.cycle = z80_state.t_count;
    step.registers = z80_state;
    for (size_t n = 0; n < step.bytes.size(); ++n) step.bytes[n] = debug_peek(uint16_t(pc + n));
}

const TraceStep* shown_step = nullptr; ///< of which the disassembler reads

uint8_t byte_of_shown(uint16_t address) {
    const auto n = uint16_t(address - shown_step->registers.pc);
    return n < shown_step->bytes.size() ? shown_step->bytes[n] : 0;
}

/// Subroutines that were entered and not left between the steps, the innermost last.
std::vector<DebugCall> traced_calls(const std::vector<TraceStep>& steps) {
    std::vector<DebugCall> calls;
    for (size_t n = 0; n < steps.size(); ++n) {
        const z80_registers& before = steps[n].registers;
        const z80_registers& after = n + 1 < steps.size() ? steps[n + 1].registers : z80_state;
        while (!calls.empty() && calls.back().slot < after.sp) calls.pop_back();
        if (after.sp >= before.sp) continue;
        const uint8_t opcode = steps[n].bytes[0];
        const uint16_t length = call_length_of(opcode);
        const bool is_call = length && after.pc != uint16_t(before.pc + length);
        const bool is_interrupt = before.iff1 && !after.iff1 && opcode != OPCODE_DI;
        if (!is_call && !is_interrupt) continue;
        calls.push_back({before.pc, after.pc, after.sp, is_interrupt, true});
    }
    return calls;
}

} // namespace

const std::vector<TraceStep>& debugger_trace(size_t count) {
    const history_moment now = history_moment_now();
    count = std::min(count, LONGEST_TRACE);
    if (!(trace_now.end == now)) trace_now = {.end = now};
    int64_t frames = int64_t(count / STEPS_OF_FRAME);
    while (trace_now.steps.size() < count && trace_now.from != 0) {
        trace_now.from = history_unbroken(std::max<int64_t>(now.frame - frames, 0), now.frame);
        trace_now.steps.clear();
        const bool reaches = history_trace(trace_now.from, note_step).empty();
        if (!reaches || trace_now.from > now.frame - frames) break;
        frames = frames * 2 + 1;
    }
    const size_t more = trace_now.steps.size() - std::min(trace_now.steps.size(), LONGEST_TRACE);
    trace_now.steps.erase(trace_now.steps.begin(), trace_now.steps.begin() + ptrdiff_t(more));
    return trace_now.steps;
}

std::string trace_text(const TraceStep& step) {
    char line[DISASSEMBLY_LINE];
    shown_step = &step;
    disassemble_by(byte_of_shown, step.registers.pc, line);
    return line;
}

std::vector<DebugCall> debugger_calls(size_t most, size_t count) {
    const std::vector<TraceStep>& steps = debugger_trace(count);
    std::vector<DebugCall> calls = traced_calls(steps);
    std::ranges::reverse(calls);
    // Below the highest place of the stack in the trace all was put there in it.
    uint16_t known = z80_state.sp;
    for (const TraceStep& step : steps) known = std::max(known, step.registers.sp);
    for (int n = 0; n < STACK_WORDS && calls.size() < most; ++n) {
        const auto slot = uint16_t(z80_state.sp + 2 * n);
        if (slot < z80_state.sp) break; // the end of memory
        if (slot < known) continue;
        if (const auto call = debug_call_before(debug_peek_word(slot))) {
            calls.push_back({*call, call_target(*call), slot});
        }
    }
    calls.resize(std::min(calls.size(), most));
    return calls;
}
