#pragma once
/// Where contents go that cannot be written to their own file: the folder "rescue" of the user's
/// data directory.

#include <string>

/// A name there that no file has yet, after the name of `path`. The folder is made when it is
/// missing. Empty when all names are taken.
std::string rescue_path(const std::string& path);
