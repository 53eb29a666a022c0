#pragma once
/// The shell's turns. A turn handles what is waiting, runs a frame that is due, and tells its
/// caller when the next turn is needed. It never sleeps or blocks.

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
/// (see emu_close); when it is closed, the next turn returns `end`.
ShellTurn shell_turn();
/// Turns until the end. Returns the exit code.
int run_message_loop();
/// Handles one message; not the quit message, which shell_turn handles itself.
void WindowProcedure(const Event& event);
/// Makes the shell the EventSink of the host.
void take_immediate_events();
/// Lets the machine and all messages rest for so long, and then calls `then`.
void rest_shell(uint32_t milliseconds, std::function<void()> then);
