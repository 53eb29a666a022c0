#pragma once
/// Instructions as the debugger's window shows them. Reading them has no effect on the machine.

#include <cstdint>
#include <optional>
#include <string>

struct ShownInstruction {
    uint16_t address = 0;
    int length = 0;
    std::string bytes = {};  ///< "CD 00 43"
    std::string text = {};   ///< "call draw", with names in place of numbers where there are
    std::string remark = {}; ///< the number that a name stands for, or the place near it
    std::optional<uint16_t> target = {}; ///< of a jump or a call, or what an operand points at
};

ShownInstruction shown_instruction(uint16_t address);
/// The address of the instruction before: decoding from some way back leads from it to `address`.
/// The byte before when nothing does.
uint16_t address_before(uint16_t address);
