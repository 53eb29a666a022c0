#include "monitor/monitor.h"

#include "cgenie/memory/memory.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "core/machine_state.h"
#include "core/pacing/pacing.h"
#include "host/display.h"
#include "host/menu.h"
#include "host/shell.h"
#include "host/status.h"
#include "host/turn.h"
#include "platform/headless/headless.h"
#include "support/paced_frames.h"
#include "support/program_options.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <optional>

namespace {

constexpr uint16_t CODE = 0x9000;

class Monitor : public testing::Test {
protected:
    static void renew_host() {
        host.emplace(HeadlessOptions{});
        install_platform(*host);
        CreateStatusBar();
        create_menu();
    }
    void SetUp() override {
        renew_host();
        z80_state = {};
        memory_set_startup_pattern(0);
        machine_init();
        init_timers();
        set_screen_params(false, 8);
        reset_program_options();
    }

    static Event wheel(int angle) {
        return {.kind = Event::Kind::pointer,
                .value = angle,
                .text = {},
                .pointer = {.act = Pointer::Act::wheel}};
    }
    static void press(int key) { WindowProcedure({Event::Kind::key_down, key, 0, {}}); }
    static void poke(uint16_t address, const std::vector<int>& bytes) {
        for (const int byte : bytes) memory[address++] = uint8_t(byte);
    }
    /// Of so many cells above the status bar, and a few pixels more. It starts black.
    void size_window(int cols, int rows) {
        host->window().set_fixed_size({});
        const Size outer = host->window().outer_size({cols * 8 + 7, rows * 12 + 11 + 23});
        host->window().move({0, 0, outer.width, outer.height});
        host->pane(PaneId::monitor).texts.clear();
        host->pane(PaneId::monitor).lines.clear();
    }
    std::vector<std::string> shown() {
        std::vector<std::string> rows;
        for (const HeadlessText& text : host->pane(PaneId::monitor).texts) {
            EXPECT_EQ(text.x, 0);
            EXPECT_EQ(text.y, int(rows.size()) * 12);
            EXPECT_EQ(text.colour, 0xFFFFFFu);
            EXPECT_EQ(text.background, 0u);
            rows.push_back(text.text);
        }
        return rows;
    }

    static inline std::optional<HeadlessPlatform> host;
};

TEST_F(Monitor, PagesInEveryWindow) {
    poke(CODE, {0xDD, 0x36, 0xFE, 0x42, 0x18, 0xFE, 0x7D, 0x7E, 0x7F, 0x20, 0x1F});
    z80_state.pc = CODE;
    z80_state.af = 0x1245;
    z80_state.t_count = 7;
    press(KEY_ESCAPE);
    const std::vector<std::string> listing = {
        "AF:1245,BC:0000,DE:0000,HL:0000,IP:9000,R:00|SZ-H-PNC",
        "IX:0000,IY:0000,SP:FFFF,I:00,BP:FFFF(OFF),FL:01000101",
        "TCOUNT:000000000000000000000007",
        " 9000 DD 36 FE 42 ld (ix+feh),42h",
        " 9004 18 FE       jr 9004h",
        " 9006 7D          ld a,l",
        " 9007 7E          ld a,(hl)",
        " 9008 7F          ld a,a",
        " 9009 20 1F       jr nz,902ah",
        " 900B 00          nop",
    };
    memdump_pc = CODE;
    const struct {
        int cols, rows;
        const char* memory_row; ///< the first
    } cases[] = {
        {80, 25, " 9000:  DD 36 FE 42  18 FE 7D 7E  7F 20 1F 00  00 00 00 00 :.6.B..}.. ......"},
        {79, 9, " 9000:  DD 36 FE 42  18 FE 7D 7E  7F 20 1F 00 :.6.B..}.. .."},
        {48, 4, " 9000:  DD 36 FE 42  18 FE 7D 7E :.6.B..}."},
        {32, 3, " 9000:  DD 36 FE 42 :.6.B"},
        {31, 2, " 9000: :"},
        {15, 1, " 9000: :"},
        {80, 0, ""},
        {0, -2, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.cols) + " x " + std::to_string(c.rows));
        const size_t rows = size_t(std::max(c.rows, 0));
        size_window(c.cols, c.rows);
        press(KEY_F1);
        const auto registers = shown();
        ASSERT_EQ(registers.size(), rows);
        for (size_t row = 0; row < std::min(rows, listing.size()); ++row) {
            EXPECT_EQ(registers[row], listing[row]);
        }
        const std::vector<HeadlessFill> line = {{{0, 35, c.cols * 8 + 7, 36}, 0xFFFFFF}};
        EXPECT_EQ(host->pane(PaneId::monitor).lines,
                  c.rows > 3 ? line : std::vector<HeadlessFill>());
        press(KEY_F2);
        const auto bytes = shown();
        ASSERT_EQ(bytes.size(), rows);
        EXPECT_TRUE(host->pane(PaneId::monitor).lines.empty());
        EXPECT_EQ(rows ? bytes[0] : "", c.memory_row);
        EXPECT_TRUE(rows < 25 || bytes[24].starts_with(" 9180:  00 "));
        EXPECT_EQ(host->pane(PaneId::monitor).last_fill.area.bottom, std::max(c.rows * 12 + 11, 0));
    }
    EXPECT_EQ(z80_state.t_count, 7) << "looking takes no time";
    monitor_page = MONITOR_DISASSEMBLY;
    EXPECT_EQ(monitor_page_rows(10, 80), listing);
    EXPECT_TRUE(host->pane(PaneId::monitor).shown);
    press(KEY_ESCAPE);
    EXPECT_FALSE(host->pane(PaneId::monitor).shown);
}

