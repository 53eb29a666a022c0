#pragma once
/// The command line, read once into a record: options of two dashes, switches that begin with "/",
/// and a file to start.
///
/// An argument that begins with "/" is a switch unless it names an existing file or looks like a
/// path, with a "." or a second "/" in it. Of the arguments that are neither option nor switch only
/// the last one of the line counts, as the file to autostart.

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// The arguments behind the program's name.
using Arguments = std::vector<std::string>;

struct AddressRange {
    uint16_t first = 0;
    uint16_t last = 0;
    bool operator==(const AddressRange&) const = default;
};

struct CommandLine {
    struct Switch {
        char letter = 0;
        std::string value; ///< the next argument, or for /m the rest of this one
        int64_t seconds = 0;
        bool operator==(const Switch&) const = default;
    };

    bool help = false;
    bool version = false;
    bool headless = false;
    bool real_time = false;
    bool save_disks = false;
    bool print_registers = false;
    std::vector<std::pair<std::string, std::string>> settings; ///< name and value
    std::string wav;                                           ///< sound recording to start with
    std::string load_state;                                    ///< file of the state to begin with
    std::string save_state;                                    ///< file of the state at the end
    bool whole_state = false;                                  ///< which has all media in it
    std::optional<AddressRange> disassemble;
    std::optional<AddressRange> source;
    std::vector<std::string> symbols; ///< files
    std::string record;               ///< replay to record
    std::string replay;               ///< replay to play
    std::optional<int64_t> to_frame;  ///< of the replay
    std::string script;               ///< commands to obey instead of a user's, "-": from stdin
    std::optional<uint16_t> gdb_port; ///< of the server for remote debuggers; 0: a free one
    std::string link; ///< to start with, see links.h; a page has it, and no argument

    std::vector<Switch> switches;   ///< from left to right
    std::vector<std::string> files; ///< from left to right
    bool starts_file = false;       ///< the last of them; false when a switch stands behind it

    std::string refusal;               ///< what keeps the program from starting, in one line
    std::vector<std::string> problems; ///< switches that are left out, a line for each

    bool operator==(const CommandLine&) const = default;
};

/// Reads the line. Changes nothing: it only looks whether files of the arguments' names exist.
CommandLine read_command_line(const Arguments& arguments);
/// Obeys the switches from left to right, then starts the file.
void get_command_line(const CommandLine& line);
/// What is wrong with the line and with the files that it names, in one line; empty when nothing
/// is. Looks at files, changes nothing.
std::string command_line_problem(const CommandLine& line);
/// All switches with their meanings, a line for each.
std::string switches_help();
