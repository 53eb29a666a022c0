#include "cgenie/input.h"
#include "host/examples.h"
#include "host/whole_program.h"
#include "z80/z80.h"

namespace {

constexpr int TYPE_BASIC = 1, OPEN = 2, SYMBOLIC = 4, POSITIONAL = 5, FIRST_EXAMPLE = 100;

class WelcomeTest : public WholeProgramTest {
protected:
    /// Half a second. The form, when it is shown by then.
    HeadlessForm* welcome(const Arguments& arguments = {}, bool in_a_window = true) {
        ShellOptions options;
        options.welcomes = in_a_window;
        start(arguments, options);
        turn(25);
        HeadlessForm* form = host->forms().find("Welcome");
        return form && form->is_open() ? form : nullptr;
    }
    void turn(int frames) {
        for (const int64_t end = z80_state.t_count + int64_t(frames) * 44335;
             z80_state.t_count < end;) {
            host->events().wait(shell_turn().microseconds);
        }
    }
};

TEST_F(WelcomeTest, ComesOnceAndOnlyToSomebodyWhoAsksForNothing) {
    write_text("game.cmd", std::string("\x01\x03\x00\x60\xAA\x02\x02\x00\x60", 9));
    struct {
        std::string settings;
        Arguments line;
        bool in_a_window, shown;
    } const cases[] = {{"", {}, false, false},
                       {"", {"game.cmd"}, true, false},
                       {"", {"none.cmd"}, true, false},
                       {"", {"/h"}, true, false},
                       {"", {"--regs"}, true, false},
                       {"Resume = 1", {}, true, false},
                       {"", {}, true, true},
                       {"WelcomeShown = 1", {}, true, false}};
    for (const auto& c : cases) {
        write_text(SETTINGS, c.settings);
        HeadlessForm* form = welcome(c.line, c.in_a_window);
        EXPECT_EQ(form != nullptr, c.shown) << c.settings << testing::PrintToString(c.line);
        const bool kept = read_text(SETTINGS).find("WelcomeShown = 1") != std::string::npos;
        EXPECT_EQ(kept, c.shown || c.settings.starts_with("Welcome"));
        if (form) form->press_escape();
        EXPECT_FALSE(form && form->is_open());
        emu_close();
    }
}

TEST_F(WelcomeTest, StartsExamplesAndFilesAndSetsTheKeys) {
    program_directory = "bin";
    std::filesystem::create_directory("examples");
    for (const char* name : {"examples/tune.cmd", "game.cmd"}) {
        write_text(name, std::string("\x01\x03\x00\x60\xAA\x02\x02\x00\x60", 9));
    }
    HeadlessForm* form = welcome();
    ASSERT_TRUE(form);
    EXPECT_EQ(form->value(POSITIONAL), 1);
    for (const bool symbolic : {true, false, true}) {
        form->choose(symbolic ? SYMBOLIC : POSITIONAL, 1);
        turn(1);
        EXPECT_EQ(is_menu_item_checked(COMMAND_SYMBOLIC_KEYS), symbolic);
        EXPECT_EQ(input_state.keyboard_mapping, symbolic);
    }
    command(COMMAND_SYMBOLIC_KEYS);
    EXPECT_EQ(form->value(POSITIONAL), 1);
    host->dialogs().choices = {std::nullopt, {{"game.cmd", 0}}};
    form->press(OPEN);
    EXPECT_TRUE(form->is_open());
    form->press(OPEN);
    EXPECT_EQ(z80_state.pc, 0x6000);
    EXPECT_FALSE(form->is_open());
    for (size_t n = 0; n < examples.size(); ++n) {
        const bool installed = examples[n].file == std::string("tune.cmd");
        command(COMMAND_WELCOME);
        form->press(FIRST_EXAMPLE + int(n));
        EXPECT_EQ(form->is_open(), !installed) << n;
        turn(1);
    }
    EXPECT_TRUE(host->status_text(3).ends_with("examples/tune.cmd")) << host->status_text(3);
    command(COMMAND_WELCOME);
    form->press(TYPE_BASIC);
    EXPECT_EQ(host->status_text(3), "Type PRINT \"HELLO\" and press Enter; \" is Shift+2");
    emu_close();
}

} // namespace
