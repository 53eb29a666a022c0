#include "cgenie/input.h"
#include "host/examples.h"
#include "host/loaded_program.h"
#include "host/whole_program.h"
#include "z80/z80.h"

namespace {

constexpr int TYPE_BASIC = 1, OPEN = 2, KEYS = 3, SYMBOLIC = 4, POSITIONAL = 5, FIRST_EXAMPLE = 100;

class WelcomeTest : public WholeProgramTest {
protected:
    /// The form, when it is open after half a second.
    HeadlessForm* welcome(const std::string& settings, const Arguments& line, bool wanted) {
        write_text(SETTINGS, settings);
        ShellOptions options;
        options.welcomes = options.resumes = wanted;
        start(line, options);
        turn(25);
        HeadlessForm* form = host->forms().find("Welcome");
        return form && form->is_open() ? form : nullptr;
    }
    void turn(int frames) {
        const int64_t end = z80_state.t_count + int64_t(frames) * 44335;
        while (z80_state.t_count < end) host->events().wait(shell_turn().microseconds);
    }
};

TEST_F(WelcomeTest, ComesOnceToSomebodyWhoAsksForNothingAndStartsWhatIsChosen) {
    const std::string game("\x01\x03\x00\x60\xAA\x02\x02\x00\x60", 9);
    for (const char* name : {"examples/tune.cmd", "game.cmd"}) write_text(name, game);
    program_directory = "bin";
    const std::string state = "data/states/resume.tvs";
    std::filesystem::create_directories("data/states");
    write_text(state, "of the last run");
    EXPECT_FALSE(welcome("", {}, false));
    emu_close();
    for (const char* settings : {"Resume = 1", "WelcomeShown = 1"}) {
        EXPECT_FALSE(welcome(settings, {}, true)) << settings;
        emu_close();
    }
    for (const char* argument : {"game.cmd", "/h"}) {
        EXPECT_FALSE(welcome("", {argument}, true)) << argument;
        emu_close();
    }
    std::filesystem::remove(state);
    HeadlessForm* form = welcome("Resume = 1", {}, true);
    ASSERT_TRUE(form);
    EXPECT_NE(read_text(SETTINGS).find("WelcomeShown = 1"), std::string::npos);
    EXPECT_EQ(form->value(SYMBOLIC), 1) << "recommended";
    EXPECT_FALSE(is_menu_item_checked(COMMAND_SYMBOLIC_KEYS)) << "and not yet answered";
    form->press(TYPE_BASIC);
    turn(1);
    EXPECT_EQ(host->status_text(3), "Type PRINT \"HELLO\" and press Enter");
    EXPECT_TRUE(is_menu_item_checked(COMMAND_SYMBOLIC_KEYS));
    command(COMMAND_WELCOME);
    for (const bool symbolic : {false, true}) {
        form->choose(symbolic ? SYMBOLIC : POSITIONAL, 1);
        turn(1);
        EXPECT_EQ(is_menu_item_checked(COMMAND_SYMBOLIC_KEYS), symbolic);
        EXPECT_EQ(input_state.keyboard_mapping, symbolic);
    }
    command(COMMAND_SYMBOLIC_KEYS);
    EXPECT_EQ(form->value(POSITIONAL), 1);
    host->dialogs().choices = {std::nullopt, {{"game.cmd", 0}}};
    for (const bool cancelled : {true, false}) {
        form->press(OPEN);
        EXPECT_EQ(form->is_open(), cancelled);
    }
    EXPECT_EQ(z80_state.pc, 0x6000);
    for (size_t n = 0; n < examples.size(); ++n) {
        command(COMMAND_WELCOME);
        form->press(FIRST_EXAMPLE + int(n));
        EXPECT_EQ(form->is_open(), examples[n].file != std::string("tune.cmd")) << n;
        turn(1);
    }
    EXPECT_TRUE(host->status_text(3).ends_with("examples/tune.cmd")) << host->status_text(3);
    form->press(KEYS);
    EXPECT_FALSE(form->is_open());
    turn(1);
    command(COMMAND_WELCOME);
    host->dialogs().answers = {0};
    form->press(TYPE_BASIC);
    turn(1);
    EXPECT_EQ(loaded_program().name, "") << "switched off and on";
    EXPECT_EQ(host->status_text(3), "Type PRINT \"HELLO\" and press Enter; \" is Shift+2");
    emu_close();
}

} // namespace
