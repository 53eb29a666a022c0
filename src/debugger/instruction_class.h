#pragma once
/// What kinds of instructions there are for somebody who steps, by the memory as it is.

#include <cstdint>

bool is_halt(uint16_t pc);
/// Bytes of a CALL, with a condition or without, or of a RST; 0 for anything else.
uint16_t call_length(uint16_t pc);
uint16_t call_length_of(uint8_t opcode);
/// Where a CALL or RST leads.
uint16_t call_target(uint16_t pc);
/// LDIR, CPIR, INIR, OTIR and those that count down.
bool is_repeating(uint16_t pc);
/// RET, RET cc, RETN and RETI.
bool is_return(uint16_t pc);
bool is_trap(uint16_t pc);
