#pragma once
/// The debugger (debugger/debugger.h) in the program: on while somebody uses it, such as its
/// window, a remote client or a script. Then the history is kept, whatever the option says.
///
/// While the machine stands in the debugger the shell does not run it. Pause and monitor hold it
/// besides, each by itself.

#include <functional>
#include <string>

/// Gets the lines that breakpoints log.
using DebuggingLog = std::function<void(const std::string& line)>;

/// Somebody uses the debugger from now on. Returns the number to end that by.
int debugging_begin(DebuggingLog log = {});
/// With the last one the debugger is off, and a machine that stands runs on.
void debugging_end(int user);
/// For the end of the program: nobody uses it any more.
void debugging_end_all();
bool debugging_is_on();

/// Once a turn, before a frame is run: does a part of long work. True while there is more, and no
/// frame may be run.
bool debugging_turn();
/// For each complete frame of the live machine.
void debugging_frame_ran();
/// This file is the program that the user works with: the symbols that lie beside it are taken, as
/// soon as somebody uses the debugger.
void debugging_program_is(const std::string& path);
