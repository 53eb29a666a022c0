#include "debugger/debugger.h"

#include "cgenie/crtc.h"
#include "cgenie/memory/memory.h"
#include "cgenie/video_beam.h"
#include "core/machine.h"
#include "core/machine_events.h"
#include "core/machine_state.h"
#include "debugger/commands.h"
#include "time/event_feed.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string_view>

namespace {

constexpr uint16_t PROGRAM = 0x5000;
constexpr uint8_t program[] = {
    0x31, 0x00, 0x60, 0x21, 0x00, 0x55, 0x11, 0x00, 0x56, // 5000 LD SP,6000, HL,5500, DE,5600
    0x01, 0x04, 0x00, 0xED, 0xB0, 0xCD, 0x20, 0x50,       // 5009 LD BC,4; LDIR; CALL 5020
    0x3E, 0x2A, 0x32, 0x00, 0x57, 0x3A, 0x00, 0x57,       // 5011 LD A,2A, (5700),A, A,(5700)
    0xD3, 0x10, 0xDB, 0x11, 0xC3, 0x00, 0x50,             // 5019 OUT (10),A; IN A,(11); JP 5000
    0xC5, 0xCD, 0x26, 0x50, 0xC1, 0xC9,                   // 5020 PUSH BC; CALL 5026; POP BC; RET
    0x04, 0xC9, 0xFB, 0x76, 0x18, 0xFD,                   // 5026 INC B; RET; EI; HALT; JR 5029
};

/// With the line engine and with the beam engine.
class DebuggedMachine : public testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        machine_host = machine_without_host();
        machine_init();
        g_bCycleBasedEngine = GetParam();
        for (int n = 0; n < 60; ++n) machine_run(); // the firmware has programmed the controller
        std::ranges::copy(program, memory + PROGRAM);
        std::ranges::copy("\1\2\3\4", memory + 0x5500);
        z80_state.pc = PROGRAM;
        z80_state.iff1 = 0;
        debugger_start({.log = [this](const std::string& line) { log += line + ";"; }});
        debugger_stop();
    }
    void TearDown() override {
        breakpoints_remove_all(0);
        debugger_end();
    }

    void command(const std::string& line) {
        const CommandResult result = debugger_command(line);
        EXPECT_FALSE(result.failed) << line << ": " << result.text;
    }
    /// "PC: why" when the machine stands.
    std::string stop() {
        int frames = 0;
        const auto run_frame = [] {
            if (machine_run() == MACHINE_FRAME) debugger_frame_ran();
        };
        const bool stands = debugger_wait(run_frame, [&] { return ++frames < 200; });
        char pc[8];
        std::snprintf(pc, sizeof pc, "%04X", z80_state.pc);
        const std::string why = debugger_last_stop().text;
        return stands ? pc + (why.empty() ? "" : ": " + why) : "runs";
    }
    std::string after(void (*act)()) {
        act();
        return stop();
    }

    std::string log;
};
INSTANTIATE_TEST_SUITE_P(Engines, DebuggedMachine, testing::Bool());

TEST_P(DebuggedMachine, StopsWhereABreakpointIsHit) {
    const struct {
        const char* breakpoint;
        const char* stop;
    } cases[] = {
        {"break 5011", "5011: Breakpoint N: at 5011"},
        {"break 500C if bc == 4", "500C: Breakpoint N: at 500C"}, // LDIR, once
        {"break 5020-5027 if hits == 5", "5024: Breakpoint N: at 5024"},
        {"watch 5602-5603", "500C: Breakpoint N: write of 03h to 5602, where 00h was, by 500C"},
        {"watch read 5600-57FF", "5019: Breakpoint N: read of 2Ah from 5700, by 5016"},
        {"watch access 5700 if value != before",
         "5016: Breakpoint N: write of 2Ah to 5700, where 00h was, by 5013"},
        {"watch read 5FFE-5FFF if value == 0x11",
         "5011: Breakpoint N: read of 11h from 5FFE, by 5025"},
        {"break port write 10", "501B: Breakpoint N: write of 2Ah to port 10, by 5019"},
        {"break port read 00-FF", "501D: Breakpoint N: read of FFh from port 11, by 501B"},
        {"watch read 5000-5027", "runs"}, // fetches are no reads
    };
    for (const auto& [breakpoint, wanted] : cases) {
        SCOPED_TRACE(breakpoint);
        z80_state.pc = PROGRAM;
        std::fill_n(memory + 0x5600, 0x101, uint8_t(0));
        debugger_turn();
        command(breakpoint);
        std::string expected = wanted;
        const size_t n = expected.find('N');
        const std::string number = std::to_string(breakpoints().back().number);
        if (n != std::string::npos) expected.replace(n, 1, number);
        EXPECT_EQ(after(debugger_go), expected);
        debugger_stop();
        breakpoints_remove_all(0);
    }
}

