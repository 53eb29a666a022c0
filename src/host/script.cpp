#include "host/script.h"

#include "debugger/commands.h"
#include "files/whole_file.h"
#include "host/script_run.h"
#include "host/shell.h"

#include <cstdio>
#include <iostream>
#include <iterator>
#include <optional>

namespace {

std::string line_place(const std::string& name, int number) {
    return name + ":" + std::to_string(number) + ": ";
}

/// Why a line can be no command.
std::string line_problem(CommandWords words, std::string_view line) {
    const std::string name = words.text("a command");
    if (script_command(nullptr, words, name)) return words.problem();
    if (debugger_command_of(line)) {
        const LimitedLine limited = limited_line(line);
        const std::string problem = debugger_command_problem(limited.command);
        return problem.empty() ? limited.problem : problem;
    }
    return words.problem().empty() ? name + ": unknown command" : words.problem();
}

/// The same for what is repeated: each "end" has its "repeat".
std::string loop_problem(CommandWords words, int number, std::vector<int>& open) {
    if (words.take_if("repeat")) open.push_back(number);
    if (!words.take_if("end")) return {};
    if (open.empty()) return "end without repeat";
    open.pop_back();
    return {};
}

bool uses_debugger(std::string_view line) {
    const DebuggerCommand* const command = debugger_command_of(line);
    if (command) return command->needs_debugger;
    CommandWords words(line);
    return words.take_if("until") && (words.take_if("at") || words.take_if("stop"));
}

std::optional<std::string> contents_of(const std::string& path) {
    if (path == "-") {
        return std::string(std::istreambuf_iterator<char>(std::cin), {});
    }
    const auto bytes = read_whole_file(path);
    if (!bytes) return {};
    return std::string(bytes->begin(), bytes->end());
}

} // namespace

std::string parse_script(const std::string& name, std::string_view contents, Script& script) {
    script = {};
    script.name = name;
    std::string problems;
    std::vector<int> open; ///< lines of "repeat"
    int number = 0;
    while (!contents.empty()) {
        const size_t end = contents.find('\n');
        const std::string_view line = contents.substr(0, end);
        contents.remove_prefix(end == std::string_view::npos ? contents.size() : end + 1);
        ++number;
        const CommandWords words(line, true);
        if (words.empty()) continue;
        std::string problem = line_problem(words, line);
        if (problem.empty()) problem = loop_problem(words, number, open);
        if (!problem.empty()) problems += line_place(name, number) + problem + "\n";
        script.lines.push_back({number, std::string(line)});
        if (uses_debugger(line)) script.uses_debugger = true;
    }
    if (!open.empty()) problems += line_place(name, open.back()) + "repeat without end\n";
    return problems;
}

std::string read_script(const std::string& path, Script& script) {
    const auto contents = contents_of(path);
    if (!contents) return path + ": cannot be read\n";
    return parse_script(path, *contents, script);
}

int run_script(const Script& script, const ShellOptions& options) {
    if (!start_shell(options)) return SCRIPT_FAILED;
    return ScriptRun(script).run();
}
