#pragma once
/// What the command line asks of the symbols. A page has neither.

#include "host/command_line.h"

#include <string>

/// Loads the symbol files that the line names. Returns an empty text, or what is wrong with one.
std::string load_named_symbols(const CommandLine& line);
/// Prints a part of the memory as a source, with the symbols, or those beside the started file
/// where none are loaded.
void print_source(const CommandLine& line);
