#pragma once
/// What the commands of a script are given: the run, which lets the machine go and ends with the
/// first failure.

#include "debugger/command_words.h"
#include "host/script.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

/// How long something may take, by the machine's time.
struct ScriptSpan {
    enum class Unit : uint8_t { frames, seconds, cycles };
    int64_t amount = 60;
    Unit unit = Unit::seconds;
};
/// Takes "N frames", "N seconds" or "N cycles".
ScriptSpan take_span(CommandWords& words);
/// Takes "within N frames" and so on, if it stands there.
ScriptSpan take_limit(CommandWords& words);

/// A line with a command of the debugger's, which may have a limit at its end.
struct LimitedLine {
    std::string_view command;
    ScriptSpan limit;
    std::string problem; ///< with the limit
};
LimitedLine limited_line(std::string_view line);

/// The text screen as it is printed: without blanks at the ends of rows and empty rows at the end,
/// and with "." for what is no character of ASCII.
std::string readable_screen();

class ScriptRun {
public:
    explicit ScriptRun(const Script& script);
    ~ScriptRun();
    ScriptRun(const ScriptRun&) = delete;
    ScriptRun& operator=(const ScriptRun&) = delete;

    /// Runs all lines. Returns the exit status.
    int run();

    // ---- for commands ----
    /// Ends the script with an error of the present line.
    void fail(const std::string& why);
    bool has_failed() const { return failed; }
    void exit(int status);
    /// The screen behind an error.
    void show_screen_of_failure() const;
    /// Runs for so long. False when the script has failed or the debugger has the machine stand.
    bool run_for(const ScriptSpan& span);
    /// Runs frames until `done`, which is asked before the first one and after each. False when the
    /// time is up or the script has failed.
    bool run_until(const std::function<bool()>& done, const ScriptSpan& limit);
    /// Runs until the debugger has the machine stand, and prints the stop.
    void wait_for_stop(const ScriptSpan& limit);
    void begin_loop(int64_t times);
    void end_loop();

private:
    bool turn();
    bool frame();
    bool run_cycles(int64_t count);
    bool is_over(const ScriptSpan& span, int64_t first_cycle, int64_t first_frame) const;
    void obey(const ScriptLine& line);

    struct Loop {
        size_t first; ///< line behind "repeat"
        int64_t left; ///< times, this one included
    };

    const Script& script;
    size_t next = 0;
    std::vector<Loop> loops;
    bool failed = false;
    bool ended = false;
    std::optional<int> status;
};

/// Obeys or, with null, only checks a line whose command is the script's own; the debugger's are
/// elsewhere. False when there is no such command.
bool script_command(ScriptRun* run, CommandWords& words, std::string_view name);
