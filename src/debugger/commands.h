#pragma once
/// The debugger's commands as text, a line each: "break 4300 if a == 3", "back write lives". The
/// debugger's window, the monitor command of the remote protocol and scripts share them.
///
/// Addresses are hexadecimal, or expressions with symbols (expression.h). Numbers of things, such
/// as counts, frames and cycles, are decimal.

#include <span>
#include <string>
#include <string_view>

struct CommandResult {
    std::string text = {}; ///< lines for the user, without an end behind the last one; may be empty
    bool failed = false;   ///< nothing was done, and `text` says why
    /// The machine was let go or led to another moment: the fronts hear of the stop (debugger.h),
    /// maybe before this returns. Until then debugger_turn and frames are needed.
    bool goes = false;
};

/// Obeys a line. An empty one, and one that begins with "#" or ";", does nothing.
CommandResult debugger_command(std::string_view line);
/// Why the line can be no command whatever the machine holds; empty when it can. Symbols that are
/// not known yet and files count as correct.
std::string debugger_command_problem(std::string_view line);

/// A command as "help" shows it.
struct DebuggerCommand {
    std::string_view name;
    std::string_view letter; ///< that stands for it; may be empty
    std::string_view arguments;
    std::string_view text; ///< what it does, in a line
    bool needs_debugger;   ///< it is refused while the debugger is off
};
std::span<const DebuggerCommand> debugger_commands();
/// The one that the line begins with; null when there is none.
const DebuggerCommand* debugger_command_of(std::string_view line);

/// The stop in lines: why, the position with its nearest symbol, and the next instruction.
std::string debugger_stop_text();
