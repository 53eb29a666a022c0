#pragma once
/// Disassembler for everything that the processor executes: the documented instructions, the
/// undocumented ones and the trap opcodes; and the processor's registers as text.
///
/// Memory is read through mem_read, so that ROM, RAM and the devices in memory look as they do to
/// the processor. Looking takes the machine no time: wait cycles of these reads do not count.
///
/// Numbers are hexadecimal with two or four digits and an "h"; index displacements are unsigned.

#include <cstdint>
#include <string>

/// Holds any line, the final zero included.
constexpr int DISASSEMBLY_LINE = 64;

/// Writes the instruction at `address` as one line: blank, address, four columns of bytes,
/// mnemonic. Returns the address of the next instruction. `line` has DISASSEMBLY_LINE characters.
uint16_t disassemble(uint16_t address, char* line);
/// What the bytes of instructions are read by.
using byte_reader = uint8_t (*)(uint16_t address);
/// The same, with the bytes that `read` gives.
uint16_t disassemble_by(byte_reader read, uint16_t address, char* line);
/// The listing of all the memory, an instruction to a line, each behind its address.
std::string disassembly_listing();
/// Line `kind` (0 to 2) of the register dump, 53 characters at most. `line` has DISASSEMBLY_LINE
/// characters.
void regdump(char* line, int kind);
/// The bits of `value` as decimal digits: 1000101 for 45h. To be printed with "%08i".
int bytetobin(uint8_t value);
/// A byte as the processor would read it, without the time that takes.
uint8_t peek_memory(uint16_t address);
