#pragma once
/// What a program with windows does at its start.

#include <string>
#include <vector>

/// The words of the command line behind the program's name, in UTF-8.
std::vector<std::string> win32_arguments();
/// Lets the program, which has no console of its own, write to the one that it was started from.
/// Standard output and error that lead to a file or a pipe stay as they are.
void win32_attach_console();
