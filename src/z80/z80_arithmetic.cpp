/// The arithmetic that the public header promises: the operations applied to z80_state.

#include "z80/z80.h"

#include "z80/z80_operations.h"

namespace op = z80_operations;

namespace {
z80_registers& s = z80_state;
}

constexpr std::array<uint8_t, 256> parity_table = op::parity_values;

int parity(uint8_t value) { return parity_table[value]; }

void do_add_flags(uint8_t a, uint8_t b, uint8_t result) {
    op::set_f(s, op::add_flags(a, b, result));
}
void do_sub_flags(uint8_t a, uint8_t b, uint8_t result) {
    op::set_f(s, op::sub_flags(a, b, result));
}
void do_add_word_flags(uint16_t a, uint16_t b, uint16_t result) {
    op::set_f(s, op::add_word_flags(op::f(s), a, b, result));
}
void do_adc_word_flags(uint16_t a, uint16_t b, uint16_t result) {
    op::set_f(s, op::adc_word_flags(a, b, result));
}
void do_sbc_word_flags(uint16_t a, uint16_t b, uint16_t result) {
    op::set_f(s, op::sbc_word_flags(a, b, result));
}

void do_add_byte(uint8_t value) { op::add_byte(s, value); }
void do_adc_byte(uint8_t value) { op::adc_byte(s, value); }
void do_sub_byte(uint8_t value) { op::sub_byte(s, value); }
void do_sbc_byte(uint8_t value) { op::sbc_byte(s, value); }
void do_negate() { op::negate(s); }
void do_cp(uint8_t value) { op::compare(s, value); }
void do_and_byte(uint8_t value) { op::and_byte(s, value); }
void do_or_byte(uint8_t value) { op::or_byte(s, value); }
void do_xor_byte(uint8_t value) { op::xor_byte(s, value); }

void do_add_word(uint16_t value) { s.hl = op::add_word(s, s.hl, value); }
void do_add_word_index(uint16_t* index, uint16_t value) { *index = op::add_word(s, *index, value); }
void do_adc_word(uint16_t value) { op::adc_word(s, value); }
void do_sbc_word(uint16_t value) { op::sbc_word(s, value); }

void do_flags_inc_byte(uint8_t value) { op::increment(s, uint8_t(value - 1)); }
void do_flags_dec_byte(uint8_t value) { op::decrement(s, uint8_t(value + 1)); }
void do_daa() { op::decimal_adjust(s); }

uint8_t rlc_byte(uint8_t value) { return op::rlc(s, value); }
uint8_t rrc_byte(uint8_t value) { return op::rrc(s, value); }
uint8_t rl_byte(uint8_t value) { return op::rl(s, value); }
uint8_t rr_byte(uint8_t value) { return op::rr(s, value); }
uint8_t sla_byte(uint8_t value) { return op::sla(s, value); }
uint8_t sra_byte(uint8_t value) { return op::sra(s, value); }
uint8_t slia_byte(uint8_t value) { return op::slia(s, value); }
uint8_t srl_byte(uint8_t value) { return op::srl(s, value); }
void do_rlca() { op::rlca(s); }
void do_rrca() { op::rrca(s); }
void do_rla() { op::rla(s); }
void do_rra() { op::rra(s); }
void do_test_bit(uint8_t opcode, uint8_t value, uint8_t bit) {
    op::test_bit(s, opcode, value, bit);
}

void do_rld() { op::rotate_digit_left(s); }
void do_rrd() { op::rotate_digit_right(s); }
void do_ld_a_i() { op::load_a_special(s, s.i); }
void do_ld_a_r() { op::load_a_special(s, s.r); }
uint8_t in_with_flags(uint32_t port) { return op::in_flags(s, uint8_t(port)); }

uint16_t mem_read_word(uint32_t address) { return op::read_word(s, uint16_t(address)); }
void mem_write_word(uint32_t address, uint16_t value) {
    op::write_word(s, uint16_t(address), value);
}
