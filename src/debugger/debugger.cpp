#include "debugger/debugger.h"

#include "core/machine_events.h"
#include "debugger/past.h"
#include "debugger/raster.h"
#include "debugger/registers.h"
#include "debugger/run_goal.h"
#include "time/event_feed.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <algorithm>
#include <map>
#include <utility>

namespace {

struct DebuggerState {
    DebuggerCalls calls = {};
    std::map<int, std::function<void(const DebugStop*)>> fronts = {};
    int last_front = 0;
    int reader = 0; ///< of the event feed

    bool on = false;
    bool stands = false;
    bool works = false;                 ///< in the past, by turns
    bool changes_machine = false;       ///< itself, so that it does not wonder
    RunGoal goal = {};                  ///< of the machine that goes
    std::optional<DebugStop> next = {}; ///< where it has just come to stand; nobody knows yet
    DebugStop last = {};
    // The place where it stands.
    int64_t cycle = 0;
    uint16_t pc = 0;
} debugger_now;

void write_log(const std::string& line) { debugger_now.calls.log(line); }

void tell_fronts(const DebugStop* stop) {
    const auto fronts = debugger_now.fronts; // one may go meanwhile
    for (const auto& [number, told] : fronts) told(stop);
}

DebugStop stop_at(int number, const watch_hit& hit) {
    const Breakpoint& point = *breakpoint(number);
    std::string what = watch_hit_text(hit);
    if (point.kind == BreakpointKind::frame) what = "end of frame " + std::to_string(point.at);
    if (point.kind == BreakpointKind::line) what = "line " + std::to_string(point.at);
    return {.reason = StopReason::breakpoint,
            .breakpoint = number,
            .hit = hit,
            .text = "Breakpoint " + std::to_string(number) + ": " + what};
}

/// Shows all hits to breakpoints and goal. Where the machine is to stand, and why.
std::optional<DebugStop> take_hits(RunGoal* goal, BreakpointLog log) {
    std::optional<DebugStop> stop;
    const int64_t frame = history_position();
    for (int n = 0; n < z80_watch.hit_count; ++n) {
        const watch_hit& hit = z80_watch.hits[n];
        const bool arrived = goal && goal->takes(hit);
        const int number = breakpoints_take(hit, frame, log);
        if (number && (!stop || !stop->breakpoint)) stop = stop_at(number, hit);
        if (arrived && !stop) stop = DebugStop{.reason = StopReason::step};
    }
    return stop;
}

/// The same behind the end of a frame.
std::optional<DebugStop> take_frame(BreakpointLog log) {
    const int number = breakpoints_take_frame(history_position(), log);
    if (!number) return {};
    return stop_at(number,
                   {.kind = watch_kind::cycle, .pc = z80_state.pc, .cycle = z80_state.t_count});
}

PastCalls past_calls() {
    return {.take_hits = [] { return take_hits(nullptr, nullptr); },
            .take_frame = [] { return take_frame(nullptr); },
            .next_cycle = breakpoints_arm_cycle,
            .hits = breakpoint_hits,
            .set_hits = breakpoints_set_hits,
            .hits_matter = breakpoint_hits_matter};
}

// ---- standing ----------------------------------------------------------------------------------

/// From now on the machine stands; a breakpoint is more to tell than anything else.
void note_stop(DebugStop stop) {
    DebuggerState& now = debugger_now;
    now.stands = true;
    now.calls.let_run(false);
    if (!now.next || !now.next->breakpoint) now.next = std::move(stop);
}

void note_place() {
    debugger_now.cycle = z80_state.t_count;
    debugger_now.pc = z80_state.pc;
}

/// A machine never stands behind the last instruction of a frame that has not ended. Where it
/// stands, it has come to the breakpoints of this address.
void settle() {
    if (past_is_shown()) return; // which has found the place by itself
    if (frame_state.begun && frame_state.left <= 0) debugger_now.calls.run_frame();
    if (!z80_watch.run || !z80_watch_arrives()) return;
    if (auto stop = take_hits(nullptr, write_log)) note_stop(std::move(*stop));
}

void tell_stop() {
    DebuggerState& now = debugger_now;
    settle();
    now.last = *std::exchange(now.next, {});
    now.goal = {};
    const Breakpoint* const hit = breakpoint(now.last.breakpoint);
    if (hit && hit->once) breakpoint_remove(hit->number);
    breakpoints_arm({});
    note_place();
    now.calls.show();
    tell_fronts(&now.last);
}

void stand(DebugStop stop) {
    note_stop(std::move(stop));
    tell_stop();
}

int watch_hit_of_machine() {
    DebuggerState& now = debugger_now;
    std::optional<DebugStop> stop = take_hits(&now.goal, write_log);
    breakpoints_arm_cycle();
    if (!stop) return 0;
    note_stop(std::move(*stop));
    return 1;
}

/// The machine has become another one, by no event.
void machine_is_another() {
    DebuggerState& now = debugger_now;
    if (now.changes_machine || now.works) return;
    z80_watch.last_pc = WATCH_NOWHERE;
    breakpoints_arm_cycle();
    if (now.stands) {
        note_stop({.reason = StopReason::another, .text = "The machine is another one"});
    }
}

bool has_moved() {
    return debugger_now.cycle != z80_state.t_count || debugger_now.pc != z80_state.pc;
}

// ---- going -------------------------------------------------------------------------------------

bool can_go() { return debugger_now.on && debugger_now.stands && !debugger_now.works; }

void arm(const RunGoal& goal) {
    debugger_now.goal = goal;
    breakpoints_arm(goal);
    z80_watch.last_pc = z80_state.pc; // here it has been already
}

void start_past(const PastGoal& goal) {
    DebuggerState& now = debugger_now;
    if (!now.on || now.works) return;
    if (!now.stands) debugger_stop();
    now.works = true;
    past_start(goal, past_calls());
}

/// In the past by what happened then, else by the machine.
void go_on(PastWay way, uint16_t address, RunGoal (*goal)(uint16_t address)) {
    DebuggerState& now = debugger_now;
    if (!can_go()) return;
    if (past_is_shown()) return start_past({.way = way, .address = address});
    arm(goal(address));
    now.stands = false;
    now.next.reset();
    now.calls.let_run(true);
    tell_fronts(nullptr);
}

/// An instruction of the present.
void step_machine() {
    constexpr int MOST_RUNS = 4; // the frame may end before, and the other breakpoint be reached
    DebuggerState& now = debugger_now;
    arm(RunGoal::step());
    for (int n = 0; n < MOST_RUNS && !now.next; ++n) {
        if (now.calls.run_frame() == MACHINE_WAITS) break;
    }
    stand({.reason = StopReason::step});
}

/// The past becomes the present, which is to be changed.
void leave_past() {
    if (!past_is_shown()) return;
    debugger_now.changes_machine = true;
    past_branch();
    debugger_now.changes_machine = false;
}

void change_machine(event_kind kind, int32_t a, shared_bytes bytes) {
    leave_past();
    machine_apply(kind, a, 0, std::move(bytes));
    past_forget();
    if (!debugger_now.stands) return;
    note_place();
    debugger_now.calls.show();
}

} // namespace

