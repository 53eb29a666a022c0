#pragma once
/// What a program with windows does at its start.

/// Lets the program, which has no console of its own, write to the one that it was started from.
/// Standard output and error that lead to a file or a pipe stay as they are.
void win32_attach_console();
