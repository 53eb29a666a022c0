/// A page has no debugger.

#include "host/debugging.h"

int debugging_begin(DebuggingLog) { return 0; }
void debugging_end(int) {}
void debugging_end_all() {}
bool debugging_is_on() { return false; }
bool debugging_turn() { return false; }
void debugging_frame_ran() {}
void debugging_program_is(const std::string&) {}