TEST_F(Monitor, Stepping) {
    size_window(80, 25);
    press(KEY_ESCAPE);
    const struct {
        const char* name;
        int from;
        std::vector<int> before; ///< bytes up to `from`
        int above;
    } cases[] = {
        {"no-operations are passed over", 0x9003, {0, 0, 0x01, 0x34, 0x12}, 0x9000},
        {"a prefix belongs to it", 0x9004, {0, 0xDD, 0x21, 0x34, 0x12}, 0x9000},
        {"only the longest candidate", 0x9004, {0x3E, 0x3E, 0x3E, 0x3E, 0x3E}, 0x9002},
        {"nothing ends there", 0x9005, {0x18, 0x3E, 0x18, 0x01, 0x01}, 0x9004},
    };
    for (const auto& c : cases) {
        poke(uint16_t(c.from - int(c.before.size())), c.before);
        local_pc = uint16_t(c.from);
        press(KEY_UP);
        EXPECT_EQ(local_pc, c.above) << c.name;
        EXPECT_EQ(shown()[3].substr(1, 4), [&] {
            char text[8];
            std::snprintf(text, sizeof text, "%04X", unsigned(c.above));
            return std::string(text);
        }()) << c.name;
    }
    local_pc = 0;
    press(KEY_UP); // open bus: RST 38 in every byte
    EXPECT_EQ(local_pc, 0xFFFF);
    press(KEY_DOWN);
    EXPECT_EQ(local_pc, 0);

    const struct {
        Event event;
        int moved; ///< instructions or rows
    } moves[] = {{{Event::Kind::key_down, KEY_PAGE_DOWN, 0, {}}, 25},
                 {{Event::Kind::key_down, KEY_PAGE_UP, 0, {}}, -25},
                 {wheel(-120), 2},
                 {wheel(-360), 6},
                 {wheel(239), -2},
                 {wheel(-119), 0}};
    for (const int page : {0, 1}) {
        press(page ? KEY_F2 : KEY_F1);
        for (const auto& move : moves) {
            poke(0xA000, std::vector<int>(0x100, 0x76)); // one byte each
            local_pc = 0xA080;
            memdump_pc = 0x0080;
            WindowProcedure(move.event);
            EXPECT_EQ(*local_pc, 0xA080 + (page ? 0 : move.moved)) << move.event.value;
            EXPECT_EQ(memdump_pc, uint16_t(0x80 + (page ? 16 * move.moved : 0)));
        }
    }
    memdump_pc = 0;
    press(KEY_UP);
    EXPECT_TRUE(shown()[0].starts_with(" FFF0:"));
    EXPECT_TRUE(shown()[1].starts_with(" 0000:"));
}

