#include "debugger/past.h"

#include "debugger/instruction_class.h"
#include "debugger/past_steps.h"
#include "debugger/peek.h"
#include "debugger/run_goal.h"
#include "time/history_search.h"
#include "z80/z80.h"
#include "z80/z80_watch.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <utility>

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds SLICE{10};
constexpr int MOST_STACKED = 64; ///< words of the stack that are looked at for a return address

struct PastWork {
    PastGoal goal = {};
    PastCalls calls = {};
    history_moment start = {}; ///< where the machine was
    bool was_live = true;
    history_place start_place = {};  ///< the machine then, of the past
    std::vector<uint64_t> hits = {}; ///< of the breakpoints then

    /// A piece of the work, true while there is more; and what comes then.
    std::function<bool()> piece = {};
    std::function<void()> then = {};
    HistorySearch search = {};
    HistorySweep sweep = {};
    HistoryLook look = {};
    RunGoal run_goal = {};
    std::optional<DebugStop> stop = {}; ///< of the hit that was found last

    // Hits of breakpoints on the way, see count_by_parts.
    std::vector<uint64_t> hits_before = {};  ///< the part that is run
    std::vector<uint64_t> hits_in_part = {}; ///< the last that was run
    std::vector<uint64_t> hits_behind = {};  ///< those parts that have been run
    double (*progress)() = [] { return 0.0; };
};

PastWork past_work;
std::optional<DebugStop> past_end;
PastSteps step_places;

/// The present that was left last.
struct {
    history_moment moment;
    std::vector<Breakpoint> breakpoints; ///< with their hits
} past_present;

void do_pieces(std::function<bool()> piece, std::function<void()> then) {
    past_work.piece = std::move(piece);
    past_work.then = std::move(then);
}

// ---- the end of the work -----------------------------------------------------------------------

void arm_breakpoints(const RunGoal& goal = {}) {
    z80_watch = {};
    breakpoints_arm(goal);
}

void end_with(DebugStop stop) {
    past_work.piece = {};
    past_work.then = {};
    arm_breakpoints();
    z80_watch.last_pc = z80_state.pc;
    past_end = std::move(stop);
}

/// The machine stays where it is.
void arrive(DebugStop stop) {
    history_show_place();
    end_with(std::move(stop));
}

void return_to_start() {
    if (past_work.was_live) {
        history_show_present();
    } else {
        history_take_up(past_work.start_place);
        history_show_place();
    }
    if (!past_work.hits.empty()) past_work.calls.set_hits(past_work.hits);
}

void give_up(StopReason reason, std::string text) {
    return_to_start();
    end_with({.reason = reason, .text = std::move(text)});
}

void fail_past(const std::string& trouble) { give_up(StopReason::failed, trouble); }

/// The present, with the machine and the hits that it had.
void arrive_at_present() {
    history_show_present();
    std::vector<uint64_t> hits = past_work.calls.hits();
    for (size_t n = 0; n < hits.size(); ++n) {
        const int number = breakpoints()[n].number;
        const auto then = std::ranges::find(past_present.breakpoints, number, &Breakpoint::number);
        if (then != past_present.breakpoints.end()) hits[n] = then->hits;
    }
    past_work.calls.set_hits(hits);
    end_with({.reason = StopReason::present, .text = "The present"});
}

// ---- pieces ------------------------------------------------------------------------------------

/// To the end of the frame, from the state before it.
void travel(int64_t frame, std::function<void()> then) {
    const std::string trouble = history_go_back(frame);
    if (!trouble.empty()) return fail_past(trouble);
    do_pieces(
        [frame] {
            if (history_position() >= frame) return false;
            return history_run_frame(false) == history_end::frame;
        },
        [frame, then = std::move(then)] {
            history_position() == frame ? then() : fail_past(history_trouble());
        });
}

/// To the moment.
void travel_to(const history_moment& moment, std::function<void()> then) {
    travel(moment.frame, [moment, then = std::move(then)] {
        const history_end end = history_run_to(moment);
        if (history_moment_now() == moment) return then();
        fail_past(end == history_end::failed ? history_trouble() : "There is no such moment");
    });
}

