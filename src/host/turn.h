#pragma once
/// The shell's turns: what is waiting is handled, a due frame is run, and whoever drives the
/// program hears when to come again. No turn sleeps or blocks.

#include "platform/events.h"

#include <cstdint>
#include <functional>

struct ShellTurn {
    enum class Next : uint8_t {
        now,
        in_time, ///< after so many microseconds, or when something happens
        on_event,
        end ///< of the program
    };
    Next next = Next::now;
    int64_t microseconds = 0;
    int exit_code = 0;
};

/// Handles the messages that wait, and runs at most one frame. The quit message closes the shell
/// (see emu_close), and the end comes behind that.
ShellTurn shell_turn();
/// Turns until the end. Returns the exit code.
int run_message_loop();
/// Handles one message. The quit message is the turn's.
void WindowProcedure(const Event& event);
/// From now on the host's immediate events reach the shell.
void take_immediate_events();
/// Lets the machine and all messages rest for so long, and then acts.
void rest_shell(uint32_t milliseconds, std::function<void()> then);
