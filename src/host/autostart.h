#pragma once
/// Autostart: loads a file by its extension and starts it.

#include <string>

/// Cleared for one evaluation of the command line: load, but do not start.
extern bool g_bAutoStart;

/// Loads and starts the file. Its name without the extension becomes the base name of screenshots.
/// What cannot be loaded leaves the machine as it is.
void autostart_file(const std::string& path);
/// Is there a loader for files with this name?
bool autostart_knows(const std::string& path);
