#pragma once
/// Breakpoints and watchpoints, any number of them, with conditions and actions.

#include "debugger/expression.h"
#include "z80/z80_watch.h"

#include <cstdint>
#include <string>
#include <vector>

enum class BreakpointKind : uint8_t {
    execute,     ///< PC comes to an address of the range
    memory_read, ///< data, no fetches
    memory_write,
    memory_access, ///< either
    port_read,
    port_write,
    interrupt, ///< one is accepted
    cycle,     ///< `at` has come
    frame,     ///< the frame `at` of the history begins
    line       ///< the raster line `at` begins, in every frame
};
enum class BreakpointAction : uint8_t { stop, log, count };

struct Breakpoint {
    int number = 0; ///< given by breakpoint_add, from 1
    BreakpointKind kind = BreakpointKind::execute;
    uint16_t first = 0, last = 0; ///< addresses, or ports
    int64_t at = 0;
    std::string condition; ///< empty: always
    BreakpointAction action = BreakpointAction::stop;
    std::string text; ///< of the line that is logged, with values: see format_log
    bool enabled = true;
    bool once = false; ///< removed when it has stopped the machine
    int front = 0;     ///< of which front it is, which alone shows and changes it; 0: of the user
    uint64_t hits = 0; ///< with the condition true or not; going back takes them back
};

/// Returns the number, or 0 and the problem.
int breakpoint_add(Breakpoint breakpoint, std::string& problem);
/// The same for one that is there; its hits stay. False and the problem when it cannot be so.
bool breakpoint_change(const Breakpoint& breakpoint, std::string& problem);
bool breakpoint_remove(int number);
void breakpoints_remove_all(int front);
const std::vector<Breakpoint>& breakpoints();
/// "execute 4300-43FF if a == 3", as the commands take it.
std::string breakpoint_text(const Breakpoint& breakpoint);
