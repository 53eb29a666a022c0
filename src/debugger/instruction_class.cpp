#include "debugger/instruction_class.h"

#include "debugger/peek.h"

namespace {

constexpr uint8_t OPCODE_HALT = 0x76;
constexpr uint8_t OPCODE_CALL = 0xCD;
constexpr uint8_t OPCODE_PLAIN_RET = 0xC9;
constexpr uint8_t RST_TARGET = 0x38; ///< in its opcode
constexpr uint8_t PREFIX_ED = 0xED;
constexpr uint8_t LAST_TRAP = 0x0C; ///< behind ED

uint8_t behind_ed(uint16_t pc) { return debug_peek(uint16_t(pc + 1)); }

} // namespace

bool is_halt(uint16_t pc) { return debug_peek(pc) == OPCODE_HALT; }

uint16_t call_length(uint16_t pc) { return call_length_of(debug_peek(pc)); }

uint16_t call_target(uint16_t pc) {
    return call_length(pc) == 3 ? debug_peek_word(uint16_t(pc + 1)) : debug_peek(pc) & RST_TARGET;
}

uint16_t call_length_of(uint8_t opcode) {
    if (opcode == OPCODE_CALL || (opcode & 0xC7) == 0xC4) return 3;
    return (opcode & 0xC7) == 0xC7 ? 1 : 0;
}

bool is_repeating(uint16_t pc) {
    return debug_peek(pc) == PREFIX_ED && (behind_ed(pc) & 0xF4) == 0xB0;
}

bool is_return(uint16_t pc) {
    const uint8_t opcode = debug_peek(pc);
    if (opcode != PREFIX_ED) return opcode == OPCODE_PLAIN_RET || (opcode & 0xC7) == 0xC0;
    return (behind_ed(pc) & 0xC7) == 0x45;
}

bool is_trap(uint16_t pc) { return debug_peek(pc) == PREFIX_ED && behind_ed(pc) <= LAST_TRAP; }
