#pragma once
/// The debugger of the live machine: lets it go and has it stand, forwards and backwards, and says
/// why it stands. Windows, the remote protocol and scripts are fronts of this one debugger; several
/// may be there at once.
///
/// What was is in the history (time/history.h). In the past, going forward follows what happened
/// then: nothing is forgotten, and at the present the machine stands. To change something in the
/// past, or debugger_branch, goes on from there: what came after is forgotten.

#include "core/frame_driver.h"
#include "debugger/breakpoints.h"
#include "time/history.h"
#include "z80/z80_watch.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

enum class StopReason : uint8_t {
    none,        ///< it has not stood yet
    interrupted, ///< by debugger_stop
    step,        ///< a step, or a run to an address, is done
    breakpoint,  ///< `breakpoint` was hit, and `hit` says how
    present,     ///< the present was reached, forwards
    beginning,   ///< the history begins here, backwards
    cancelled,   ///< long work was, and the machine is where it was
    another,     ///< the machine has become another one (a state was loaded, the film bar was used)
    failed       ///< `text` says why
};

struct DebugStop {
    StopReason reason = StopReason::none;
    int breakpoint = 0; ///< number of the breakpoint, 0 for none
    watch_hit hit = {}; ///< with a breakpoint
    /// In a few words for the user: "Breakpoint 2: write of 2Ah to 4400, where 00h was, by 4310".
    std::string text = {};
};

/// What the debugger asks and tells the program around it.
struct DebuggerCalls {
    /// The live machine is to run, frame by frame, or no longer.
    std::function<void(bool runs)> let_run = [](bool) {};
    /// A line of a breakpoint that logs.
    std::function<void(const std::string& line)> log = [](const std::string&) {};
    /// The machine is another one than was shown: it stands, or has been changed.
    std::function<void()> show = [] {};
    /// Runs what is left of the live machine's frame, for a step: machine_run, or what plays a
    /// replay. Returns a machine_run_end.
    std::function<int()> run_frame = machine_run;
};

/// On: breakpoints are armed, and `watch_hit` of the host is the debugger's. The machine goes on as
/// it is; a history has to be kept for everything that leads back.
void debugger_start(DebuggerCalls calls);
/// Nothing is armed any more, the past is left for the present, and a machine that stands is let
/// go.
void debugger_end();
bool debugger_is_on();
/// To be called after each complete frame of the live machine.
void debugger_frame_ran();

/// Fronts hear of every stop, and of each time the machine is let go (null). Returns the number to
/// remove it by.
int debugger_add_front(std::function<void(const DebugStop* stop)> told);
void debugger_remove_front(int number);

// ---- standing and going ------------------------------------------------------------------------
// Each returns at once, and does nothing while long work is done. Fronts hear of a stop in
// debugger_turn, which the program calls between frames; a single step of the present is done, and
// told, when the function returns.

bool debugger_stands();
const DebugStop& debugger_last_stop();
/// Has the machine stand before its next instruction. Long work is given up.
void debugger_stop();
/// Goes on, to the next hit; in the past at most to the present.
void debugger_go();
/// One instruction; an accepted interrupt belongs to it.
void debugger_step();
/// The same, but a CALL, RST or repeating block instruction is run to its end, and HALT to the
/// interrupt.
void debugger_step_over();
/// To behind the return of the present subroutine.
void debugger_step_out();
/// To this address, or to a hit before.
void debugger_run_to(uint16_t address);

// ---- backwards ---------------------------------------------------------------------------------

void debugger_back_step();
/// Before the CALL whose subroutine has just ended; else a step.
void debugger_back_over();
/// To before the call of the present subroutine.
void debugger_back_out();
/// To the last hit of any breakpoint that stops.
void debugger_back_go();
/// To the last time that PC was at this address, or to a hit after that.
void debugger_back_to(uint16_t address);
/// To the last write of this byte before now, whether a breakpoint is there or not.
void debugger_back_to_write(uint16_t address);
/// To a moment, backwards or forwards: the end of the frame, or the first instruction at the cycle.
void debugger_to_frame(int64_t frame);
void debugger_to_cycle(int64_t cycle);
/// The present.
void debugger_to_present();
bool debugger_is_in_past();
/// Forgets what came after.
void debugger_branch();

// ---- long work ---------------------------------------------------------------------------------

/// A slice of the work, at most about 20 ms. True while there is more. Without any it tells the
/// fronts that the machine stands, if it has come to that since the last time.
bool debugger_turn();
/// Of the work, 0 to 1; nothing when there is none.
std::optional<double> debugger_progress();
/// Gives the work up: the machine is where it was before.
void debugger_cancel();
/// Runs turns, and frames of the live machine by `run_frame`, until the machine stands: for
/// scripts. False when `may_go_on` said so, which is asked between them.
bool debugger_wait(const std::function<void()>& run_frame, const std::function<bool()>& may_go_on);

// ---- the machine -------------------------------------------------------------------------------
// Changes are events like any others, so that they are in histories and replays.

/// Registers by name, as expressions know them. False when there is none of this name.
bool debugger_set_register(const std::string& name, uint16_t value);
/// As the processor would write them, which ROM does not take.
void debugger_poke(uint16_t address, const std::vector<uint8_t>& bytes);
/// Raster line of the picture: of the beam with the beam engine, else by the cycles of the frame.
int debugger_raster_line();
