#pragma once
/// Zilog Z80, modelled instruction by instruction.
///
/// One processor, one global record. The run loop executes whole instructions; every instruction
/// adds its T-states to the cycle counter when its work is done, and the bus functions add the
/// machine's wait cycles to the same counter while they run. A device that reads `t_count` during
/// an access thus sees the start of the instruction and the wait cycles since; only an accepted
/// interrupt and the passes of CPIR and CPDR count as they go.
///
/// Modelled: all documented instructions, SLL, the halves of IX and IY, the register copies of the
/// DDCB and FDCB groups, the mirrored ED opcodes, flag bits 5 and 3, the refresh register,
/// interrupt modes 0 to 2, the NMI, HALT and the delay of one instruction after EI.
///
/// All differences from the chip follow. No known software of this machine depends on them;
/// docs/accuracy.html shows them against the public exercisers.
/// Flags
/// - No WZ register: BIT n,(HL) and BIT n,(IX+d) clear bits 5 and 3, the undocumented opcodes of
///   BIT n,(IX+d) copy them from the byte. No Q latch: SCF and CCF take them from A alone.
/// - IN r,(C) keeps bits 5 and 3.
/// - INI, IND, OUTI and OUTD change Z and N only; N is always set.
/// - A repeated pass of a block instruction leaves all flags as they were.
/// - LD A,I and LD A,R show IFF2 also when an interrupt is accepted behind them.
/// Times
/// - IN A,(n) costs 10 and IN r,(C) 11 T-states, one less than on the chip.
/// - CPIR and CPDR search in one step: no interrupt comes between two passes, and R counts two in
///   all.
/// - The holes of the ED group cost nothing. ED 4E and 6E are holes and do not set mode 0; ED 00 to
///   0C are traps.
/// - DD or FD before an opcode without an index form is an instruction of its own, which counts two
///   refreshes: three with the opcode behind, and an interrupt can come between.
/// - HALT keeps no state: PC stays on it, and it is fetched again every 4 T-states.
/// Interrupts
/// - Mode 0 enters at 0038 as mode 1 does, in 13 T-states. The vector of mode 2 is at I:FF,
///   since no device puts a byte on the bus.
/// - RETI and the mirrors of RETN leave IFF1 alone; the chip copies IFF2 as RETN does.
/// - A request for the NMI stays: it is taken once until z80_ack_nmi, and RETN does not end it.
/// Bus
/// - PUSH, CALL, RST, EX (SP) and the NMI write the low byte first, the chip the high byte.
/// - A prefix that stands alone has the opcode behind it read twice.
/// - Ports have the low eight address bits only. There are no refresh addresses.
///
/// All times are T-states of the machine's main clock.

#include "wall/state_record.h"

#include <array>
#include <cstdint>

/// Programmer's model. Byte registers are the halves of the pairs: F is the low byte of `af`, A the
/// high byte.
struct z80_registers {
    uint16_t af, bc, de, hl;
    uint16_t ix, iy;
    uint16_t sp;
    uint16_t pc;
    uint16_t af_alt, bc_alt, de_alt, hl_alt;
    uint8_t i;
    uint8_t r; ///< low seven bits count fetches; bit 7 changes only through LD R,A
    uint8_t iff1, iff2;
    uint8_t interrupt_mode; ///< 0, 1 or 2
    uint8_t unused[3] = {};
};

/// The registers, the interrupt lines, the machine clock and the breakpoint. While an instruction
/// runs, the registers may stand in the run loop's own copy; at a trap and between calls of z80_run
/// the record is complete.
struct z80_record : z80_registers {
    int32_t irq; ///< level line: nonzero while a device asserts it
    int32_t nmi; ///< latched request; taking the NMI does not clear it
    int32_t nmi_in_progress;
    int32_t waits;             ///< the last run ended at a trap, by z80_wait_at_trap
    int64_t t_count;           ///< T-states since program start; only ever grows
    int64_t instruction_start; ///< t_count before an instruction; see z80_run_noting_starts
    uint64_t clock_hz;         ///< main clock in Hz
    uint64_t cycles_per_line;  ///< clock_hz / 15625 as of z80_init
    uint16_t breakpoint;
    uint16_t unused_2;
    int32_t breakpoint_enabled;
    int32_t breakpoint_reached;
    int32_t stood_on_breakpoint; ///< PC was on the breakpoint at the last cpu_breakpoint_arrives
};

