#pragma once
/// Where this host keeps a user's files and the program, after the XDG base directory rules: what
/// both platforms answer with.

#include <string>

/// tarvelin below $XDG_DATA_HOME, which counts only as an absolute path, else below ~/.local/share.
/// Without $HOME the folder is that of the user's password entry.
std::string user_data_directory();
/// The same with $XDG_CONFIG_HOME and ~/.config.
std::string user_config_directory();
/// The directory of the program file; empty when the host does not tell.
std::string executable_directory();
