#include "host/command_line.h"

#include "cgenie/hires_lowe.h"
#include "core/machine.h"
#include "core/pacing/pacing.h"
#include "host/autostart.h"
#include "host/commands.h"
#include "host/disks.h"
#include "host/display.h"
#include "host/shell.h"
#include "z80/z80.h"

#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <string_view>

namespace {

namespace fs = std::filesystem;

constexpr std::string_view SWITCHES_WITH_VALUE = "birstv";
constexpr std::string_view TIMED_SWITCHES = "st";
/// So that a time in cycles fits into 64 bits with any clock.
constexpr int64_t MOST_SECONDS = std::numeric_limits<int64_t>::max() / FASTEST_CLOCK;
constexpr int DECIMAL = 10;
constexpr int HEXADECIMAL = 16;

/// The whole text as a number that is not negative.
template <typename Number>
std::optional<Number> number_of(std::string_view text, int base) {
    Number number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, base);
    const bool whole = error == std::errc() && stop == end && text[0] != '-';
    return whole ? std::optional(number) : std::nullopt;
}

/// FIRST-LAST.
std::optional<AddressRange> address_range(std::string_view text) {
    const size_t dash = text.find('-');
    if (dash == std::string_view::npos) return std::nullopt;
    const auto first = number_of<uint16_t>(text.substr(0, dash), HEXADECIMAL);
    const auto last = number_of<uint16_t>(text.substr(dash + 1), HEXADECIMAL);
    if (!first || !last || *first > *last) return std::nullopt;
    return AddressRange{*first, *last};
}

bool exists(const std::string& path) {
    std::error_code error;
    return fs::exists(path, error);
}

bool is_switch(const std::string& argument) {
    if (argument.size() < 2 || argument[0] != '/') return false;
    return argument.find_first_of("/.", 1) == std::string::npos && !exists(argument);
}

class Reader {
public:
    explicit Reader(const Arguments& arguments) : arguments_(arguments) {}

    CommandLine read() {
        bool options = true;
        while (next_ < arguments_.size()) {
            const std::string& word = arguments_[next_++];
            if (options && word == "--") {
                options = false;
            } else if (options && word.starts_with("--")) {
                read_option(word);
            } else if (options && is_switch(word)) {
                line_.starts_file = false;
                read_switch(word);
            } else {
                line_.starts_file = true;
                line_.files.push_back(word);
            }
        }
        check_mode();
        return std::move(line_);
    }

private:
    void refuse(const std::string& problem) {
        if (line_.refusal.empty()) line_.refusal = problem;
    }

    std::optional<std::string> value() {
        if (next_ == arguments_.size()) return {};
        return arguments_[next_++];
    }

    void read_option(const std::string& word) {
        if (word == "--help") {
            line_.help = true;
        } else if (word == "--version") {
            line_.version = true;
        } else if (word == "--headless") {
            line_.headless = true;
        } else if (word == "--real-time") {
            line_.real_time = true;
        } else if (word == "--save-disks") {
            line_.save_disks = true;
        } else if (word == "--setting") {
            read_setting(word);
        } else if (word == "--wav") {
            line_.wav = value().value_or("");
            if (line_.wav.empty()) refuse(word + ": FILE is missing");
        } else if (word == "--regs") {
            line_.print_registers = true;
        } else if (word == "--disassemble") {
            line_.disassemble = address_range(value().value_or(""));
            if (!line_.disassemble) refuse(word + ": hexadecimal FIRST-LAST is missing");
        } else {
            refuse(word + ": unknown option; --help lists them");
        }
    }

    void read_setting(const std::string& word) {
        const std::string text = value().value_or("");
        const size_t equals = text.find('=');
        if (equals == std::string::npos || equals == 0) {
            return refuse(word + ": NAME=VALUE is missing");
        }
        line_.settings.emplace_back(text.substr(0, equals), text.substr(equals + 1));
    }

    void read_switch(const std::string& word) {
        CommandLine::Switch read{word[1], word.substr(2)};
        if (SWITCHES_WITH_VALUE.find(read.letter) != std::string_view::npos) {
            const auto given = value();
            if (!given) return line_.problems.push_back(word + ": the value is missing");
            read.value = *given;
        }
        if (TIMED_SWITCHES.find(read.letter) != std::string_view::npos) {
            const auto seconds = number_of<int64_t>(read.value, DECIMAL);
            if (!seconds || *seconds > MOST_SECONDS) {
                return line_.problems.push_back(word + " " + read.value +
                                                ": not a number of whole seconds");
            }
            read.seconds = *seconds;
        }
        line_.switches.push_back(read);
    }

    void check_mode() {
        if (line_.headless) return;
        if (line_.real_time) refuse("--real-time: only with --headless");
        if (line_.save_disks) refuse("--save-disks: only with --headless");
        if (!line_.settings.empty()) refuse("--setting: only with --headless");
    }

    const Arguments& arguments_;
    size_t next_ = 0;
    CommandLine line_;
};

int64_t seconds_to_cycles(int64_t seconds) { return seconds * int64_t(z80_state.clock_hz); }

void apply_model(const std::string& digits) {
    const auto number = uint32_t(std::atoi(digits.c_str()));
    const bool known = number >= 1 && number <= STANDARD_MODELS;
    machine_change_cfg(machine_cfg[known ? number - 1 : 0], 1);
}

void apply_switch(const CommandLine::Switch& given) {
    switch (given.letter) {
    case 'a': g_bAutoStart = false; break;
    case 'b': autostart_file(given.value); break;
    case 'd': g_bDblScan = false; break;
    case 'g': hires_lowe_init(); break;
    case 'h': g_bSound = false; break;
    case 'i': main_disk_image_attach(0, given.value); break;
    case 'm': apply_model(given.value); break;
    case 's': event_screenshot_timout = seconds_to_cycles(given.seconds); break;
    case 't': event_shutdown_timout = seconds_to_cycles(given.seconds); break;
    case 'v': avi_name = given.value; break;
    case 'w': g_Timer = false; break;
    default: break; // and 'r', whose value selects nothing
    }
}

std::string value_problem(const CommandLine::Switch& given) {
    switch (given.letter) {
    case 'b': return start_problem(given.value);
    case 'i': return file_problem(given.value);
    default: return {};
    }
}

} // namespace

CommandLine read_command_line(const Arguments& arguments) { return Reader(arguments).read(); }

void get_command_line(const CommandLine& line) {
    for (const CommandLine::Switch& given : line.switches) apply_switch(given);
    if (line.starts_file) autostart_file(line.files.back());
    g_bAutoStart = true;
}

std::string command_line_problem(const CommandLine& line) {
    if (!line.refusal.empty()) return line.refusal;
    if (!line.problems.empty()) return line.problems.front();
    std::string problem;
    for (const CommandLine::Switch& given : line.switches) {
        if (problem.empty()) problem = value_problem(given);
    }
    for (const std::string& file : line.files) {
        if (problem.empty()) problem = start_problem(file);
    }
    return problem;
}