extern z80_record z80_state;
extern const state_record z80_state_record;
/// The cycle counter of a state that can be loaded: so low that no sum with it ever overflows, and
/// at the fastest clock reached after two years.
constexpr int64_t MOST_CYCLES = int64_t(1) << 53;
inline bool is_cycle_count(int64_t cycles) { return cycles >= 0 && cycles <= MOST_CYCLES; }

/// Bits of F.
enum : uint8_t {
    FLAG_C = 0x01,
    FLAG_N = 0x02,
    FLAG_PV = 0x04,
    FLAG_3 = 0x08,
    FLAG_H = 0x10,
    FLAG_5 = 0x20,
    FLAG_Z = 0x40,
    FLAG_S = 0x80
};

// ---- supplied by whoever links the processor ---------------------------------------------------

/// Reads the byte at `address` (0 to FFFF); may add wait cycles to `z80_state.t_count`.
uint8_t mem_read(uint32_t address);
/// Writes `value` at `address` (0 to FFFF); may add wait cycles to `z80_state.t_count`.
void mem_write(uint32_t address, uint8_t value);
/// What mem_read gives at `address`, as far as it can be told without any effect: no time passes,
/// and no device notices.
uint8_t mem_peek(uint32_t address);
/// Reads port 0 to FF. The processor passes the low eight address bits only.
uint8_t z80_in(uint32_t port);
/// Writes port 0 to FF.
void z80_out(uint32_t port, uint8_t value);
/// Serves the trap opcode ED `number` (00 to 0C). `pc` is already behind it and the opcode costs
/// nothing; the function may change any register, `pc` included.
void trap_handle(int number);
/// For trap_handle, when it cannot go on yet: the processor is put back before the trap, without a
/// cycle or a refresh, and the run ends there with `waits` set, whatever its budget. The next run
/// begins with the trap again.
void z80_wait_at_trap();

// ---- running -----------------------------------------------------------------------------------

/// Once at power-on: sets the clock, disarms the breakpoint, resets the processor.
void z80_init(uint32_t clock_hz);
/// Power-on reset: PC, I, R, the interrupt state and lines to 0, SP and AF to FFFF. The other
/// registers, the clock and the breakpoint keep their values.
void z80_reset();
/// Runs whole instructions until `budget` T-states are used, at least one. Returns what is left,
/// 0 or negative; where it waits at a trap, as much as there was before it. A budget of 0 runs
/// exactly one instruction and returns minus its cost, the acceptance of an interrupt after it
/// included.
int32_t z80_run(int32_t budget);
/// As z80_run; while it runs, `instruction_start` tells a device when the present instruction
/// began. z80_run does so only for a budget of 0.
int32_t z80_run_noting_starts(int32_t budget);
/// z80_run (1): one instruction, or a trap and the instruction after it.
void cpu_run();
/// Address of the next instruction.
uint16_t cpu_get_pc();

// ---- interrupts --------------------------------------------------------------------------------

// What DI, EI and IM 0 to 2 do to z80_state, without the delay of one instruction after EI.
void do_di();
void do_ei();
void do_im0();
void do_im1();
void do_im2();
/// Accepts the maskable interrupt now: 13 T-states, 19 in mode 2 (vector from I:FF).
void do_int();
/// Accepts the NMI now: 11 T-states, PC = 0066, IFF2 kept for RETN.
void do_nmi();
/// Requests the NMI, which is taken after the present instruction, once until z80_ack_nmi.
void z80_assert_nmi();
/// Ends the request and the service, so that the next request is taken.
void z80_ack_nmi();

// ---- breakpoint --------------------------------------------------------------------------------

/// Arms the breakpoint at `address`; called again with the same address it toggles the arming.
void z80_cpu_set_breakpoint(uint16_t address);
/// As z80_cpu_set_breakpoint; runs nothing and returns 1.
int cpu_run_until_breakpoint(uint16_t address);
/// 1 when PC stands on the breakpoint, armed or not.
int cpu_is_breakpoint_reached();
/// 1 once when PC stands on the armed breakpoint, and latches `breakpoint_reached`.
int cpu_check_breakpoint();
/// For a caller that steps and looks after every instruction: 1 when PC has come to the armed
/// breakpoint since the last look. An instruction that stays where it is, such as HALT or a
/// repeating block instruction, is reached once.
int cpu_breakpoint_arrives();