TEST_P(DebuggedMachine, StepsOverAndOut) {
    const auto to_5021 = [] { debugger_run_to(0x5021); };
    const auto to_5026 = [] { debugger_run_to(0x5026); };
    const auto to_halt = [] { debugger_set_register("pc", 0x5028); };
    const auto interrupt = [] { z80_state.irq = z80_state.interrupt_mode = 1; };
    const std::pair<void (*)(), const char*> steps[] = {
        {debugger_step, "5003"},
        {debugger_step, "5006"},
        {debugger_step, "5009"},
        {debugger_step, "500C"},
        {debugger_step, "500C"},
        {debugger_step_over, "500E"},
        {debugger_step_over, "5011"},
        {to_5021, "5021"},
        {debugger_step_over, "5024"}, // and not where the stack is as short as it was
        {to_5021, "5021"},
        {debugger_step_out, "5011"},
        {to_5026, "5026"},
        {debugger_step_out, "5024"},
        {to_halt, "5028"},
        {debugger_step, "5029"},
        {debugger_step, "5029"},
        {interrupt, "5029"},
        {debugger_step_over, "0038"},
    };
    for (const auto& [act, pc] : steps) EXPECT_EQ(after(act), pc);
}

/// In the ROM, on HALT, and at times.
TEST_P(DebuggedMachine, StopsAtInterruptsAndTimes) {
    const auto stops_at = [&](const std::string& line, const std::string& wanted) {
        breakpoints_remove_all(0);
        command(line);
        std::string stopped = after(debugger_go);
        const std::string name = "Breakpoint " + std::to_string(breakpoints().back().number);
        const size_t n = stopped.find(name);
        if (n != std::string::npos) stopped.replace(n, name.size() + 2, "");
        EXPECT_EQ(stopped, wanted) << line;
        debugger_stop();
    };
    const auto halt = [&](int irq) {
        debugger_set_register("pc", 0x5028);
        z80_state.irq = irq;
        z80_state.interrupt_mode = 1;
    };
    halt(0);
    stops_at("break 5029", "5029: at 5029");
    stops_at("break 5029-502B", "runs"); // it was there already
    EXPECT_EQ(breakpoints().back().hits, 0U);
    z80_state.irq = 1;
    stops_at("break 0038", "0038: at 0038");
    halt(1);
    stops_at("break interrupt", "0038: interrupt to 0038, behind 5029");
    z80_state.irq = 0;
    debugger_set_register("pc", PROGRAM);
    machine_apply(event_kind::reset);
    stops_at("break interrupt", "0066: interrupt to 0066, behind 5000");

    debugger_set_register("pc", PROGRAM);
    const int64_t cycle = z80_state.t_count + 100'000;
    breakpoints_remove_all(0);
    command("break cycle " + std::to_string(cycle) + " once");
    after(debugger_go);
    EXPECT_EQ(breakpoints().size(), 0U);
    EXPECT_GE(z80_state.t_count, cycle);
    EXPECT_LT(z80_state.t_count, cycle + 30);
    for (const int line : {0, 100, 250, 100}) {
        breakpoints_remove_all(0);
        command("break line " + std::to_string(line));
        const int64_t before = z80_state.t_count;
        EXPECT_NE(after(debugger_go).find(": line "), std::string::npos);
        EXPECT_EQ(debugger_raster_line(), line);
        EXPECT_LE(z80_state.t_count, before + frame_budget() + 30);
        const int64_t first = z80_state.t_count;
        after(debugger_go);
        const int since_sync = beam_state.column + 71 - int(crtc.horizontal_sync_position);
        if (GetParam() && line) { // it has just begun
            EXPECT_LE(since_sync % 71, 15 + 12) << line;
        }
        // The beam's picture has a few lines less than the frame has time for.
        EXPECT_NEAR(double(z80_state.t_count - first), frame_budget(), GetParam() ? 700 : 40);
    }
    breakpoints_remove_all(0);
    command("break 5013 log \"{a:x} {hits}\"");
    command("break 5016 count");
    command("break 5013 if [hits] == 3");
    after(debugger_go);
    EXPECT_EQ(log, "2A 1;2A 2;2A 3;");
    EXPECT_EQ(breakpoints()[1].hits, 2U);
}