TEST_F(Monitor, DialogForTheBreakpoint) {
    const struct {
        const char* typed;
        const char* corrected; ///< null: nothing was wrong
        int breakpoint;        ///< -1 cancelled
    } cases[] = {{"60", nullptr, 0x60},
                 {"12345", nullptr, 0x1234},
                 {"AbCd", nullptr, 0xABCD},
                 {"zz", "0", 0},
                 {"", "fFfF", 0xFFFF},
                 {"0x6", "6", 6},
                 {"-1", "7", 7},
                 {" 8", "8", 8},
                 {"9 ", "9", 9},
                 {nullptr, nullptr, -1}};
    press(KEY_ESCAPE);
    auto& acts = host->forms().acts;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed ? c.typed : "cancelled");
        const z80_record before = z80_state;
        host->dialogs().messages.clear();
        acts.push_back([&](HeadlessForm& form) {
            EXPECT_EQ(form.description.title, "Set breakpoint");
            EXPECT_EQ(form.description.controls[0].text, "Set breakpoint to address:");
            if (c.typed) form.type(3, c.typed);
            c.typed ? form.press_enter() : form.press_escape();
        });
        if (c.corrected) {
            acts.push_back([&](HeadlessForm& form) {
                EXPECT_EQ(form.text(3), c.typed) << "as it was";
                form.type(3, c.corrected);
                form.press(1);
            });
        }
        press(KEY_F3);
        EXPECT_TRUE(acts.empty());
        EXPECT_EQ(host->dialogs().messages.size(), c.corrected ? 1u : 0u);
        if (c.breakpoint < 0) {
            EXPECT_EQ(z80_state.breakpoint, before.breakpoint);
            EXPECT_EQ(z80_state.breakpoint_enabled, before.breakpoint_enabled);
        } else {
            EXPECT_EQ(z80_state.breakpoint, c.breakpoint);
            EXPECT_EQ(z80_state.breakpoint_enabled, 1);
        }
    }
    press(KEY_ESCAPE);
    press(KEY_F3); // the machine's key
    EXPECT_EQ(host->forms().forms.size(), 0u);
}

// ---- a breakpoint that is reached --------------------------------------------------------------

enum class Way { unarmed, run_on, step_on };

class Breakpoint : public Monitor {
protected:
    /// Six frames; at the breakpoint the user looks, and goes on. Returns the stops.
    static int run(const machine_state& from, Way way, uint16_t breakpoint, machine_state& end) {
        constexpr int MOST_STOPS = 30;
        renew_host();
        machine_load(from);
        z80_state.breakpoint = breakpoint;
        z80_state.breakpoint_enabled = way != Way::unarmed;
        z80_state.stood_on_breakpoint = 0;
        event_shutdown_timout = z80_state.t_count + 6 * 44335 - 1000;
        int stops = 0;
        while (!host->quit_posted()) {
            if (machine_run()) {
                run_timed_events();
                continue;
            }
            if (++stops == MOST_STOPS) press(KEY_F4); // the listing begins at the breakpoint
            const bool as_promised = g_bDebug && host->title() == "Tarvelin - (Monitor)" &&
                                     z80_state.pc == breakpoint && local_pc == breakpoint &&
                                     monitor_page == MONITOR_DISASSEMBLY;
            if (!as_promised) return -1;
            for (int n = 0; way == Way::step_on && n < 3 && !host->quit_posted(); ++n) {
                press(KEY_RETURN);
            }
            press(KEY_F2);
            if (!host->quit_posted()) press(KEY_ESCAPE);
        }
        g_bDebug = false;
        update_screen(1);
        machine_save(end);
        return stops;
    }
};

