#include "debugger/code_trace.h"

#include "debugger/peek.h"
#include "z80/disassembler.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

enum : uint8_t { PREFIX_BITS = 0xCB, PREFIX_IX = 0xDD, PREFIX_EXTENDED = 0xED, PREFIX_IY = 0xFD };
enum : uint8_t { OPCODE_RET = 0xC9, OPCODE_JP = 0xC3, OPCODE_JR = 0x18, OPCODE_JP_HL = 0xE9 };
constexpr uint8_t RST_SYNTAX = 0xCF;

constexpr std::string_view extended_opcodes =
    "\x40\x41\x42\x43\x44\x45\x46\x47\x48\x49\x4A\x4B\x4D\x4F\x50\x51\x52\x53\x56\x57\x58\x59\x5A"
    "\x5B\x5E\x5F\x60\x61\x62\x67\x68\x69\x6A\x6F\x72\x73\x78\x79\x7A\x7B\xA0\xA1\xA2\xA3\xA8\xA9"
    "\xAA\xAB\xB0\xB1\xB2\xB3\xB8\xB9\xBA\xBB";
constexpr std::string_view indexed_opcodes =
    "\x09\x19\x21\x22\x23\x29\x2A\x2B\x34\x35\x36\x39\x46\x4E\x56\x5E\x66\x6E\x70\x71\x72\x73\x74"
    "\x75\x77\x7E\x86\x8E\x96\x9E\xA6\xAE\xB6\xBE\xE1\xE3\xE5\xE9\xF9";

bool is_one_of(std::string_view opcodes, uint8_t opcode) {
    return opcodes.find(char(opcode)) != std::string_view::npos;
}

/// SLL is the hole in the bit group.
bool is_documented_bits(uint8_t opcode) { return (opcode & 0xF8) != 0x30; }

bool is_documented(uint16_t address) {
    const uint8_t second = debug_peek(uint16_t(address + 1));
    switch (debug_peek(address)) {
    case PREFIX_BITS: return is_documented_bits(second);
    case PREFIX_EXTENDED: return is_one_of(extended_opcodes, second);
    case PREFIX_IX:
    case PREFIX_IY: {
        if (second != PREFIX_BITS) return is_one_of(indexed_opcodes, second);
        const uint8_t last = debug_peek(uint16_t(address + 3));
        return (last & 7) == 6 && is_documented_bits(last);
    }
    default: return true;
    }
}

/// A jump, call or restart without a prefix.
void note_flow(TracedInstruction& to, uint8_t opcode) {
    const auto operand = uint16_t(to.address + 1);
    const bool is_jump = opcode == OPCODE_JP || (opcode & 0xC7) == 0xC2;
    const bool is_call = opcode == 0xCD || (opcode & 0xC7) == 0xC4;
    if (is_jump || is_call) to.target = debug_peek_word(operand);
    if (opcode == OPCODE_JR || opcode == 0x10 || (opcode & 0xE7) == 0x20) {
        to.target = uint16_t(operand + 1 + int8_t(debug_peek(operand)));
        // Assemblers do not go on at 0000 behind FFFF.
        if (std::abs(*to.target - to.address) > 0x1000) to.is_plain = false;
    }
    if ((opcode & 0xC7) == 0xC7) to.target = opcode & 0x38;
    to.ends_flow = opcode == OPCODE_JP || opcode == OPCODE_JR || opcode == OPCODE_RET ||
                   opcode == OPCODE_JP_HL;
}

/// The operand of 16 bits of a load, where the mnemonic has four digits.
void note_word(TracedInstruction& to) {
    if (to.target) return;
    const size_t end = to.text.find('h', 5);
    for (size_t at = end; at != std::string::npos; at = to.text.find('h', at + 1)) {
        const std::string_view digits = std::string_view(to.text).substr(at - 4, 4);
        if (digits.find_first_not_of("0123456789abcdef") != std::string_view::npos) continue;
        to.word = debug_peek_word(uint16_t(to.address + to.length - 2));
        to.word_is_address = to.text[at - 5] == '(';
        return;
    }
}

} // namespace

