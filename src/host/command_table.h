#pragma once
/// The program's options and commands, a row for each. Menu, accelerators, check marks, settings
/// and the switches of the command line are made from these rows. What a row leaves out, its option
/// or command does not have.

#include "host/command_line.h"
#include "platform/keyboard.h"
#include "platform/window.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>

/// The steps of the start that settings are read in, in this order.
enum class StartStep : uint8_t {
    none,
    sound_device,
    options,
    startup_pattern,
    picture,
    disks,
    screenshots,
    palette,
    tape,
    engine,
};

/// A number whose value in the settings differs from that of its variable.
struct NumberAccess {
    uint32_t (*get)();
    void (*set)(uint32_t number);
};
struct TextAccess {
    std::string (*get)();
    void (*set)(const std::string& text);
};
/// Where a setting's value is. Without a place, the code that uses the setting reads and writes it.
using SettingPlace = std::variant<std::monostate, bool*, uint32_t*, NumberAccess, TextAccess>;

struct Setting {
    const char* name = nullptr;
    SettingPlace place = {};
    std::optional<uint32_t> initial = {}; ///< without it, what the machine starts with
    StartStep read = StartStep::none;
    bool written = true; ///< when the program ends
    /// Turns a number that was read into one that is possible; null when all are.
    uint32_t (*possible)(uint32_t number) = nullptr;
    /// The step in which a number that was corrected is stored at once.
    StartStep mended = StartStep::none;
};

/// A switch of the command line: "/" and a letter.
struct LineSwitch {
    enum class Value : uint8_t {
        none,
        digits,  ///< in the same argument
        text,    ///< the next argument
        seconds, ///< the same, a whole number
    };

    char letter = 0;
    Value value = Value::none;
    const char* usage = nullptr; ///< value and meaning, for the help text
    void (*obey)(const CommandLine::Switch& given) = nullptr;
    /// What is wrong with a file that the switch names.
    std::string (*problem)(const std::string& path) = nullptr;
};

struct CommandRow {
    int id = 0;
    const char* label = nullptr;
    const char* hint = nullptr; ///< shown for a key
    const char* tip = nullptr;  ///< a sentence on what the command does
    std::array<KeyChord, 2> keys = {};
    bool* flag = nullptr;       ///< the command toggles it, and its mark shows it
    void (*run)() = nullptr;    ///< called for the command, after the flag was toggled
    bool (*marked)() = nullptr; ///< whether it is marked at the start, when there is no flag
    Setting setting = {};       ///< of the flag, unless it has a place of its own
    LineSwitch line_switch = {};
};

/// The order of the rows is that in which settings are written.
std::span<const CommandRow> command_table();
/// Null for an id that has no row.
const CommandRow* find_command(int id);
/// Null for a letter that has no row.
const LineSwitch* find_switch(char letter);
