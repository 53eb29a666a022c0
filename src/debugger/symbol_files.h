#pragma once
/// Symbol files of assemblers and compilers:
/// - pasmo and others: `name EQU 08000H`, a line each;
/// - sdcc's linker: .noi (`DEF name 0x8000`) and .map, after --debug with static names and the
///   lines of C, and .cdb, which has what came from C only;
/// - z88dk: .map (`name = $8000 ; addr, public, , module, section, file:line`, or the older
///   `name = 8000, G: module`).
///
/// They are told apart by their contents.

#include "debugger/symbols.h"

#include <string>
#include <string_view>

constexpr size_t LARGEST_SYMBOL_FILE = 16 << 20;
constexpr size_t MOST_SYMBOLS = 1 << 17;
constexpr size_t LONGEST_SYMBOL = 200;

/// Adds the contents of a symbol file. Returns an empty text, or why the file is refused, with the
/// number of the line; nothing of it is kept then. `file_name` is only for that text.
std::string load_symbols(std::string_view file_name, std::string_view contents, SymbolTable& to);
/// The same with the file at `path`.
std::string load_symbol_file(const std::string& path, SymbolTable& to);

/// The symbol file that belongs to a program: in its folder with its name before the extension,
/// .noi, .map, .cdb or .sym in this order, which begins with what tells most. Empty without one.
std::string symbol_file_beside(const std::string& program);