void search_then(HistoryLook look, bool counts, std::function<void()> then) {
    past_work.search = {};
    past_work.search.begin(past_work.start, std::move(look), counts);
    past_work.progress = [] { return past_work.search.progress(); };
    do_pieces([] { return past_work.search.run_piece(); },
              [then = std::move(then)] {
                  past_work.search.trouble().empty() ? then()
                                                     : fail_past(past_work.search.trouble());
              });
}

// ---- hits of breakpoints -----------------------------------------------------------------------

void add_hits(std::vector<uint64_t>& to, const std::vector<uint64_t>& more) {
    to.resize(std::max(to.size(), more.size()));
    for (size_t n = 0; n < more.size(); ++n) to[n] += more[n];
}

/// Those of `all` without the others; never below 0, since a breakpoint may be younger than a hit.
std::vector<uint64_t> without(std::vector<uint64_t> all, const std::vector<uint64_t>& others) {
    for (size_t n = 0; n < std::min(all.size(), others.size()); ++n) {
        all[n] -= std::min(all[n], others[n]);
    }
    return all;
}

std::vector<uint64_t> no_hits() { return std::vector<uint64_t>(past_work.hits.size(), 0); }

std::optional<watch_hit> take_hits_of_breakpoints() {
    auto stop = past_work.calls.take_hits();
    if (!stop) return {};
    past_work.stop = std::move(stop);
    return past_work.stop->hit;
}

bool take_frame_of_breakpoints() {
    if (!past_work.calls.take_frame) return false;
    auto stop = past_work.calls.take_frame();
    if (!stop) return false;
    past_work.stop = std::move(stop);
    return true;
}

HistoryLook look_at_breakpoints() {
    return {.take_hits = take_hits_of_breakpoints,
            .take_frame = take_frame_of_breakpoints,
            .next_cycle = past_work.calls.next_cycle};
}

/// The machine is before the moment `end`, up to which there were so many hits: those between are
/// taken back.
void take_hits_back(const history_moment& end, const std::vector<uint64_t>& hits,
                    std::function<void()> then) {
    if (hits.empty()) return then();
    auto here = std::make_shared<history_place>();
    history_park(*here);
    arm_breakpoints();
    z80_watch.last_pc = z80_state.pc;
    past_work.calls.set_hits(no_hits());
    past_work.look = look_at_breakpoints();
    past_work.sweep.begin(end, true, &past_work.look, [](const HistoryHit&) { return false; });
    do_pieces([] { return past_work.sweep.run_piece(); },
              [here, hits, then = std::move(then)] {
                  past_work.calls.set_hits(without(hits, past_work.calls.hits()));
                  history_take_up(*here);
                  then();
              });
}

void take_hits_back(std::function<void()> then) {
    take_hits_back(past_work.start, past_work.hits, std::move(then));
}

/// Stands at the moment, which is before the start.
void go_back_to(const history_moment& moment, DebugStop stop) {
    travel_to(moment, [stop = std::move(stop)] { take_hits_back([stop] { arrive(stop); }); });
}

// ---- single steps back -------------------------------------------------------------------------

/// The machine becomes what it was at place `n` of the list.
void take_step(size_t n, const std::function<void()>& then) {
    step_places.go_to(n) ? take_hits_back(then) : fail_past(history_trouble());
}

void step_from_list(const std::function<void()>& then) {
    const auto at = step_places.find(past_work.start);
    if (at && *at > 0) return take_step(*at - 1, then);
    const int64_t before = past_work.start.frame - 1;
    if (before < 0) return give_up(StopReason::beginning, "The history begins here");
    travel(before, [before, then] {
        if (!step_places.list(before, past_work.start)) return fail_past(history_trouble());
        take_step(step_places.count() - 1, then);
    });
}

