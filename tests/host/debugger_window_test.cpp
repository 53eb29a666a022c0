#include "host/debugger_window.h"

#include "core/machine_events.h"
#include "core/pacing/pacing.h"
#include "debugger/debugger.h"
#include "host/whole_program.h"
#include "z80/z80.h"

namespace {

/// Adds to 6400 three times, and stays at 6008.
constexpr uint8_t PROGRAM[] = {0x21, 0x00, 0x64, 0x06, 0x03, 0x34, 0x10, 0xFD, 0x18, 0xFE};

class DebuggerWindowTest : public WholeProgramTest {
protected:
    void SetUp() override {
        WholeProgramTest::SetUp();
        ShellOptions options;
        options.keep_history = true;
        start({}, options);
        turns(200);
        command(COMMAND_DEBUGGER);
        press(KEY_F6);
        debugger_poke(0x6000, {PROGRAM, std::end(PROGRAM)});
        debugger_poke(0x6400, {0x40});
    }
    void TearDown() override {
        end_debugger_window();
        breakpoints_remove_all(0);
        WholeProgramTest::TearDown();
    }

    void turns(int64_t milliseconds) {
        for (const int64_t end = host->slept_ms() + milliseconds; host->slept_ms() < end;) {
            const ShellTurn turn = shell_turn();
            if (turn.next == ShellTurn::Next::on_event) return;
            if (turn.microseconds) host->events().wait(turn.microseconds);
        }
    }
    void send(Event event) {
        host->push_event(event);
        turns(300);
    }
    void press(int key, uint8_t modifiers = 0) {
        Event event;
        event.kind = Event::Kind::key_down;
        event.value = key;
        event.modifiers = modifiers;
        event.pane = PaneId::debugger;
        send(event);
    }
    void type(const std::string& text) {
        for (const char c : text) {
            Event event;
            event.kind = Event::Kind::text;
            event.text = c;
            event.pane = PaneId::debugger;
            send(event);
        }
    }
    void answer(const std::string& text) {
        type(text);
        press(KEY_RETURN);
    }
    /// The row that has the text, from there on; empty without one.
    std::string row(const std::string& text) {
        for (const std::string& line : pane().rows()) {
            if (line.find(text) != std::string::npos) return line.substr(line.find(text));
        }
        return {};
    }
    void click(const std::string& text, int column = 0) {
        const auto rows = pane().rows();
        for (size_t n = 0; n < rows.size(); ++n) {
            const size_t at = rows[n].find(text);
            if (at == std::string::npos) continue;
            Event event;
            event.kind = Event::Kind::pointer;
            event.pointer = {.act = Pointer::Act::press,
                             .pane = PaneId::debugger,
                             .x = (int(at) + column) * HEADLESS_CELL.width,
                             .y = int(n) * HEADLESS_CELL.height,
                             .button = BUTTON_LEFT};
            return send(event);
        }
        ADD_FAILURE() << "nowhere: " << text;
    }
    HeadlessPane& pane() { return host->pane(PaneId::debugger); }
    static uint8_t byte(uint16_t address) { return mem_peek(address); }
};

TEST_F(DebuggerWindowTest, AProgramIsStoppedChangedAndLedBack) {
    ASSERT_TRUE(debugger_stands());
    click("PC  ");
    answer("6000");
    EXPECT_EQ(z80_state.pc, 0x6000);
    click("Listing");
    press('G', MODIFIER_CONTROL);
    answer("pc + 5");
    press(KEY_F9);
    EXPECT_EQ(row("6005 34").substr(0, 18), "6005 34          i") << row("6005");

    press(KEY_F5);
    EXPECT_NE(row("Breakpoint 1"), "") << row("at 600");
    EXPECT_NE(row("BC 03"), "");
    press(KEY_F5);
    press(KEY_F5);
    EXPECT_EQ(z80_state.bc >> 8, 1);
    EXPECT_EQ(byte(0x6400), 0x42);
    press(KEY_F11);
    press(KEY_F10);
    press(KEY_F10);
    EXPECT_EQ(z80_state.pc, 0x6008);

    press(KEY_F11, MODIFIER_SHIFT);
    press(KEY_F11, MODIFIER_SHIFT);
    press(KEY_F11, MODIFIER_SHIFT);
    EXPECT_EQ(z80_state.pc, 0x6005);
    EXPECT_NE(row(" PAST "), "");
    press(KEY_F5, MODIFIER_SHIFT);
    EXPECT_EQ(z80_state.bc >> 8, 2);
    press(KEY_F5, MODIFIER_CONTROL);
    EXPECT_EQ(z80_state.pc, 0x6008);
    EXPECT_EQ(row(" PAST "), "");

    click("Memory");
    type("g");
    answer("6400");
    EXPECT_EQ(row("6400 43").substr(0, 7), "6400 43");
    press(KEY_F9, MODIFIER_SHIFT);
    EXPECT_EQ(z80_state.pc, 0x6005);
    EXPECT_EQ(byte(0x6400), 0x42);
    type("7");
    EXPECT_NE(row("y/n"), "");
    type("n");
    EXPECT_EQ(byte(0x6400), 0x42);
    type("7yF");
    EXPECT_EQ(byte(0x6400), 0x7F);
    EXPECT_FALSE(debugger_is_in_past());
}

} // namespace
