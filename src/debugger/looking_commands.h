#pragma once
/// The debugger's commands that look at the machine, and change registers and memory.

#include "debugger/command_words.h"
#include "debugger/formatted.h"

CommandResult command_regs(CommandWords& words);
CommandResult command_peek(CommandWords& words);
CommandResult command_dump(CommandWords& words);
CommandResult command_poke(CommandWords& words);
CommandResult command_fill(CommandWords& words);
CommandResult command_find(CommandWords& words);
CommandResult command_disasm(CommandWords& words);
CommandResult command_print(CommandWords& words);
CommandResult command_stack(CommandWords& words);
CommandResult command_calls(CommandWords& words);
CommandResult command_trace(CommandWords& words);
CommandResult command_symbols(CommandWords& words);
CommandResult command_symbol(CommandWords& words);

/// " (name+3)" for an address near a symbol, else empty.
std::string named(uint16_t address);