void debugger_start(DebuggerCalls calls) {
    DebuggerState& now = debugger_now;
    if (!now.on) {
        now.reader = event_feed_add([](std::span<const machine_event>) {}, machine_is_another);
    }
    now.calls = std::move(calls);
    now.on = true;
    machine_host.watch_hit = watch_hit_of_machine;
    breakpoints_arm(now.goal);
}

void debugger_end() {
    DebuggerState& now = debugger_now;
    if (!now.on) return;
    if (now.works) debugger_cancel();
    if (past_is_shown()) {
        past_start({.way = PastWay::to_present}, past_calls());
        while (past_turn()) continue;
    }
    if (now.stands) debugger_go();
    breakpoints_disarm();
    machine_host.watch_hit = machine_without_host().watch_hit;
    event_feed_remove(now.reader);
    now = {.fronts = std::move(now.fronts), .last_front = now.last_front};
}

bool debugger_is_on() { return debugger_now.on; }

void debugger_frame_ran() {
    if (!debugger_now.on) return;
    breakpoints_arm_cycle();
    if (auto stop = take_frame(write_log)) note_stop(std::move(*stop));
}

int debugger_add_front(std::function<void(const DebugStop* stop)> told) {
    debugger_now.fronts[++debugger_now.last_front] = std::move(told);
    return debugger_now.last_front;
}

