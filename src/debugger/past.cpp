#include "debugger/past.h"

void past_start(const PastGoal&, const PastCalls&) {}
bool past_turn() { return false; }
bool past_is_working() { return false; }
std::optional<double> past_progress() { return {}; }
std::optional<DebugStop> past_result() { return {}; }
void past_cancel() {}
bool past_is_shown() { return false; }
void past_branch() {}
void past_forget() {}
