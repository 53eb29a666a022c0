#include "z80/z80_watch.h"

#include "z80/z80_instruction.h"

#include <algorithm>
#include <cstring>

z80_watch_record z80_watch;

namespace z80_operations {

/// The registers of the watched loop, which have a bus of their own. Where the present instruction
/// began is not among them: it would take the place of one of theirs in the host.
struct WatchedRegisters : Registers {};

namespace {

// Out of line: a hit is rare, and the loop inlines all else.
[[gnu::noinline, gnu::cold]] void hit(watch_kind kind, uint16_t address, uint8_t value,
                                      uint8_t before) {
    z80_state.nmi |= NMI_HIT;
    if (z80_watch.hit_count == WATCH_HITS) return;
    z80_watch.hits[z80_watch.hit_count++] = {
        kind, value, before, address, uint16_t(z80_watch.last_pc), z80_state.instruction_start};
}

/// Whether neither of the interrupt lines, nor a hit, has to be looked at. With one comparison,
/// which the loop would otherwise need four instructions for.
[[gnu::always_inline]] inline bool nothing_is_requested() {
    uint64_t irq_and_nmi; // they stand side by side
    std::memcpy(&irq_and_nmi, &z80_state.irq, sizeof irq_and_nmi);
    return irq_and_nmi == 0;
}

} // namespace

// The bus of the watched loop.

inline uint8_t bus_read(const WatchedRegisters&, uint16_t address) {
    const uint8_t value = mem_read(address);
    if (z80_watch.memory[address] & WATCH_READ) [[unlikely]] {
        hit(watch_kind::memory_read, address, value, value);
    }
    return value;
}
inline void bus_write(const WatchedRegisters&, uint16_t address, uint8_t value) {
    if (z80_watch.memory[address] & WATCH_WRITE) [[unlikely]] {
        hit(watch_kind::memory_write, address, value, mem_peek(address));
    }
    mem_write(address, value);
}
inline uint8_t bus_in(const WatchedRegisters&, uint8_t port) {
    const uint8_t value = z80_in(port);
    if (z80_watch.ports[port] & WATCH_READ) [[unlikely]] {
        hit(watch_kind::port_read, port, value, value);
    }
    return value;
}
inline void bus_out(const WatchedRegisters&, uint8_t port, uint8_t value) {
    if (z80_watch.ports[port] & WATCH_WRITE) [[unlikely]] {
        hit(watch_kind::port_write, port, value, value);
    }
    z80_out(port, value);
}

namespace {

/// Behind an instruction, when an interrupt is requested or something was hit: as offer_interrupts,
/// and false where something was hit.
[[gnu::always_inline]] inline bool end_watched_instruction(WatchedRegisters& s, uint8_t opcode) {
    const bool has_hit = z80_state.nmi & NMI_HIT;
    z80_state.nmi &= ~NMI_HIT;
    const uint16_t sp = s.sp;
    if (!offer_interrupts(s, opcode)) return false;
    const bool taken = s.sp != sp;
    if (taken && z80_watch.interrupts) hit(watch_kind::interrupt, s.pc, 0, 0);
    const bool hits_more = z80_state.nmi & NMI_HIT; // the interrupt has pushed PC
    z80_state.nmi &= ~NMI_HIT;
    return !has_hit && !hits_more;
}

/// PC has come to an address with an execute watch.
[[gnu::noinline, gnu::cold]] bool arrives(uint16_t pc) {
    if (z80_watch.last_pc == pc) return false;
    z80_watch.last_pc = pc;
    z80_watch.hits[0] = {watch_kind::execute, 0, 0, pc, pc, z80_state.t_count};
    z80_watch.hit_count = 1;
    return true;
}

/// Whether the cycle that is waited for has come.
bool cycle_has_come(uint16_t pc) {
    if (z80_state.t_count < z80_watch.until) return false;
    z80_watch.until = WATCH_NO_CYCLE;
    if (z80_watch.hit_count == WATCH_HITS) return true;
    z80_watch.hits[z80_watch.hit_count++] = {watch_kind::cycle, 0, 0, pc, pc, z80_state.t_count};
    return true;
}

} // namespace

[[gnu::noinline, gnu::flatten]] int32_t run_watched(int32_t budget) {
    const int64_t end = z80_state.t_count + budget;
    const int64_t stop = std::min(end, z80_watch.until);
    WatchedRegisters s = {z80_state};
    z80_state.waits = 0;
    int64_t now = z80_state.t_count;
    do {
        const uint32_t pc = s.pc;
        if (z80_watch.memory[pc] & WATCH_EXECUTE) [[unlikely]] {
            if (budget != 0 && arrives(s.pc)) break;
        }
        z80_state.instruction_start = now;
        z80_watch.last_pc = int32_t(pc);
        const uint8_t opcode = fetch(s);
        count_refresh(s);
        z80_state.t_count += execute<int64_t>(s, opcode);
        now = z80_state.t_count;
        if (!nothing_is_requested()) [[unlikely]] {
            if (!end_watched_instruction(s, opcode)) break;
            now = z80_state.t_count;
        }
    } while (now < stop);
    static_cast<z80_registers&>(z80_state) = s;
    return int32_t(end - z80_state.t_count);
}

} // namespace z80_operations

bool z80_watch_arrives() {
    const uint16_t pc = z80_state.pc;
    return (z80_watch.memory[pc] & WATCH_EXECUTE) && z80_operations::arrives(pc);
}

bool z80_watch_cycle_comes() {
    z80_watch.hit_count = 0;
    return z80_operations::cycle_has_come(z80_state.pc);
}

int32_t z80_run_watched(int32_t budget) {
    z80_watch.hit_count = 0;
    if (budget != 0 && z80_operations::cycle_has_come(z80_state.pc)) return budget;
    const int32_t left = z80_operations::run_watched(budget);
    z80_operations::cycle_has_come(z80_state.pc);
    return left;
}
