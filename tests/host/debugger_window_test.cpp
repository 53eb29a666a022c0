#include "host/debugger_window.h"

#include "core/machine_events.h"
#include "core/pacing/pacing.h"
#include "debugger/debugger.h"
#include "debugger/symbols.h"
#include "host/whole_program.h"
#include "z80/z80.h"

#include <filesystem>
#include <iomanip>
#include <sstream>

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
        debugger_symbols().clear();
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
    static std::string hex_of(unsigned number) {
        std::ostringstream text;
        text << std::hex << std::uppercase << std::setw(4) << std::setfill('0') << number;
        return text.str();
    }
    static uint8_t byte(uint16_t address) { return mem_peek(address); }
};

TEST_F(DebuggerWindowTest, AProgramIsStoppedChangedAndLedBack) {
    ASSERT_TRUE(debugger_stands());
    std::filesystem::create_directory("source");
    write_text("source/game.c", "int lives;\n  ++lives;\n");
    click("PC  ");
    type("\r\t"); // what hosts give for the keys as well
    EXPECT_NE(row("pc =  " + hex_of(z80_state.pc)), "");
    answer("6000");
    EXPECT_EQ(z80_state.pc, 0x6000);
    click("Listing");
    press('G', MODIFIER_CONTROL);
    answer("pc + 5");
    debugger_symbols().add_folder("source");
    debugger_symbols().add_line({"game.c", 2}, 0x6005);
    press(KEY_F9);
    EXPECT_EQ(row("6005 34").substr(0, 18), "6005 34          i") << row("6005");

    EXPECT_NE(row("game.c:2  ++lives;"), "");

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

TEST_F(DebuggerWindowTest, BreakpointsWatchesAndMemoryAreEditedByKeysAndMouse) {
    click("Breakpoints");
    press(KEY_INSERT);
    answer("6005 if b == 1"); // behind "break "
    ASSERT_EQ(breakpoints().size(), 1U);
    const std::string number = std::to_string(breakpoints()[0].number);
    EXPECT_NE(row(number + " break 6005 if b == 1  0 hits"), "");
    press(KEY_HOME);
    press(KEY_RETURN);
    press(KEY_BACKSPACE);
    answer("x");
    EXPECT_NE(row("Breakpoint " + number + ":  break 6005 if b == x"), "")
        << "what cannot be stays open";
    press(KEY_BACKSPACE);
    answer("2");
    EXPECT_NE(row(number + " break 6005 if b == 2"), "");
    click("PC  ");
    answer("6000");
    press(KEY_F5);
    EXPECT_EQ(z80_state.bc >> 8, 2);
    EXPECT_NE(row("Breakpoint " + number + ": at 6005"), "");
    click("Breakpoints");
    type(" ");
    press(KEY_F5);
    EXPECT_FALSE(debugger_stands());
    click(" Stop ", 1);
    EXPECT_EQ(z80_state.pc, 0x6008);

    click("Watches");
    press(KEY_INSERT);
    answer("w(6 * 4096)"); // the word at 6000
    EXPECT_NE(row("w(6 * 4096)  33  21  '!'"), "") << "the word at 6000 is 0021";

    click("Memory");
    press('F', MODIFIER_CONTROL);
    answer("34 10 FD");
    EXPECT_NE(row("Found at 6005"), "");
    press('L', MODIFIER_CONTROL);
    answer("6007");
    answer("\"A\" 1");
    EXPECT_EQ(mem_peek(0x6005), 'A');
    EXPECT_EQ(mem_peek(0x6006), 1);
    EXPECT_EQ(mem_peek(0x6007), 'A');
}

TEST_F(DebuggerWindowTest, ItFitsAnySizeAndTheKeysOfTheMainWindowAskBefore) {
    for (const Size cells : {Size{80, 25}, {110, 40}, {200, 80}}) {
        const Size pixels = {cells.width * HEADLESS_CELL.width,
                             cells.height * HEADLESS_CELL.height};
        host->window().debugger = {10, 20, 10 + pixels.width, 20 + pixels.height};
        pane().fill_rectangle({0, 0, 4000, 4000}, 0); // what was there before
        paint_debugger_window();
        const std::vector<std::string> rows = pane().rows();
        EXPECT_EQ(int(rows.size()), cells.height);
        for (const std::string& line : rows) EXPECT_LE(int(line.size()), cells.width) << line;
        for (const char* title :
             {"Registers", "Listing", "Memory", "Stack", "Calls", "Watches", "Breakpoints", "Trace",
              "Picture", "CRTC", "Sound", "Disk", "Ports", "Commands", "Time"}) {
            click(" " + std::string(title), 1);
            EXPECT_NE(pane().message.find(std::string(title) + ":"), std::string::npos) << title;
        }
    }
    command(COMMAND_SOUND); // any other
    const uint16_t pc = z80_state.pc;
    Event reset;
    reset.kind = Event::Kind::key_down;
    reset.value = KEY_F11;
    host->dialogs().answers.assign({1, 0});
    send(reset);
    EXPECT_EQ(z80_state.pc, pc);
    send(reset);
    EXPECT_EQ(z80_state.nmi, 1);
    command(COMMAND_DEBUGGER);
    EXPECT_FALSE(host->window().debugger_open);
    EXPECT_FALSE(debugger_is_on());
    emu_close();
    const std::string settings = read_text(SETTINGS);
    EXPECT_NE(settings.find("DebuggerWidth = 1600"), std::string::npos);
    EXPECT_NE(settings.find("DebuggerTop = 20"), std::string::npos);
}

} // namespace
