#pragma once
/// Memory as a source that pasmo assembles to the same bytes.
///
/// What is code is traced from known entries: those that are given, the restarts, and labels behind
/// which code is likely. All else is data, as text where it reads like one. Labels come from the
/// symbols and from the addresses that the code uses; one that is not the beginning of an
/// instruction is told by an offset. Undocumented instructions, and those that an assembler has
/// shorter ones for, are bytes with the instruction as a comment.

#include "debugger/symbols.h"

#include <cstdint>
#include <span>
#include <string>

/// The source of the bytes at `first` to `last`, as debug_peek reads them. Symbols outside that the
/// code uses are defined before it.
std::string source_text(uint16_t first, uint16_t last, const SymbolTable& symbols,
                        std::span<const uint16_t> entries);