/// The machine becomes what it was an instruction before.
void step_back(const std::function<void()>& then) {
    if (step_places.find(past_work.start).value_or(0) > 0) {
        if (past_work.was_live) history_go_back(past_work.start.frame);
        return step_from_list(then);
    }
    travel(past_work.start.frame, [then] {
        if (!step_places.list(past_work.start.frame, past_work.start))
            return fail_past(history_trouble());
        step_from_list(then);
    });
}

void arrive_by_step() { arrive({.reason = StopReason::step}); }

// ---- other ways back ---------------------------------------------------------------------------

/// Only writes of the bytes at `address`, and interrupts, which push.
void arm_writes(uint16_t address) {
    z80_watch = {};
    z80_watch.memory[address] = WATCH_WRITE;
    z80_watch.interrupts = true;
}

std::optional<watch_hit> last_write() {
    std::optional<watch_hit> last;
    for (int n = 0; n < z80_watch.hit_count; ++n) {
        if (z80_watch.hits[n].kind == watch_kind::memory_write) last = z80_watch.hits[n];
    }
    return last;
}

/// Whether the instruction that has just been run, and has written to the stack, was a call of a
/// subroutine that returns to this address, or an interrupt has come in behind it.
bool is_call(uint16_t pc, uint16_t return_address) {
    for (int n = 0; n < z80_watch.hit_count; ++n) {
        if (z80_watch.hits[n].kind == watch_kind::interrupt) return true;
    }
    const uint16_t length = call_length(pc);
    return length != 0 && uint16_t(pc + length) == return_address;
}

/// Looks for the call that has put the return address at `slot`. Then `found` with its place, or
/// `other`.
void find_call(uint16_t slot, uint16_t return_address,
               std::function<void(const history_moment&)> found, std::function<void()> other) {
    arm_writes(slot);
    auto was_call = std::make_shared<bool>(false);
    const auto take = [was_call, return_address] {
        const auto hit = last_write();
        if (hit) *was_call = is_call(hit->pc, return_address);
        return hit;
    };
    search_then({.take_hits = take}, false,
                [was_call, found = std::move(found), other = std::move(other)] {
                    const auto& hit = past_work.search.found();
                    if (hit && *was_call) return found(hit->place);
                    other();
                });
}

void step_back_over() {
    const uint16_t pc = z80_state.pc;
    const uint16_t sp = z80_state.sp;
    step_back([pc, sp] {
        const history_moment before = history_moment_now();
        const bool returned = is_return(before.pc) && uint16_t(z80_state.sp + 2) == sp;
        const auto stay = [before] { go_back_to(before, {.reason = StopReason::step}); };
        if (returned) {
            const auto found = [](const history_moment& place) {
                go_back_to(place, {.reason = StopReason::step});
            };
            return find_call(z80_state.sp, pc, found, stay);
        }
        if (!is_repeating(before.pc) && !is_halt(before.pc)) return arrive_by_step();
        // To the first of its passes.
        z80_watch = {};
        z80_watch.memory[before.pc] = WATCH_EXECUTE;
        const auto take = [] { return std::optional(z80_watch.hits[0]); };
        search_then({.take_hits = take}, false, [stay] {
            if (!past_work.search.found()) return stay();
            go_back_to(past_work.search.found()->place, {.reason = StopReason::step});
        });
    });
}

void look_for_caller(int slot) {
    const auto address = uint16_t(z80_state.sp + 2 * slot);
    if (slot == MOST_STACKED || (slot > 0 && address < 2)) {
        return give_up(StopReason::failed, "No caller is found on the stack");
    }
    find_call(
        address, debug_peek_word(address),
        [](const history_moment& place) { go_back_to(place, {.reason = StopReason::step}); },
        [slot] { // the next slot, as the stack was at the start
            travel_to(past_work.start, [slot] { look_for_caller(slot + 1); });
        });
}

void back_to_write(uint16_t address) {
    arm_writes(address);
    z80_watch.interrupts = false;
    search_then({.take_hits = last_write}, false, [] {
        const auto& found = past_work.search.found();
        if (!found) return fail_past("Nothing in the history has written this byte");
        const DebugStop stop = {
            .reason = StopReason::step, .hit = found->hit, .text = watch_hit_text(found->hit)};
        go_back_to(found->place, stop);
    });
}