// ---- word access, low byte first ---------------------------------------------------------------
// Two accesses through mem_read or mem_write; the byte above FFFF is the one at 0000.

uint16_t mem_read_word(uint32_t address);
void mem_write_word(uint32_t address, uint16_t value);

// ---- arithmetic on z80_state -------------------------------------------------------------------
// Operands are 0 to FF or 0 to FFFF; results are truncated to the register's width.

/// Bits of F, indexed by one bit of the first operand, of the second operand and of the result, the
/// first operand's highest. It is bit 7 for the carry tables, bit 3 for the half-carry tables.
inline constexpr uint8_t sign_carry_overflow_table[8] = {0x00, 0x84, 0x01, 0x80,
                                                         0x01, 0x80, 0x05, 0x81};
inline constexpr uint8_t half_carry_table[8] = {0x00, 0x00, 0x10, 0x00, 0x10, 0x00, 0x10, 0x10};
inline constexpr uint8_t subtract_sign_carry_overflow_table[8] = {0x00, 0x81, 0x01, 0x85,
                                                                  0x04, 0x80, 0x00, 0x81};
inline constexpr uint8_t subtract_half_carry_table[8] = {0x00, 0x10, 0x10, 0x10,
                                                         0x00, 0x00, 0x00, 0x10};
extern const std::array<uint8_t, 256> parity_table; ///< 1 where the number of set bits is even

/// 1 when `value` (0 to FF) has an even number of set bits.
int parity(uint8_t value);

/// F as an addition, a subtraction or their 16-bit forms leave it, from operands and result; the
/// carry that came in is found in them.
void do_add_flags(uint8_t a, uint8_t b, uint8_t result);
void do_sub_flags(uint8_t a, uint8_t b, uint8_t result);
void do_add_word_flags(uint16_t a, uint16_t b, uint16_t result);
void do_adc_word_flags(uint16_t a, uint16_t b, uint16_t result);
void do_sbc_word_flags(uint16_t a, uint16_t b, uint16_t result);

/// The instruction with that operand: changes A and F.
void do_add_byte(uint8_t value);
void do_adc_byte(uint8_t value);
void do_sub_byte(uint8_t value);
void do_sbc_byte(uint8_t value);
void do_negate();
/// Compare; bits 5 and 3 come from the operand.
void do_cp(uint8_t value);
void do_and_byte(uint8_t value);
void do_or_byte(uint8_t value);
void do_xor_byte(uint8_t value);
/// ADD, ADC and SBC HL with that operand: change HL and F.
void do_add_word(uint16_t value);
/// `index` is the address of z80_state.ix or z80_state.iy.
void do_add_word_index(uint16_t* index, uint16_t value);
void do_adc_word(uint16_t value);
void do_sbc_word(uint16_t value);
/// Flags only, from the new value; the carry is kept.
void do_flags_inc_byte(uint8_t value);
void do_flags_dec_byte(uint8_t value);
void do_daa();

/// Rotates and shifts of the CB group: the result, and F. The four without an operand work on A.
uint8_t rlc_byte(uint8_t value);
uint8_t rrc_byte(uint8_t value);
uint8_t rl_byte(uint8_t value);
uint8_t rr_byte(uint8_t value);
uint8_t sla_byte(uint8_t value);
uint8_t sra_byte(uint8_t value);
/// The undocumented shift left that sets bit 0 (CB 30 to 37).
uint8_t slia_byte(uint8_t value);
uint8_t srl_byte(uint8_t value);
void do_rlca();
void do_rrca();
void do_rla();
void do_rra();
/// BIT `bit` of `value`; bits 5 and 3 are copied from the value unless `opcode` names the memory
/// operand (low three bits 6).
void do_test_bit(uint8_t opcode, uint8_t value, uint8_t bit);

// The instructions of these names; RLD and RRD reach (HL) through the bus.
void do_rld();
void do_rrd();
void do_ld_a_i();
void do_ld_a_r();
/// Reads a port and sets S, Z and parity from the byte; C and bits 5 and 3 are kept.
uint8_t in_with_flags(uint32_t port);

// ---- prefixed groups ---------------------------------------------------------------------------
// The prefix is consumed and counted; each executes one instruction from `pc` on z80_state.

void do_CB_instruction();
void do_ED_instruction();
/// `index` is the address of z80_state.ix (prefix DD) or z80_state.iy (prefix FD).
void do_indexed_instruction(uint16_t* index);
