#pragma once
/// What the programs have in common: the runs with and without a window, and what is printed before
/// and after any run.

#include "host/shell_state.h"
#include "platform/platform.h"

#include <string>

/// Prints help or version where the line asks for it; true when it did.
bool print_information(const CommandLine& line);
/// Prints what keeps the program from running, and returns the exit status.
int fail(const std::string& problem);
/// Prints the registers and the disassembly that the line asks for.
void print_results(const CommandLine& line);
/// Runs the machine without a display as the line says. Returns the exit status.
int run_headless(const CommandLine& line);
/// Runs the machine in a window of the host, which becomes the platform. Returns the exit status.
int run_in_window(Platform& host, const CommandLine& line);
/// Its start alone, for a host whose system has the loop, see start_shell. `options` has what this
/// host wants beside what every window has.
bool start_in_window(Platform& host, const CommandLine& line, ShellOptions options = {});