TEST_F(Breakpoint, PassedItChangesNothing) {
    const struct {
        const char* name;
        std::vector<int> code;
        int breakpoint;
        int fewest, most; ///< stops in six frames
    } cases[] = {
        // At its start the sign-on waits in a loop at 0060 for a while.
        {"in ROM", {0xC3, 0x00, 0x00}, 0x0000, 1, 1},
        {"in a loop in ROM", {0x01, 0x00, 0x40, 0xCD, 0x60, 0x00, 0x18, 0xF8}, 0x0060, 30, 30},
        // Counts every cell of the picture up: a pass takes about a frame.
        {"in RAM",
         {0x21, 0x00, 0x44, 0x34, 0x23, 0x7C, 0xFE, 0x48, 0x20, 0xF9, 0x18, 0xF4},
         0x9000,
         4,
         8},
        // Mode 2, vector at 91FF: the handler at 9300 is INC E, EI, RETI.
        {"interrupt", {0x3E, 0x91, 0xED, 0x47, 0xED, 0x5E, 0xFB, 0x18, 0xFE}, 0x9300, 30, 30},
        // LDIR of 1022 bytes over the picture: 2 x 22000 cycles in a frame, a stop for each.
        {"repeating block",
         {0xED, 0x5F, 0x32, 0x00, 0x44, 0x21, 0x00, 0x44, 0x11, 0x01, 0x44, 0x01, 0xFE, 0x03, 0xED,
          0xB0, 0x18, 0xEE},
         0x900E,
         9,
         13},
        {"HALT", {0x76}, 0x9000, 1, 1},
    };
    do_some_frames(50);
    for (const bool beam : {false, true}) {
        g_bCycleBasedEngine = beam;
        do_some_frames(3);
        for (const auto& c : cases) {
            SCOPED_TRACE(std::string(c.name) + (beam ? ", beam engine" : ""));
            poke(CODE, c.code);
            poke(0x91FF, {0x00, 0x93});
            poke(0x9300, {0x1C, 0xFB, 0xED, 0x4D});
            z80_state.pc = CODE;
            z80_state.irq = std::string(c.name) == "interrupt";
            machine_state before, plain, passed;
            machine_save(before);
            EXPECT_EQ(run(before, Way::unarmed, uint16_t(c.breakpoint), plain), 0);
            for (const Way way : {Way::run_on, Way::step_on}) {
                const int stops = run(before, way, uint16_t(c.breakpoint), passed);
                EXPECT_EQ(machine_difference(plain, passed), "") << int(way);
                EXPECT_GE(stops, c.fewest) << int(way);
                EXPECT_LE(stops, c.most) << int(way);
            }
        }
    }
}

TEST_F(Breakpoint, WhereNobodyLooksTheMachineGoesOn) {
    poke(CODE, {0x00, 0x00, 0xC3, 0x00, 0x90});
    z80_state.pc = CODE;
    z80_cpu_set_breakpoint(CODE + 1);
    shell_state.start.unattended = true;
    do_some_frames(2);
    EXPECT_NEAR(double(z80_state.t_count), 2 * 44335, 40);
    EXPECT_FALSE(g_bDebug);
}

TEST_F(Breakpoint, StopsPausedFramesAndThePacedOnes) {
    poke(CODE, std::vector<int>(0x2000, 0)); // 5 cycles each
    poke(0xB000, {0xC3, 0x00, 0xB0});
    z80_state.pc = CODE;
    z80_cpu_set_breakpoint(CODE + 100);
    press(KEY_PAUSE);
    press(KEY_PAGE_DOWN);
    EXPECT_EQ(z80_state.t_count, 500);
    EXPECT_TRUE(g_bDebug);
    press(KEY_ESCAPE);
    EXPECT_EQ(host->title(), "Tarvelin - (Suspended)");
    press(KEY_PAGE_DOWN);
    EXPECT_NEAR(double(z80_state.t_count), 44335, 20) << "the rest of the frame";

    z80_state.pc = 0xA000; // something else than an instruction leads to the breakpoint
    z80_cpu_set_breakpoint(0xA000);
    const int32_t ticks = pacing.ticks;
    run_paced_frame();
    EXPECT_EQ(z80_state.pc, 0xA000);
    EXPECT_TRUE(g_bDebug);
    EXPECT_EQ(pacing.ticks, ticks);
    press(KEY_ESCAPE);
    run_paced_frame();
    EXPECT_NE(z80_state.pc, 0xA000);
    EXPECT_EQ(pacing.ticks, ticks + 1);

    press(KEY_ESCAPE); // set where the processor stands, it is for the next time
    debug();
    press(KEY_F4);
    EXPECT_EQ(z80_state.breakpoint_enabled, 1);
    press(KEY_ESCAPE);
    z80_state.pc = local_pc.value();
    EXPECT_EQ(machine_run(), 1);
}

} // namespace
