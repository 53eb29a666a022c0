#include "cgenie/memory/memory.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "host/replays.h"
#include "host/shell_state.h"
#include "host/whole_program.h"

namespace {

class MemoryQuestionTest : public WholeProgramTest {};

TEST_F(MemoryQuestionTest, AnswersItselfInAWindowWhenNobodyDoes) {
    struct {
        std::string settings;
        bool window;
        uint8_t key; ///< pressed a second after the start
        int frame;   ///< by which the prompt is there; 0: it is not in ten seconds
    } const cases[] = {{"", true, KEY_NONE, 120},
                       {"AskMemorySize = 1", true, KEY_NONE, 0},
                       {"", false, KEY_NONE, 0},
                       {"", true, KEY_SHIFT, 170}, // no character: the question stays as it was
                       {"", true, 'A', 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.settings + std::to_string(c.key) + std::to_string(c.window));
        write_text(SETTINGS, c.settings);
        ShellOptions options;
        options.answers_memory_question = c.window;
        frame_state.begun = c.key == KEY_SHIFT; // by a step in the monitor, say
        start({"--record", "run.tvr"}, options);
        for (const bool restarted : {false, true}) {
            run_frames(50);
            if (c.key != KEY_NONE) host->set_key(c.key, true);
            run_frames(2);
            if (c.key != KEY_NONE) host->set_key(c.key, false);
            int frame = 52;
            for (; frame < 500 && !machine_run_now.prompt_reached; ++frame) run_frames(1);
            EXPECT_TRUE(c.frame ? frame > 90 && frame <= c.frame : frame == 500) << frame;
            if (!restarted) command(COMMAND_RESTART);
        }
        emu_close();
        start({"--replay", "run.tvr"});
        while (replay_plays()) run_frames(1);
        EXPECT_EQ(bool(machine_run_now.prompt_reached), c.frame != 0);
        emu_close();
    }
}

} // namespace
