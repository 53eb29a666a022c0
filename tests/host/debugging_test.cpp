#include "host/debugging.h"

#include "core/pacing/pacing.h"
#include "debugger/commands.h"
#include "debugger/debugger.h"
#include "host/commands.h"
#include "host/replays.h"
#include "host/status.h"
#include "host/whole_program.h"
#include "time/history.h"
#include "z80/z80.h"

namespace {

class DebuggingTest : public WholeProgramTest {
protected:
    void start() {
        WholeProgramTest::start();
        user = debugging_begin();
        turns(1000);
    }
    void TearDown() override {
        breakpoints_remove_all(0);
        debugging_end_all();
        frames_ahead = 0;
        WholeProgramTest::TearDown();
    }
    /// How many cycles the machine has run in the time.
    int64_t turns(int64_t milliseconds) {
        const int64_t before = z80_state.t_count;
        for (const int64_t end = host->slept_ms() + milliseconds; host->slept_ms() < end;) {
            const ShellTurn turn = shell_turn();
            if (turn.next == ShellTurn::Next::on_event) break;
            if (turn.microseconds) host->events().wait(turn.microseconds);
        }
        return z80_state.t_count - before;
    }
    int user = 0;
};

TEST_F(DebuggingTest, TheMachineStandsWhateverElseHoldsIt) {
    start();
    EXPECT_GT(turns(100), 100'000);
    EXPECT_TRUE(history_is_kept()) << "whatever the option says";
    debugger_stop();
    EXPECT_EQ(turns(100), 0);
    for (const int command : {COMMAND_PAUSE, COMMAND_MONITOR}) {
        handle_command(command);
        handle_command(command);
        EXPECT_EQ(turns(100), 0) << command;
        handle_command(command);
        debugger_go();
        EXPECT_EQ(turns(100), 0) << command;
        handle_command(command);
        EXPECT_GT(turns(100), 100'000) << command;
        debugger_stop();
    }
    do_some_frames(1); // by somebody else
    turns(1);
    EXPECT_EQ(debugger_last_stop().reason, StopReason::another);
    debugging_end(user);
    EXPECT_FALSE(history_is_kept());
    EXPECT_GT(turns(100), 100'000);
}

TEST_F(DebuggingTest, FramesAheadHitNothing) {
    start();
    debugger_command("break line 100 count");
    frames_ahead = 2;
    const int64_t frame = history_position();
    turns(1000);
    EXPECT_GT(history_position(), frame + 40);
    EXPECT_EQ(int64_t(breakpoints()[0].hits), history_position() - frame);
}

TEST_F(DebuggingTest, AReplayStandsAndGoesOnAsItWas) {
    start();
    start_replay_recording("a.tvr");
    host->set_key('A', true);
    turns(2000);
    end_replay_recording();
    play_replay_file("a.tvr");
    debugger_command("break line 100");
    debugger_command("watch access 4000-47FF if hits % 100 == 1");
    int stops = 0;
    for (; replay_plays() && stops < 10'000; ++stops) {
        while (replay_plays() && !debugger_stands()) turns(20);
        if (stops % 3 == 0) debugger_step();
        debugger_go();
    }
    EXPECT_GT(stops, 150);
    EXPECT_EQ(shown_status().find("The replay has ended"), 0U) << shown_status();
}

} // namespace
