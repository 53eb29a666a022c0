#include "host/script_run.h"

#include "core/frame_driver.h"
#include "core/pacing/pacing.h"
#include "debugger/breakpoints.h"
#include "debugger/commands.h"
#include "debugger/debugger.h"
#include "host/debugging.h"
#include "host/held_keys.h"
#include "host/machine_callbacks.h"
#include "host/messages.h"
#include "host/screen_text.h"
#include "host/shell_state.h"
#include "host/turn.h"
#include "platform/platform.h"
#include "z80/z80.h"

#include <cstdio>
#include <utility>

namespace {

constexpr int64_t LONGEST_SPAN = int64_t(1) << 40;
constexpr ScriptSpan USUAL_LIMIT;

int64_t frames_run = 0; ///< of the live machine
void (*shell_frame_ran)() = nullptr;
int debugger_user = 0; ///< the script

void count_frame() {
    ++frames_run;
    shell_frame_ran();
}

/// Does what the debugger has to do, and says whether the machine stands behind that.
bool debugger_has_stopped() { return debugger_is_on() && !debugger_turn() && debugger_stands(); }

void print_lines(const std::string& text) {
    if (!text.empty()) std::printf("%s\n", text.c_str());
}

} // namespace

ScriptSpan take_span(CommandWords& words) {
    ScriptSpan span;
    span.amount = words.number("a number", 0, LONGEST_SPAN);
    constexpr int KINDS = 3;
    const int unit = words.choice({"frames", "seconds", "cycles", "frame", "second", "cycle"});
    span.unit = ScriptSpan::Unit(unit < 0 ? 0 : unit % KINDS);
    return span;
}

ScriptSpan take_limit(CommandWords& words) {
    return words.take_if("within") ? take_span(words) : USUAL_LIMIT;
}

LimitedLine limited_line(std::string_view line) {
    CommandWords words(line, true);
    while (!words.empty()) {
        const size_t at = size_t(words.peek().data() - line.data());
        if (!words.take_if("within")) {
            words.take();
            continue;
        }
        const ScriptSpan limit = take_span(words);
        words.acts();
        return {line.substr(0, at), limit, words.problem()};
    }
    return {line, USUAL_LIMIT, {}};
}

ScriptRun::ScriptRun(const Script& given) : script(given) {
    shell_frame_ran = std::exchange(pacing_host.frame_ran, count_frame);
    further_input = press_held_keys;
    frames_run = 0;
    if (script.uses_debugger) debugger_user = debugging_begin(print_lines);
}

ScriptRun::~ScriptRun() {
    if (script.uses_debugger) debugging_end(debugger_user);
    pacing_host.frame_ran = shell_frame_ran;
    further_input = nullptr;
    release_held_keys();
}

void ScriptRun::fail(const std::string& why) {
    if (std::exchange(failed, true)) return;
    std::fflush(stdout);
    const int number = next ? script.lines[next - 1].number : 0;
    std::fprintf(stderr, "%s:%d: %s\n", script.name.c_str(), number, why.c_str());
}

void ScriptRun::exit(int wanted) { status = wanted; }

void ScriptRun::show_screen_of_failure() const {
    std::fprintf(stderr, "%s", readable_screen().c_str());
}

bool ScriptRun::turn() {
    const ShellTurn done = shell_turn();
    switch (done.next) {
    case ShellTurn::Next::now: break;
    case ShellTurn::Next::in_time: platform().events().wait(done.microseconds); break;
    case ShellTurn::Next::on_event:
        if (!debugger_progress() && !debugger_has_stopped()) fail("the machine does not run");
        break;
    case ShellTurn::Next::end:
        ended = true;
        status = done.exit_code;
        fail("the program has ended");
    }
    if (!failed && failure_was_reported()) fail(kept_messages().back().line);
    return !failed;
}

/// Runs one, or until the machine stands.
bool ScriptRun::frame() {
    const int64_t before = frames_run;
    while (frames_run == before && !debugger_has_stopped()) {
        if (!turn()) return false;
    }
    return true;
}

