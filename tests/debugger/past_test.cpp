#include "cgenie/input.h"
#include "cgenie/memory/memory.h"
#include "cgenie/video.h"
#include "core/frame_driver.h"
#include "core/machine_events.h"
#include "core/machine_mute.h"
#include "core/machine_state.h"
#include "debugger/commands.h"
#include "debugger/debugger.h"
#include "debugger/trace.h"
#include "time/history.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <map>

namespace {

using Place = std::pair<int64_t, uint16_t>; ///< cycle and PC

/// What happened, told by the machine that was run once more from the start without a debugger.
struct Plain {
    machine_state start;
    std::vector<Place> places;   ///< before each instruction
    std::vector<uint16_t> stack; ///< SP there
    std::map<uint16_t, std::vector<Place>> writes;
};

machine_state machine_now() {
    if (!g_bCycleBasedEngine) video_render_frame();
    machine_state now;
    machine_save(now);
    return now;
}

Place place_now() { return {z80_state.t_count, z80_state.pc}; }

/// BASIC prints and looks at keys that change with time, with the line and with the beam engine.
class Past : public testing::TestWithParam<bool> {
protected:
    static constexpr int FRAMES = 150;

    void SetUp() override {
        machine_host = machine_without_host();
        machine_host.read_input = [](machine_input& input) {
            input = {};
            input.positional[1] = keys && z80_state.t_count / 400'000 % 2 ? 0x40 : 0; // a letter
        };
        keys = false;
        machine_init();
        g_bCycleBasedEngine = GetParam();
        for (int n = 0; n < 300; ++n) machine_run();
        const std::string_view text =
            "\r\n10 A=A+1:PRINT A;:POKE 24000,A AND 255:GOTO 10\r\nRUN\r\n";
        machine_apply(event_kind::typing_trap);
        machine_apply(event_kind::type_text, 0, 0, shared_bytes({text.begin(), text.end()}));
        for (int n = 0; n < 150; ++n) machine_run();
        keys = true;
        plain.start = machine_now();
        history_start({});
        debugger_start({.run_frame = run_frame});
        for (int n = 0; n < FRAMES; ++n) run_frame();
        debugger_to(z80_state.t_count + 20'000);
    }
    void TearDown() override {
        breakpoints_remove_all(0);
        debugger_end();
        history_stop();
    }
    static int run_frame() {
        const int end = machine_run();
        if (end == MACHINE_FRAME) {
            history_frame_ran();
            debugger_frame_ran();
        }
        return end;
    }
    static DebugStop after(const std::function<void()>& act) {
        act();
        int turns = 0;
        const bool stands = debugger_wait([] { run_frame(); }, [&] { return ++turns < 100'000; });
        EXPECT_TRUE(stands);
        return debugger_last_stop();
    }
    /// Inside of a frame.
    static void debugger_to(int64_t cycle) {
        debugger_stop();
        debugger_command("break cycle " + std::to_string(cycle) + " once");
        after(debugger_go);
    }
    /// Runs the same again up to the present, by single instructions.
    void run_plainly() {
        const machine_state here = machine_now();
        const int64_t end = z80_state.t_count;
        const MachineMute mute;
        const z80_watch_record armed = z80_watch;
        std::fill_n(z80_watch.memory, sizeof z80_watch.memory, WATCH_WRITE);
        z80_watch.run = z80_run_watched;
        machine_load(plain.start);
        while (z80_state.t_count < end) {
            plain.places.push_back(place_now());
            plain.stack.push_back(z80_state.sp);
            machine_step();
            for (int n = 0; n < z80_watch.hit_count; ++n) {
                const watch_hit& hit = z80_watch.hits[n];
                if (hit.kind == watch_kind::memory_write) {
                    plain.writes[hit.address].push_back({hit.cycle, hit.pc});
                }
            }
        }
        z80_watch = armed;
        EXPECT_EQ(machine_difference(machine_now(), here), "");
        machine_load(here);
    }

    static inline bool keys = false;
    Plain plain;
};
INSTANTIATE_TEST_SUITE_P(Engines, Past, testing::Bool());

TEST_P(Past, StepsBackAndForwardAgain) {
    constexpr int STEPS = 10'000;
    run_plainly();
    const machine_state present = machine_now();
    const std::vector<TraceStep>& trace = debugger_trace(LONGEST_TRACE);
    ASSERT_EQ(trace.size(), LONGEST_TRACE);
    for (size_t n = 1; n <= LONGEST_TRACE; ++n) {
        const TraceStep& step = trace[LONGEST_TRACE - n];
        ASSERT_EQ(Place(step.cycle, step.registers.pc), plain.places[plain.places.size() - n]);
    }
    EXPECT_EQ(machine_difference(present, machine_now()), "");
    std::map<int, machine_state> kept;
    const size_t last = plain.places.size();
    for (int n = 1; n <= STEPS; ++n) {
        after(debugger_back_step);
        ASSERT_EQ(place_now(), plain.places[last - size_t(n)]) << n << " back";
        if (n % 1500 == 0) kept[n] = machine_now();
    }
    for (int n = STEPS - 1; n > 0; --n) {
        after(debugger_step);
        ASSERT_EQ(place_now(), plain.places[last - size_t(n)]) << n << " left";
        if (kept.count(n)) {
            ASSERT_EQ(machine_difference(kept[n], machine_now()), "") << n;
        }
    }
    EXPECT_EQ(after(debugger_step).reason, StopReason::present);
    EXPECT_EQ(machine_difference(present, machine_now()), "");
    EXPECT_FALSE(debugger_is_in_past());
}

TEST_P(Past, EveryWriteOfAByteIsFoundFromTheLastToTheFirst) {
    run_plainly();
    for (const uint16_t address : {uint16_t(24'000), uint16_t(0x4020)}) {
        const machine_state present = machine_now();
        const auto& writes = plain.writes[address];
        ASSERT_GT(writes.size(), 20U) << address;
        const auto find_down_from = [&](size_t last, size_t count) {
            for (size_t n = last; n-- > last - count;) {
                const DebugStop stop = after([=] { debugger_back_to_write(address); });
                ASSERT_EQ(place_now(), writes[n]) << n << ": " << stop.text;
            }
        };
        find_down_from(writes.size(), 10);
        const int64_t tenth = writes[10].first;
        after([=] { debugger_to_cycle(tenth); });
        find_down_from(10, 10);
        EXPECT_EQ(after([=] { debugger_back_to_write(address); }).reason, StopReason::failed);
        EXPECT_EQ(place_now(), writes[0]);
        after(debugger_to_present);
        EXPECT_EQ(machine_difference(present, machine_now()), "");
    }
}

TEST_P(Past, BreakpointsStopBackwardsWithTheirConditionsAndCounts) {
    const uint16_t address = 24'000;
    run_plainly();
    const machine_state present = machine_now();
    const auto& writes = plain.writes[address];
    // Counted as if it had been there from the start.
    after([] { debugger_to_frame(0); });
    debugger_command("watch 5DC0 if hits % 7 == 3");
    after(debugger_to_present);
    const auto hits = [] { return breakpoints().back().hits; };
    EXPECT_EQ(hits(), 0U); // the present does not know of it
    after([] { debugger_to_frame(0); });
    for (size_t n = 3; n + 7 <= writes.size() && n < 40; n += 7) {
        const DebugStop stop = after(debugger_go); // stands behind the instruction
        EXPECT_EQ(Place(stop.hit.cycle, stop.hit.pc), writes[n - 1]);
        EXPECT_EQ(hits(), n);
    }
    const size_t last = hits();
    for (size_t n = last; n >= 3; n -= 7) {
        EXPECT_EQ(after(debugger_back_go).reason, StopReason::breakpoint);
        EXPECT_EQ(place_now(), writes[n - 1]);
        EXPECT_EQ(hits(), n - 1); // stands before it
        if (n < 10) break;
    }
    EXPECT_EQ(after(debugger_back_go).reason, StopReason::beginning);
    EXPECT_EQ(hits(), 0U);
    EXPECT_EQ(machine_difference(plain.start, machine_now()), "");
    after(debugger_to_present);
    EXPECT_EQ(machine_difference(present, machine_now()), "");
}

TEST_P(Past, WritesOfTheLastInstructionsOfFramesAreFound) {
    run_plainly();
    std::map<Place, uint16_t> written;
    for (const auto& [address, places] : plain.writes) {
        for (const Place& place : places) written[place] = address;
    }
    int found = 0;
    for (int64_t frame = 2; frame < FRAMES && found < 4; ++frame) {
        int64_t end = 0;
        history_visit(frame, [&] { end = z80_state.t_count; });
        const Place last = *(std::ranges::lower_bound(plain.places, Place(end, 0)) - 1);
        if (!written.contains(last)) continue;
        const uint16_t address = written[last];
        after([=] { debugger_to_frame(frame); });
        after([=] { debugger_back_to_write(address); });
        EXPECT_EQ(place_now(), last) << frame;
        ++found;
    }
    EXPECT_GT(found, 1);
}

// A search runs parts that begin where the history has states, about every second.
TEST_P(Past, HitsAtTheEndsOfFramesCountOnce) {
    const auto command_at = [](int64_t frame, const char* format) {
        Place end;
        history_visit(frame, [&] { end = place_now(); });
        char line[64];
        const auto cycle = static_cast<long long>(end.first);
        std::snprintf(line, sizeof line, format, unsigned(end.second), cycle);
        debugger_command(line);
        return end;
    };
    int found = 0;
    for (const int64_t frame : {1, 49, 50, 51, 99, 100, 101, 149}) {
        after([] { debugger_to_frame(0); });
        for (const int64_t state : {50, 100}) command_at(state, "break %04X count");
        const Place end = command_at(frame, "break %04X if cycle == %lld");
        if (after(debugger_go).reason == StopReason::breakpoint) {
            const std::vector<uint64_t> hits = breakpoint_hits();
            EXPECT_EQ(after(debugger_go).reason, StopReason::present);
            after(debugger_back_go);
            EXPECT_EQ(place_now(), end) << frame;
            EXPECT_EQ(breakpoint_hits(), hits) << frame;
            ++found;
        }
        after(debugger_to_present);
        breakpoints_remove_all(0);
    }
    EXPECT_GT(found, 4);
}

TEST_P(Past, SubroutinesAreSteppedOverAndLeftBackwards) {
    run_plainly();
    int over = 0, out = 0;
    for (size_t n = plain.places.size() - 3000; n-- > 0 && (over < 12 || out < 12);) {
        const auto& [cycle, pc] = plain.places[n];
        const bool calls = memory[pc] == 0xCD && plain.stack[n + 1] + 2 == plain.stack[n];
        if (!calls) continue;
        // Where it returns to.
        size_t end = n + 1;
        while (end < plain.places.size() && plain.stack[end] < plain.stack[n]) ++end;
        if (end >= plain.places.size() || plain.places[end].second != pc + 3) continue;
        const int64_t returned = plain.places[end].first, inside = plain.places[n + 1].first;
        const Place call = plain.places[n];
        after([=] { debugger_to_cycle(returned); });
        after(debugger_back_over);
        EXPECT_EQ(place_now(), call) << over;
        ++over;
        after([=] { debugger_to_cycle(inside); });
        const DebugCall innermost = debugger_calls(1).front();
        EXPECT_EQ(innermost.call, call.second);
        EXPECT_TRUE(innermost.is_traced && innermost.slot == plain.stack[n + 1]);
        after(debugger_back_out);
        EXPECT_EQ(place_now(), call) << out;
        ++out;
        after(debugger_step_over);
        EXPECT_EQ(place_now(), plain.places[end]);
        n -= 500;
    }
    EXPECT_GE(over, 12);
}

TEST_P(Past, GoesOnFromInsideOfAFrame) {
    run_plainly();
    const machine_state present = machine_now();
    const int64_t end = z80_state.t_count;
    const Place middle = plain.places[plain.places.size() / 2];
    // Given up, it is where it was.
    debugger_back_to_write(0);
    debugger_cancel();
    EXPECT_EQ(machine_difference(present, machine_now()), "");
    after([&] { debugger_to_cycle(middle.first); });
    EXPECT_EQ(place_now(), middle);
    debugger_branch();
    EXPECT_FALSE(debugger_is_in_past());
    debugger_to(end);
    EXPECT_EQ(machine_difference(present, machine_now()), "");
    // Other bytes are another future, from there on.
    after([&] { debugger_to_cycle(middle.first); });
    const uint8_t was = memory[0x7001];
    debugger_poke(0x7000, {1, uint8_t(was + 1)});
    const machine_state poked = machine_now();
    debugger_to(end);
    const machine_state other = machine_now();
    after([&] { debugger_to_cycle(middle.first); });
    EXPECT_EQ(machine_difference(poked, machine_now()), "");
    after(debugger_back_step);
    EXPECT_EQ(memory[0x7001], was);
    after(debugger_step);
    EXPECT_EQ(machine_difference(poked, machine_now()), "");
    after(debugger_to_present);
    EXPECT_EQ(machine_difference(other, machine_now()), "");
}

} // namespace
