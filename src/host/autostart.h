#pragma once
/// Autostart: loads a file by its extension and starts it.

#include <string>

/// Cleared for one evaluation of the command line: load, but do not start.
extern bool g_bAutoStart;

/// Loads and starts the file, and says so in the status bar. Its name without the extension becomes
/// the base name of screenshots, until a reset, with which the start of a cassette begins. A file
/// that is missing, cannot be read or is of no known type leaves the machine as it is, and the
/// status bar tells why.
void autostart_file(const std::string& path);
/// Why the file cannot be read as a program or an image, in one line; empty when nothing is in the
/// way.
std::string file_problem(const std::string& path);
/// The same, and that files of its type cannot be started.
std::string start_problem(const std::string& path);