bool ScriptRun::is_over(const ScriptSpan& span, int64_t first_cycle, int64_t first_frame) const {
    switch (span.unit) {
    case ScriptSpan::Unit::frames: return frames_run - first_frame >= span.amount;
    case ScriptSpan::Unit::cycles: return z80_state.t_count - first_cycle >= span.amount;
    case ScriptSpan::Unit::seconds: break;
    }
    return (z80_state.t_count - first_cycle) / int64_t(z80_state.clock_hz) >= span.amount;
}

bool ScriptRun::run_until(const std::function<bool()>& done, const ScriptSpan& limit) {
    const int64_t first_cycle = z80_state.t_count;
    const int64_t first_frame = frames_run;
    if (debugger_has_stopped()) debugger_go();
    while (!failed && !done()) {
        if (is_over(limit, first_cycle, first_frame)) return false;
        if (!frame()) return false;
        if (!debugger_has_stopped()) continue;
        if (debugger_last_stop().reason == StopReason::present) {
            debugger_go(); // from the past into what has not been yet
            continue;
        }
        print_lines(debugger_stop_text());
        return done();
    }
    return !failed;
}

bool ScriptRun::run_for(const ScriptSpan& span) {
    if (span.unit == ScriptSpan::Unit::cycles) return run_cycles(span.amount);
    run_until([] { return false; }, span);
    return !failed && !debugger_has_stopped();
}

/// Whole frames as far as they fit, and instructions behind them.
bool ScriptRun::run_cycles(int64_t count) {
    const int64_t end = z80_state.t_count + count;
    const int64_t margin = 2 * int64_t(frame_budget());
    run_until([=] { return z80_state.t_count + margin >= end; }, {count, ScriptSpan::Unit::cycles});
    if (failed || debugger_has_stopped()) return false;
    if (debugger_is_on()) { // which notices what is hit on the way
        Breakpoint there;
        there.kind = BreakpointKind::cycle;
        there.at = end;
        there.once = true;
        std::string problem;
        if (breakpoint_add(there, problem)) wait_for_stop(USUAL_LIMIT);
        return false;
    }
    while (!failed && z80_state.t_count < end) {
        if (run_with_answers(machine_step) == MACHINE_FRAME) run_timed_events();
    }
    return !failed;
}

void ScriptRun::wait_for_stop(const ScriptSpan& limit) {
    const int64_t first_cycle = z80_state.t_count;
    const int64_t first_frame = frames_run;
    while (!debugger_has_stopped()) {
        if (is_over(limit, first_cycle, first_frame)) {
            fail("the machine has not stopped");
            return show_screen_of_failure();
        }
        if (!frame()) return;
    }
    print_lines(debugger_stop_text());
}

void ScriptRun::begin_loop(int64_t times) { loops.push_back({next, times}); }

void ScriptRun::end_loop() {
    Loop& loop = loops.back();
    if (--loop.left > 0) {
        next = loop.first;
    } else {
        loops.pop_back();
    }
}

void ScriptRun::obey(const ScriptLine& line) {
    CommandWords words(line.text);
    if (script_command(this, words, words.text("a command"))) {
        if (!words.problem().empty()) fail(words.problem());
        return;
    }
    const LimitedLine limited = limited_line(line.text);
    const CommandResult result = debugger_command(limited.command);
    if (result.failed) return fail(result.text);
    print_lines(result.text);
    if (result.goes) wait_for_stop(limited.limit);
}

int ScriptRun::run() {
    while (next < script.lines.size() && !failed && !status) {
        const ScriptLine& line = script.lines[next++];
        obey(line);
        if (!failed && failure_was_reported()) fail(kept_messages().back().line);
    }
    const int own_status = failed ? SCRIPT_FAILED : status.value_or(0);
    if (ended) return own_status;
    platform().events().post_quit(own_status);
    return run_message_loop();
}
