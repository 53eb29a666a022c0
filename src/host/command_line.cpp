#include "host/command_line.h"

#include "cgenie/hires_lowe.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "host/autostart.h"
#include "host/commands.h"
#include "host/disks.h"
#include "host/display.h"
#include "host/shell.h"
#include "z80/z80.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

/// Switches that take the next argument as their value.
constexpr const char* SWITCHES_WITH_VALUE = "birstv";

bool exists(const std::string& path) {
    std::error_code error;
    return fs::exists(path, error);
}

/// The switch's letter, or 0 for an argument that is a file.
char switch_letter(const std::string& argument) {
    if (argument.size() < 2 || argument[0] != '/' || exists(argument)) return 0;
    return argument[1];
}

bool takes_value(char letter) { return std::strchr(SWITCHES_WITH_VALUE, letter) != nullptr; }

/// A path of this host that leads nowhere looks like a switch of a longer name.
bool looks_like_path(const std::string& argument) {
    return argument.find('/', 1) != std::string::npos || argument.find('.') != std::string::npos;
}

/// Cycles after `seconds`, kept to 32 bits.
int64_t seconds_to_cycles(const std::string& seconds) {
    return uint32_t(std::atoi(seconds.c_str())) * uint32_t(z80_state.clock_hz);
}

void apply_model(const std::string& digits) {
    const auto number = uint32_t(std::atoi(digits.c_str()));
    const bool known = number >= 1 && number <= STANDARD_MODELS;
    machine_change_cfg(machine_cfg[known ? number - 1 : 0], 1);
}

void apply_switch(char letter, const std::string& argument, const std::string& value) {
    switch (letter) {
    case 'a': g_bAutoStart = false; break;
    case 'b': autostart_file(value); break;
    case 'd': g_bDblScan = false; break;
    case 'g': hires_lowe_init(); break;
    case 'h': g_bSound = false; break;
    case 'i': main_disk_image_attach(0, value); break;
    case 'm': apply_model(argument.substr(2)); break;
    case 's': event_screenshot_timout = seconds_to_cycles(value); break;
    case 't': event_shutdown_timout = seconds_to_cycles(value); break;
    case 'v': avi_name = value; break;
    case 'w': g_Timer = false; break;
    default: break; // and 'r', whose value selects nothing
    }
}

std::string value_problem(char letter, const std::string& value) {
    switch (letter) {
    case 'b': return start_problem(value);
    case 'i': return file_problem(value);
    default: return {};
    }
}

} // namespace

void get_command_line(const Arguments& arguments) {
    std::string file;
    for (size_t n = 0; n < arguments.size(); ++n) {
        const std::string& argument = arguments[n];
        const char letter = switch_letter(argument);
        if (!letter) {
            if (n + 1 == arguments.size()) file = argument;
            continue;
        }
        std::string value;
        if (takes_value(letter) && n + 1 < arguments.size()) value = arguments[++n];
        apply_switch(letter, argument, value);
    }
    if (!file.empty()) autostart_file(file);
    g_bAutoStart = true;
}

std::string command_line_problem(const Arguments& arguments) {
    for (size_t n = 0; n < arguments.size(); ++n) {
        const std::string& argument = arguments[n];
        const char letter = switch_letter(argument);
        std::string problem;
        if (!letter || looks_like_path(argument)) {
            problem = start_problem(argument);
        } else if (takes_value(letter)) {
            if (n + 1 == arguments.size()) return argument + ": the value is missing";
            problem = value_problem(letter, arguments[++n]);
        }
        if (!problem.empty()) return problem;
    }
    return {};
}