/// Counts the hits of each part. Conditions that depend on them need to know how many there were
/// before it.
void count_by_parts() {
    past_work.hits_behind = no_hits();
    past_work.search.part_begins = [](bool counts) {
        const bool known = !counts && past_work.calls.hits_matter();
        past_work.hits_before = known ? without(past_work.hits, past_work.hits_behind) : no_hits();
        if (known) past_work.hits_before = without(past_work.hits_before, past_work.hits_in_part);
        past_work.calls.set_hits(past_work.hits_before);
    };
    past_work.search.part_ends = [](bool counts) {
        past_work.hits_in_part = without(past_work.calls.hits(), past_work.hits_before);
        if (!counts && !past_work.search.found())
            add_hits(past_work.hits_behind, past_work.hits_in_part);
    };
}

/// To the last hit of a breakpoint that stops, or to this address.
void back_go(std::optional<uint16_t> address) {
    arm_breakpoints(address ? RunGoal::to(*address) : RunGoal());
    HistoryLook look = look_at_breakpoints();
    look.take_hits = [address]() -> std::optional<watch_hit> {
        const watch_hit first = z80_watch.hits[0];
        if (const auto hit = take_hits_of_breakpoints()) return hit;
        if (!address || first.kind != watch_kind::execute || first.address != *address) return {};
        past_work.stop = DebugStop{.reason = StopReason::step};
        return first;
    };
    search_then(std::move(look), past_work.calls.hits_matter(), [] {
        const auto& found = past_work.search.found();
        const auto hits = without(past_work.hits, past_work.hits_behind);
        if (!found) {
            return travel(history_first(), [hits] {
                history_run_steps(0, false);
                past_work.calls.set_hits(hits);
                arrive({.reason = StopReason::beginning, .text = "The history begins here"});
            });
        }
        travel_to(found->place, [hits] {
            take_hits_back(past_work.search.part_end(), hits, [] { arrive(*past_work.stop); });
        });
    });
    count_by_parts();
}

// ---- to a moment, and forwards -----------------------------------------------------------------

/// The machine is where it was to come to, before or after the start.
void arrive_counted() {
    const history_moment now = history_moment_now();
    const bool is_before =
        now.frame < past_work.start.frame ||
        (now.frame == past_work.start.frame && now.cycle < past_work.start.cycle);
    if (is_before) return take_hits_back(arrive_by_step);
    arrive_by_step();
}

void to_frame(int64_t frame) {
    const int64_t last = history_last();
    if (frame > last) return arrive_at_present();
    travel(std::max(frame, history_first()), [] {
        if (history_run_steps(0, false) == history_end::record) return arrive_at_present();
        arrive_counted();
    });
}

void to_cycle(int64_t cycle) {
    const std::string trouble = history_go_back(history_frame_before_cycle(cycle));
    if (!trouble.empty()) return fail_past(trouble);
    auto end = std::make_shared<history_end>(history_end::frame);
    do_pieces(
        [cycle, end] {
            *end = history_run_to_cycle(cycle);
            return *end == history_end::frame;
        },
        [end] {
            if (*end == history_end::record) return arrive_at_present();
            *end == history_end::failed ? fail_past(history_trouble()) : arrive_counted();
        });
}

/// By breakpoints and the goal.
void run_forward(const RunGoal& goal) {
    arm_breakpoints(goal);
    past_work.run_goal = goal;
    z80_watch.last_pc = z80_state.pc;
    past_work.look = look_at_breakpoints();
    past_work.look.take_hits = []() -> std::optional<watch_hit> {
        std::optional<watch_hit> arrived;
        for (int n = 0; n < z80_watch.hit_count; ++n) {
            if (past_work.run_goal.takes(z80_watch.hits[n])) arrived = z80_watch.hits[n];
        }
        if (const auto hit = take_hits_of_breakpoints()) return hit;
        if (arrived) past_work.stop = DebugStop{.reason = StopReason::step};
        return arrived;
    };
    const history_moment never = {INT64_MAX, INT64_MAX, 0};
    past_work.sweep.begin(never, false, &past_work.look, [](const HistoryHit&) { return true; });
    past_work.progress = [] {
        const auto all = double(history_last() - past_work.start.frame);
        return all > 0 ? double(history_position() - past_work.start.frame) / all : 1.0;
    };
    do_pieces([] { return past_work.sweep.run_piece(); },
              [] {
                  if (past_work.sweep.has_failed()) return fail_past(history_trouble());
                  past_work.sweep.is_stopped() ? arrive(*past_work.stop) : arrive_at_present();
              });
}

