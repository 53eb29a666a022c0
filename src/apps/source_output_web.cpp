#include "apps/source_output.h"

std::string load_named_symbols(const CommandLine& /*line*/) { return ""; }
void print_source(const CommandLine& /*line*/) {}
