#pragma once
/// The text of source lines, out of the files that the user's symbols name.

#include "debugger/symbols.h"

#include <string>

/// The line without blanks around it; empty where the file is not found. The file is looked for by
/// its path, and by its name in the folders of the symbol files; what was found once is kept.
std::string source_text(const SourceLine& line, const SymbolTable& symbols);
