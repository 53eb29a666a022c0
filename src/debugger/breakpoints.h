#pragma once
/// Breakpoints and watchpoints, any number of them, with conditions and actions.

#include "debugger/expression.h"
#include "z80/z80_watch.h"

#include <cstdint>
#include <string>
#include <vector>

class RunGoal;

enum class BreakpointKind : uint8_t {
    execute,     ///< PC comes to an address of the range
    memory_read, ///< data, no fetches
    memory_write,
    memory_access, ///< either
    port_read,
    port_write,
    interrupt, ///< one is accepted
    cycle,     ///< `at` has come
    frame,     ///< the frame `at` of the history has ended
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
    std::string text; ///< of the line that is logged, with values (LogText); empty: what was hit
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
/// The one of this number, or null.
const Breakpoint* breakpoint(int number);
/// "execute 4300-43FF if a == 3", as the commands take it.
std::string breakpoint_text(const Breakpoint& breakpoint);
/// "write of 2Ah to 4400"
std::string watch_hit_text(const watch_hit& hit);

// ---- for those who run the machine -------------------------------------------------------------

/// Has the processor look out for all that is enabled, and for the goal. Without any of it nothing
/// is armed, and the machine runs as if there were no debugger.
void breakpoints_arm(const RunGoal& goal);
void breakpoints_disarm();
/// The next cycle after now at which breakpoints or the goal have to be looked at, WATCH_NO_CYCLE
/// for none; z80_watch.until is set to it. Needed after each such hit, and where the machine has
/// become another one.
int64_t breakpoints_arm_cycle();

/// Lines of breakpoints that log go there.
using BreakpointLog = void (*)(const std::string& line);
/// Counts the hit in the breakpoints that it is one of, and does what they are for; `log` may be
/// null. The number of the first one that stops, 0 when the machine is to go on. `frame` is the
/// last complete one.
int breakpoints_take(const watch_hit& hit, int64_t frame, BreakpointLog log);
/// The same behind the end of a frame.
int breakpoints_take_frame(int64_t frame, BreakpointLog log);

/// `hits` of all, in the order of the table.
std::vector<uint64_t> breakpoint_hits();
void breakpoints_set_hits(const std::vector<uint64_t>& hits);
/// Whether a condition depends on them.
bool breakpoint_hits_matter();
