#include "z80/z80.h"

#include "z80/z80_instruction.h"

z80_record z80_state;

namespace {

namespace op = z80_operations;

constexpr z80_registers& registers = z80_state;

/// Not part of the state: the breakpoint, which is the debugger's, and instruction_start, which is
/// only noted in z80_run_noting_starts.
constexpr state_field fields[] = {
    {"af", sizeof(z80_record::af)},
    {"bc", sizeof(z80_record::bc)},
    {"de", sizeof(z80_record::de)},
    {"hl", sizeof(z80_record::hl)},
    {"ix", sizeof(z80_record::ix)},
    {"iy", sizeof(z80_record::iy)},
    {"sp", sizeof(z80_record::sp)},
    {"pc", sizeof(z80_record::pc)},
    {"af_alt", sizeof(z80_record::af_alt)},
    {"bc_alt", sizeof(z80_record::bc_alt)},
    {"de_alt", sizeof(z80_record::de_alt)},
    {"hl_alt", sizeof(z80_record::hl_alt)},
    {"i", sizeof(z80_record::i)},
    {"r", sizeof(z80_record::r)},
    {"iff1", sizeof(z80_record::iff1)},
    {"iff2", sizeof(z80_record::iff2)},
    {"interrupt_mode", sizeof(z80_record::interrupt_mode)},
    {"unused", sizeof(z80_record::unused)},
    {"irq", sizeof(z80_record::irq)},
    {"nmi", sizeof(z80_record::nmi)},
    {"nmi_in_progress", sizeof(z80_record::nmi_in_progress)},
    {"waits", sizeof(z80_record::waits)},
    {"t_count", sizeof(z80_record::t_count)},
    {"instruction_start", sizeof(z80_record::instruction_start), field_kind::other},
    {"clock_hz", sizeof(z80_record::clock_hz)},
    {"cycles_per_line", sizeof(z80_record::cycles_per_line)},
    {"breakpoint", sizeof(z80_record::breakpoint), field_kind::other},
    {"unused_2", sizeof(z80_record::unused_2)},
    {"breakpoint_enabled", sizeof(z80_record::breakpoint_enabled), field_kind::other},
    {"breakpoint_reached", sizeof(z80_record::breakpoint_reached), field_kind::other},
    {"stood_on_breakpoint", sizeof(z80_record::stood_on_breakpoint), field_kind::other},
};

constexpr uint64_t SCAN_LINES_PER_SECOND = 15625;
constexpr uint64_t LONGEST_LINE = 100'000; ///< cycles

const char* fault(const z80_record& z80) {
    return first_fault({{"iff1", z80.iff1 <= 1},
                        {"iff2", z80.iff2 <= 1},
                        {"interrupt_mode", z80.interrupt_mode <= 2},
                        {"irq", z80.irq == 0 || z80.irq == 1},
                        {"nmi", z80.nmi == 0 || z80.nmi == 1},
                        {"nmi_in_progress", z80.nmi_in_progress == 0 || z80.nmi_in_progress == 1},
                        {"waits", z80.waits == 0 || z80.waits == 1},
                        {"t_count", is_cycle_count(z80.t_count)},
                        // A line without cycles would let traps go on for ever.
                        {"cycles_per_line", z80.cycles_per_line - 1 < LONGEST_LINE}});
}

/// There are two loops, since noting the starts costs some percent of the speed. Both are
/// flattened: when every operation is inlined, the compiler keeps the processor's registers in
/// those of the host.
template <bool NOTES_STARTS>
inline int32_t run_budget(int32_t budget) {
    const int64_t end = z80_state.t_count + budget;
    z80_registers s = z80_state;
    z80_state.waits = 0;
    do {
        if constexpr (NOTES_STARTS) z80_state.instruction_start = z80_state.t_count;
        if (!op::run_instruction(s)) break;
    } while (z80_state.t_count < end);
    static_cast<z80_registers&>(z80_state) = s;
    return int32_t(end - z80_state.t_count);
}

} // namespace