void debugger_remove_front(int number) { debugger_now.fronts.erase(number); }

bool debugger_stands() { return debugger_now.stands; }

const DebugStop& debugger_last_stop() { return debugger_now.last; }

void debugger_stop() {
    DebuggerState& now = debugger_now;
    if (now.works) return debugger_cancel();
    if (now.on && !now.stands) stand({.reason = StopReason::interrupted, .text = "Stopped"});
}

void debugger_go() {
    go_on(PastWay::go, 0, [](uint16_t) { return RunGoal(); });
}

void debugger_step() {
    if (!can_go()) return;
    past_is_shown() ? start_past({.way = PastWay::step}) : step_machine();
}

void debugger_step_over() {
    if (!can_go()) return;
    if (!past_is_shown() && RunGoal::over().is_step()) return step_machine();
    go_on(PastWay::step_over, 0, [](uint16_t) { return RunGoal::over(); });
}

void debugger_step_out() {
    go_on(PastWay::step_out, 0, [](uint16_t) { return RunGoal::out(); });
}

void debugger_run_to(uint16_t address) { go_on(PastWay::run_to, address, RunGoal::to); }

void debugger_back_step() { start_past({.way = PastWay::back_step}); }
void debugger_back_over() { start_past({.way = PastWay::back_over}); }
void debugger_back_out() { start_past({.way = PastWay::back_out}); }
void debugger_back_go() { start_past({.way = PastWay::back_go}); }
void debugger_back_to(uint16_t address) {
    start_past({.way = PastWay::back_to, .address = address});
}
void debugger_back_to_write(uint16_t address) {
    start_past({.way = PastWay::back_to_write, .address = address});
}
void debugger_to_frame(int64_t frame) { start_past({.way = PastWay::to_frame, .at = frame}); }
void debugger_to_cycle(int64_t cycle) { start_past({.way = PastWay::to_cycle, .at = cycle}); }
void debugger_to_present() { start_past({.way = PastWay::to_present}); }
bool debugger_is_in_past() { return past_is_shown(); }

void debugger_branch() {
    if (!can_go() || !past_is_shown()) return;
    leave_past();
    debugger_now.calls.show();
}

bool debugger_turn() {
    DebuggerState& now = debugger_now;
    if (!now.on) return false;
    if (now.works) {
        if (past_turn()) return true;
        now.works = false;
        const DebugStop failed = {.reason = StopReason::failed, .text = "Nothing was found"};
        now.next = past_result().value_or(failed);
    } else if (now.stands && !now.next && has_moved()) {
        machine_is_another();
    }
    if (now.next) tell_stop();
    return now.works;
}

std::optional<double> debugger_progress() {
    return debugger_now.works ? past_progress() : std::nullopt;
}

void debugger_cancel() {
    DebuggerState& now = debugger_now;
    if (!now.works) return;
    past_cancel();
    now.works = false;
    stand({.reason = StopReason::cancelled, .text = "Given up"});
}

bool debugger_wait(const std::function<void()>& run_frame, const std::function<bool()>& may_go_on) {
    DebuggerState& now = debugger_now;
    for (;;) {
        const bool works = debugger_turn();
        if (!works && (now.stands || !now.on)) return true;
        if (!may_go_on()) return false;
        if (!works) run_frame();
    }
}

bool debugger_set_register(const std::string& name, uint16_t value) {
    z80_registers registers = z80_state;
    if (!debugger_now.on || debugger_now.works || !set_register(registers, name, value)) {
        return false;
    }
    change_machine(event_kind::registers, 0, bytes_of(registers));
    return true;
}

void debugger_poke(uint16_t address, const std::vector<uint8_t>& bytes) {
    if (!debugger_now.on || debugger_now.works) return;
    change_machine(event_kind::poke, address, shared_bytes(bytes));
}

int debugger_raster_line() { return raster_line(); }
