#pragma once
#include <string>

/// Directories of the user and of the program, without a trailing separator.
struct Paths {
    virtual ~Paths() = default;
    /// Where the program file stands.
    virtual std::string program_directory() = 0;
    /// $XDG_DATA_HOME/tarvelin: the emulator's own writable directory. It may not exist yet.
    virtual std::string data_directory() = 0;
    /// Where the printer's file goes.
    virtual std::string printer_directory() { return data_directory(); }
    /// $XDG_CONFIG_HOME/tarvelin. It may not exist yet.
    virtual std::string config_directory() = 0;
};
