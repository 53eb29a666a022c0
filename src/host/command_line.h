#pragma once
/// The command line: switches that begin with "/", and a file to start.

#include <string>
#include <vector>

/// The arguments behind the program's name and its double-dash options.
using Arguments = std::vector<std::string>;

/// Evaluates the arguments from left to right; of those that are no switch only the last argument
/// of the line counts, as the file to autostart. An argument that names an existing file is a file,
/// whatever it begins with.
void get_command_line(const Arguments& arguments);
/// What is wrong with the arguments, in one line; empty when nothing is. Looks at files, changes
/// nothing.
std::string command_line_problem(const Arguments& arguments);
