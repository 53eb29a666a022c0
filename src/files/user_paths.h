#pragma once
/// Where this host keeps a user's files and the program, what all platforms answer with, and what
/// the program was started with.

#include <string>
#include <vector>

/// tarvelin below $XDG_DATA_HOME, which counts only as an absolute path, else below ~/.local/share.
/// Without $HOME the folder is that of the user's password entry. On Windows, Tarvelin below
/// %APPDATA%.
std::string user_data_directory();
/// The same with $XDG_CONFIG_HOME and ~/.config; the same folder on Windows.
std::string user_config_directory();
/// The directory of the program file; empty when the host does not tell.
std::string executable_directory();
/// The arguments of the command line in UTF-8, without the program's name; those of main are in
/// another code on Windows.
std::vector<std::string> program_arguments(int count, char** arguments);
