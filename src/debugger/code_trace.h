#pragma once
/// Which bytes of a part of memory are instructions: found by following the flow of the code.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// One instruction, as far as the flow and its operands matter.
struct TracedInstruction {
    uint16_t address = 0;
    uint16_t length = 1;
    /// Documented, and what an assembler makes of its mnemonic.
    bool is_plain = true;
    bool ends_flow = false;         ///< nothing reaches the next instruction through it
    bool inline_byte = false;       ///< a byte behind it belongs to it
    std::optional<uint16_t> target; ///< of a jump, a call or a restart
    std::optional<uint16_t> word;   ///< an address or number of 16 bits that is no target
    bool word_is_address = false;   ///< (word): memory there is used
    std::string text;               ///< as the disassembler has it
};

TracedInstruction instruction_at(uint16_t address);

class CodeTrace {
public:
    /// `syntax_restart`: RST 08 is followed by a byte, as in the firmware's own code.
    CodeTrace(uint16_t first_address, uint16_t last_address, bool syntax_restart);

    /// Follows the code from there; outside of the part, and in the midst of other code, nothing.
    void follow(uint16_t entry);
    /// Whether what begins there looks like code: it comes to an end or to known code, with few
    /// instructions that are rare in programs and common in data. Where known code loads the
    /// address into a register, it has to call other code, too.
    bool is_likely(uint16_t address) const;

    bool begins_instruction(uint16_t address) const { return of[address] == Part::begin; }
    bool is_data(uint16_t address) const { return of[address] == Part::data; }

private:
    enum class Part : uint8_t { data, begin, inside };
    bool is_odd(const TracedInstruction& instruction) const;
    bool is_in(uint16_t address) const { return address >= first && address <= last; }
    bool fits(const TracedInstruction& instruction) const;
    TracedInstruction at(uint16_t address) const;
    void follow_one(uint16_t address);

    uint16_t first, last;
    bool restart_takes_byte;
    std::array<Part, 0x10000> of = {};
    std::vector<bool> seen;
    std::vector<bool> loaded; ///< into a register, or from there
    std::vector<uint16_t> open;
};