constexpr state_record z80_state_record = {"z80_state", &z80_state, sizeof z80_state, fields,
                                           fault_of<z80_record, fault>};

[[gnu::noinline, gnu::flatten]] int32_t z80_run_noting_starts(int32_t budget) {
    return run_budget<true>(budget);
}

[[gnu::flatten]] int32_t z80_run(int32_t budget) {
    return budget == 0 ? op::run_single_instruction() : run_budget<false>(budget);
}

void cpu_run() { z80_run(1); }

uint16_t cpu_get_pc() { return z80_state.pc; }

void z80_init(uint32_t clock_hz) {
    z80_state.breakpoint = 0xFFFF;
    z80_state.breakpoint_enabled = 0;
    z80_state.clock_hz = clock_hz;
    z80_state.cycles_per_line = clock_hz / SCAN_LINES_PER_SECOND;
    z80_reset();
}

void z80_reset() {
    z80_state.pc = 0;
    z80_state.i = z80_state.r = 0;
    z80_state.iff1 = z80_state.iff2 = 0;
    z80_state.interrupt_mode = 0;
    z80_state.irq = z80_state.nmi = z80_state.nmi_in_progress = 0;
    z80_state.waits = 0;
    z80_state.sp = 0xFFFF;
    z80_state.af = 0xFFFF;
}

void do_di() { z80_state.iff1 = z80_state.iff2 = 0; }
void do_ei() { z80_state.iff1 = z80_state.iff2 = 1; }
void do_im0() { z80_state.interrupt_mode = 0; }
void do_im1() { z80_state.interrupt_mode = 1; }
void do_im2() { z80_state.interrupt_mode = 2; }
void do_int() { op::accept_irq(registers); }
void do_nmi() { op::accept_nmi(registers); }
void z80_assert_nmi() { z80_state.nmi = 1; }
void z80_ack_nmi() { z80_state.nmi = z80_state.nmi_in_progress = 0; }

void z80_cpu_set_breakpoint(uint16_t address) {
    if (address == z80_state.breakpoint) {
        z80_state.breakpoint_enabled = z80_state.breakpoint_enabled == 0 ? 1 : 0;
        return;
    }
    z80_state.breakpoint = address;
    z80_state.breakpoint_enabled = 1;
}

int cpu_run_until_breakpoint(uint16_t address) {
    z80_cpu_set_breakpoint(address);
    return 1;
}

int cpu_is_breakpoint_reached() { return z80_state.pc == z80_state.breakpoint ? 1 : 0; }

int cpu_check_breakpoint() {
    if (!z80_state.breakpoint_enabled || z80_state.breakpoint_reached) return 0;
    if (z80_state.pc != z80_state.breakpoint) return 0;
    z80_state.breakpoint_reached = 1;
    return 1;
}

int cpu_breakpoint_arrives() {
    const int32_t was_there = z80_state.stood_on_breakpoint;
    z80_state.stood_on_breakpoint = cpu_is_breakpoint_reached();
    return z80_state.breakpoint_enabled && z80_state.stood_on_breakpoint && !was_there ? 1 : 0;
}

void z80_wait_at_trap() {
    z80_state.pc = uint16_t(z80_state.pc - 2);
    z80_state.r = uint8_t((z80_state.r & 0x80) | ((z80_state.r - 2) & 0x7F));
    // The two fetches may have cost wait cycles, which are taken back. Reading the bytes once more
    // shows how many.
    const int64_t now = z80_state.t_count;
    mem_read(z80_state.pc);
    mem_read(uint16_t(z80_state.pc + 1));
    z80_state.t_count = now - (z80_state.t_count - now);
    z80_state.nmi |= op::NMI_WAIT;
    z80_state.waits = 1;
}

void do_CB_instruction() { z80_state.t_count += op::cb_instruction(registers); }
void do_ED_instruction() { z80_state.t_count += op::ed_instruction(registers); }
void do_indexed_instruction(uint16_t* index) {
    z80_state.t_count += op::indexed_instruction(registers, *index);
}
