#include "host/script.h"

// A page has no debugger, and so no scripts.

std::string read_script(const std::string& path, Script& /*script*/) {
    return path + ": there are no scripts here\n";
}

int run_script(const Script& /*script*/, const ShellOptions& /*options*/) { return SCRIPT_NOT_RUN; }