/// Firmware and BASIC at work, with keys, sound, an NMI and interrupts; every hundredth frame a
/// state, and the log of all events.
struct BusyRun {
    std::vector<machine_state> states;
    std::vector<machine_event> events;
};
BusyRun run_busily(const machine_state& start, const std::function<void()>& arm) {
    constexpr int FRAMES = 1500;
    constexpr std::string_view TYPED =
        "\r10 FOR I=1 TO 999:PRINT I;SIN(I);:SOUND 1,4,I AND 15:COLOUR I AND 7:NEXT\rRUN\r";
    machine_load(start);
    BusyRun run;
    const int reader = event_feed_add([&run](std::span<const machine_event> events) {
        run.events.insert(run.events.end(), events.begin(), events.end());
    });
    arm();
    for (int frame = 0; frame < FRAMES; ++frame) {
        if (frame == 100) {
            machine_apply(event_kind::typing_trap);
            machine_apply(event_kind::type_text, 0, 0, shared_bytes({TYPED.begin(), TYPED.end()}));
        }
        if (frame == 1100) machine_apply(event_kind::reset);
        if (frame == 1200) { // IM 2; EI; HALT; INC (HL); JR to HALT
            machine_apply(event_kind::poke, 0x5000, 0,
                          shared_bytes({0xED, 0x5E, 0xFB, 0x76, 0x34, 0x18, 0xFC}));
            machine_apply(event_kind::poke, 0x41FF, 0, shared_bytes({0x02, 0x50}));
            z80_registers registers = z80_state;
            registers.hl = 0x4400;
            registers.i = 0x41;
            machine_apply(event_kind::registers, 0, 0, bytes_of(registers));
            machine_apply(event_kind::go_to, 0x5000);
        }
        if (frame > 1200) z80_state.irq = frame % 3 == 0;
        while (machine_run() == MACHINE_STANDS) continue;
        event_feed_frame();
        if (frame % 100 == 99) machine_save(run.states.emplace_back());
    }
    event_feed_remove(reader);
    return run;
}

TEST_P(DebuggedMachine, RunsTheSameWhateverItLooksOutFor) {
    static int hits = 0;
    static bool stands = false;
    debugger_end();
    machine_restart();
    machine_state start;
    machine_save(start);
    const BusyRun plain = run_busily(start, [] {});
    const auto arm = [] {
        hits = 0;
        debugger_start({});
        for (const char* const line :
             {"break 0000-3FFF if hits % 3 == 4", "watch 4400-47FF count",
              "watch read 4000-40FF count", "break port 00-FF if value > 255",
              "break line 100 count", "break 5004 count", stands ? "break interrupt count" : ""}) {
            EXPECT_FALSE(debugger_command(line).failed) << line;
        }
        static int (*debuggers)() = nullptr;
        debuggers = machine_host.watch_hit;
        machine_host.watch_hit = [] {
            ++hits;
            EXPECT_EQ(debuggers(), 0);
            return stands && hits % 7 == 0 ? 1 : 0;
        };
    };
    for (const bool stops : {false, true}) {
        stands = stops;
        const BusyRun watched = run_busily(start, arm);
        for (size_t n = 0; n < plain.states.size(); ++n) {
            ASSERT_EQ(machine_difference(plain.states[n], watched.states[n]), "") << n;
        }
        const auto is_same = [](const machine_event& a, const machine_event& b) {
            return a.kind == b.kind && a.a == b.a && a.cycle == b.cycle && a.bytes == b.bytes &&
                   (is_answer(a.kind) || a.pc == b.pc); // else inside of a run
        };
        EXPECT_TRUE(std::ranges::equal(plain.events, watched.events, is_same));
        EXPECT_GT(hits, 1000000);
        breakpoints_remove_all(0);
        debugger_end();
    }
}

} // namespace