TracedInstruction instruction_at(uint16_t address) {
    char line[DISASSEMBLY_LINE];
    TracedInstruction read;
    read.address = address;
    read.length = uint16_t(disassemble_by(debug_peek, address, line) - address);
    read.text = line + std::strlen(" 0000 00 00 00 00 ");
    read.is_plain = is_documented(address);
    const uint8_t opcode = debug_peek(address);
    const uint8_t second = debug_peek(uint16_t(address + 1));
    if (opcode == PREFIX_IX || opcode == PREFIX_IY) {
        read.ends_flow = second == OPCODE_JP_HL;
    } else if (opcode == PREFIX_EXTENDED) {
        read.ends_flow = second == 0x45 || second == 0x4D; // RETN, RETI
    } else {
        note_flow(read, opcode);
    }
    if (read.is_plain) note_word(read);
    return read;
}

CodeTrace::CodeTrace(uint16_t first_address, uint16_t last_address, bool syntax_restart)
    : first(first_address), last(last_address), restart_takes_byte(syntax_restart), seen(0x10000),
      loaded(0x10000) {}

TracedInstruction CodeTrace::at(uint16_t address) const {
    TracedInstruction read = instruction_at(address);
    read.inline_byte = restart_takes_byte && debug_peek(address) == RST_SYNTAX;
    return read;
}

/// Whether it lies in the part and over no other instruction.
bool CodeTrace::fits(const TracedInstruction& instruction) const {
    if (instruction.length > last - instruction.address + 1) return false;
    for (uint16_t n = 0; n < instruction.length; ++n) {
        if (of[instruction.address + n] != Part::data) return false;
    }
    return true;
}

void CodeTrace::follow(uint16_t entry) {
    open.push_back(entry);
    while (!open.empty()) {
        const uint16_t next = open.back();
        open.pop_back();
        follow_one(next);
    }
}

void CodeTrace::follow_one(uint16_t address) {
    while (is_in(address) && !seen[address]) {
        seen[address] = true;
        const TracedInstruction instruction = at(address);
        if (fits(instruction)) {
            std::fill_n(of.begin() + address, instruction.length, Part::inside);
            of[address] = Part::begin;
        }
        if (instruction.target) open.push_back(*instruction.target);
        if (instruction.word) loaded[*instruction.word] = true;
        if (instruction.ends_flow) return;
        const int next = address + instruction.length + (instruction.inline_byte ? 1 : 0);
        if (next > last) return;
        address = uint16_t(next);
    }
}

/// NOP, LD r,r of the same register, HALT, calls and returns by parity; a jump into the part but
/// into the midst of an instruction.
bool CodeTrace::is_odd(const TracedInstruction& instruction) const {
    const uint8_t opcode = debug_peek(instruction.address);
    const bool is_move = opcode >= 0x40 && opcode < 0x80;
    const bool is_same = is_move && (opcode & 7) == (opcode >> 3 & 7); // HALT is one of these
    const bool is_parity = (opcode & 0xF7) == 0xE4 || (opcode & 0xF7) == 0xE0;
    const auto target = instruction.target;
    return opcode == 0 || opcode == 0xFF || is_same || is_parity ||
           (target && is_in(*target) && of[*target] == Part::inside);
}

bool CodeTrace::is_likely(uint16_t address) const {
    constexpr int LONGEST = 300; // instructions without an end
    constexpr int MOST_ODD = 2;
    int odd = 0, calls = 0; // to known code
    // What code loads into a register is a routine only when it calls others.
    const auto is_routine = [&] { return !loaded[address] || calls > odd; };
    uint16_t next = address;
    for (int count = 0; count < LONGEST; ++count) {
        if (begins_instruction(next)) return count > 0 && is_routine();
        const TracedInstruction instruction = at(next);
        if (!fits(instruction)) return false;
        if ((is_odd(instruction) || !instruction.is_plain) && ++odd > MOST_ODD) return false;
        const auto target = instruction.target;
        if (target && instruction.length == 3 && begins_instruction(*target)) ++calls;
        if (instruction.ends_flow) return is_routine();
        const int behind = next + instruction.length + (instruction.inline_byte ? 1 : 0);
        if (behind > last) return false;
        next = uint16_t(behind);
    }
    return false;
}