void step_forward() {
    arm_breakpoints();
    z80_watch.last_pc = z80_state.pc;
    const history_end end = history_run_steps(1, true);
    if (end == history_end::failed) return fail_past(history_trouble());
    std::optional<DebugStop> stop;
    if (z80_watch.hit_count) stop = past_work.calls.take_hits();
    const bool is_present =
        end == history_end::record || history_run_steps(0, false) == history_end::record;
    if (is_present) return arrive_at_present();
    if (z80_watch_arrives()) {
        if (auto at_address = past_work.calls.take_hits()) stop = std::move(at_address);
    }
    if (end == history_end::frame && past_work.calls.take_frame) {
        if (auto at_end = past_work.calls.take_frame()) stop = std::move(at_end);
    }
    arrive(stop.value_or(DebugStop{.reason = StopReason::step}));
}

void begin_work() {
    const PastGoal& goal = past_work.goal;
    const bool forwards = goal.way >= PastWay::step;
    if (forwards && past_work.was_live) return end_with({.reason = StopReason::present});
    switch (goal.way) {
    case PastWay::back_step: return step_back(arrive_by_step);
    case PastWay::back_over: return step_back_over();
    case PastWay::back_out: return look_for_caller(0);
    case PastWay::back_go: return back_go({});
    case PastWay::back_to: return back_go(goal.address);
    case PastWay::back_to_write: return back_to_write(goal.address);
    case PastWay::to_frame: return to_frame(goal.at);
    case PastWay::to_cycle: return to_cycle(goal.at);
    case PastWay::to_present: return arrive_at_present();
    case PastWay::step: return step_forward();
    case PastWay::step_over: return run_forward(RunGoal::over());
    case PastWay::step_out: return run_forward(RunGoal::out());
    case PastWay::go: return run_forward({});
    case PastWay::run_to: return run_forward(RunGoal::to(goal.address));
    }
}

} // namespace

void past_start(const PastGoal& goal, const PastCalls& calls) {
    past_cancel();
    past_end.reset();
    past_work = {.goal = goal, .calls = calls, .was_live = history_is_live()};
    if (!history_is_kept()) {
        return end_with({.reason = StopReason::failed, .text = "No history is kept"});
    }
    past_work.hits = calls.hits();
    past_work.start = history_moment_now();
    if (past_work.was_live) {
        if (!(past_present.moment == past_work.start)) step_places.forget();
        past_present = {past_work.start, breakpoints()};
    } else {
        history_park(past_work.start_place);
    }
    begin_work();
}

bool past_turn() {
    const auto end = Clock::now() + SLICE;
    while (past_work.piece && Clock::now() < end) {
        if (past_work.piece()) continue;
        const auto then = std::exchange(past_work.then, {});
        past_work.piece = {};
        then();
    }
    return past_is_working();
}

bool past_is_working() { return bool(past_work.piece); }

std::optional<double> past_progress() {
    if (!past_is_working()) return {};
    return std::clamp(past_work.progress(), 0.0, 1.0);
}

std::optional<DebugStop> past_result() { return std::exchange(past_end, {}); }

void past_cancel() {
    if (!past_is_working()) return;
    give_up(StopReason::cancelled, "Given up");
    past_end.reset();
}

bool past_is_shown() { return !history_is_live(); }

void past_branch() {
    history_go_on();
    past_forget();
}

void past_forget() { step_places.forget(); }
