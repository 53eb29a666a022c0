#pragma once
#include "files/user_paths.h"
#include "platform/paths.h"

struct Win32Paths final : public Paths {
    std::string program_directory() override { return executable_directory(); }
    std::string data_directory() override { return user_data_directory(); }
    /// The program's folder as ever, or, where the user may not write, that of the data.
    std::string printer_directory() override;
    std::string config_directory() override { return user_config_directory(); }
};
