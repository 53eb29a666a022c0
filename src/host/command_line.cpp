#include "host/command_line.h"

#include "core/machine.h"
#include "files/file_names.h"
#include "files/system_file.h"
#include "host/autostart.h"
#include "host/command_table.h"
#include "host/replays.h"
#include "host/state_files.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>

namespace {

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

bool is_switch(const std::string& argument) {
    if (argument.size() < 2 || argument[0] != '/') return false;
    return argument.find_first_of(std::string(".") + path_separators, 1) == std::string::npos &&
           !path_exists(argument);
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
            read_file(word, line_.wav);
        } else if (word == "--load-state") {
            read_file(word, line_.load_state);
        } else if (word == "--save-state") {
            read_file(word, line_.save_state);
        } else if (word == "--whole-state") {
            line_.whole_state = true;
        } else if (word == "--script") {
            read_file(word, line_.script);
        } else if (word == "--record") {
            read_file(word, line_.record);
        } else if (word == "--replay") {
            read_file(word, line_.replay);
        } else if (word == "--to-frame") {
            line_.to_frame = number_of<int64_t>(value().value_or(""), DECIMAL);
            if (!line_.to_frame) refuse(word + ": the number of a frame is missing");
        } else if (word == "--gdb") {
            line_.gdb_port = number_of<uint16_t>(value().value_or(""), DECIMAL);
            if (!line_.gdb_port) refuse(word + ": the number of a port is missing");
        } else if (word == "--regs") {
            line_.print_registers = true;
        } else if (word == "--disassemble") {
            line_.disassemble = address_range(value().value_or(""));
            if (!line_.disassemble) refuse(word + ": hexadecimal FIRST-LAST is missing");
        } else if (word == "--source") {
            line_.source = address_range(value().value_or(""));
            if (!line_.source) refuse(word + ": hexadecimal FIRST-LAST is missing");
        } else if (word == "--symbols") {
            read_file(word, line_.symbols.emplace_back());
        } else {
            refuse(word + ": unknown option; --help lists them");
        }
    }

    void read_file(const std::string& word, std::string& path) {
        path = value().value_or("");
        if (path.empty()) refuse(word + ": FILE is missing");
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
        using enum LineSwitch::Value;
        CommandLine::Switch read{word[1], word.substr(2)};
        const LineSwitch* known = find_switch(read.letter);
        if (known && (known->value == text || known->value == seconds)) {
            const auto given = value();
            if (!given) return line_.problems.push_back(word + ": the value is missing");
            read.value = *given;
        }
        if (known && known->value == seconds) {
            const auto number = number_of<int64_t>(read.value, DECIMAL);
            if (!number || *number > MOST_SECONDS) {
                return line_.problems.push_back(word + " " + read.value +
                                                ": not a number of whole seconds");
            }
            read.seconds = *number;
        }
        line_.switches.push_back(read);
    }

    void check_mode() {
        if (line_.to_frame && line_.replay.empty()) refuse("--to-frame: only with --replay");
        if (line_.gdb_port && !line_.script.empty()) refuse("--gdb: not with --script");
        if (line_.headless) return;
        if (line_.real_time) refuse("--real-time: only with --headless");
        if (line_.save_disks) refuse("--save-disks: only with --headless");
        if (line_.source) refuse("--source: only with --headless");
        if (!line_.settings.empty()) refuse("--setting: only with --headless");
        if (!line_.script.empty()) refuse("--script: only with --headless");
    }

    const Arguments& arguments_;
    size_t next_ = 0;
    CommandLine line_;
};

std::string state_problem(const std::string& path) {
    std::string problem = file_problem(path);
    state_description about;
    if (problem.empty()) problem = describe_state_file(path, about);
    return problem.empty() || problem.starts_with(path) ? problem : path + ": " + problem;
}

std::string value_problem(const CommandLine::Switch& given) {
    const LineSwitch* known = find_switch(given.letter);
    return known && known->problem ? known->problem(given.value) : std::string();
}

} // namespace

CommandLine read_command_line(const Arguments& arguments) { return Reader(arguments).read(); }

void get_command_line(const CommandLine& line) {
    for (const CommandLine::Switch& given : line.switches) {
        if (const LineSwitch* known = find_switch(given.letter)) known->obey(given);
    }
    if (line.starts_file) autostart_file(line.files.back());
    g_bAutoStart = true;
}

std::string command_line_problem(const CommandLine& line) {
    if (!line.refusal.empty()) return line.refusal;
    if (!line.problems.empty()) return line.problems.front();
    std::string problem;
    if (!line.load_state.empty()) problem = state_problem(line.load_state);
    for (const CommandLine::Switch& given : line.switches) {
        if (problem.empty()) problem = value_problem(given);
    }
    for (const std::string& file : line.files) {
        if (problem.empty()) problem = start_problem(file);
    }
    if (problem.empty() && !line.replay.empty()) problem = replay_problem(line.replay);
    return problem;
}

std::string switches_help() {
    std::vector<const LineSwitch*> shown;
    for (const CommandRow& row : command_table()) {
        if (row.line_switch.usage) shown.push_back(&row.line_switch);
    }
    std::ranges::sort(shown, {}, &LineSwitch::letter);
    std::string text;
    for (const LineSwitch* known : shown) {
        text += std::string("  /") + known->letter + known->usage + "\n";
    }
    return text;
}
