#pragma once
/// Scripts: a command a line that starts programs, runs the machine, presses keys and looks at what
/// has become of it; the debugger's commands (debugger/commands.h) are among them. Files are named
/// as on the command line, and comments begin with "#" or ";".
///
/// The machine runs only while a command lets it. With a host whose time is virtual, the same
/// script gives the same bytes.

#include "host/shell_state.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Exit status of a program whose script cannot be read, or has a line that is no command.
constexpr int SCRIPT_NOT_RUN = 2;
/// The status when a line has failed.
constexpr int SCRIPT_FAILED = 1;

struct ScriptLine {
    int number = 0; ///< in the file, from 1
    std::string text;
};

struct Script {
    std::string name;              ///< of the file, for messages
    std::vector<ScriptLine> lines; ///< those that hold a command
    bool uses_debugger = false;
};

/// Reads a script, "-" from the standard input, and checks every line. Returns what is wrong, a
/// line for each: "FILE:LINE: why"; empty when it can be run.
std::string read_script(const std::string& path, Script& script);
/// The same with the contents of the file.
std::string parse_script(const std::string& name, std::string_view contents, Script& script);

/// Starts the shell, runs the script in it, and ends it. What a line prints goes to the standard
/// output; the first line that fails ends the script and is told on the standard error stream as
/// "FILE:LINE: why". Returns the exit status.
int run_script(const Script& script, const ShellOptions& options);

/// A command beside the debugger's.
struct ScriptCommand {
    std::string_view name;
    std::string_view arguments;
    std::string_view text; ///< what it does, in a line
};
std::span<const ScriptCommand> script_commands();
