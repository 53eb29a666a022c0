#pragma once
#include "files/user_paths.h"
#include "platform/paths.h"

struct WebPaths final : public Paths {
    std::string program_directory() override { return executable_directory(); }
    std::string data_directory() override { return user_data_directory(); }
    std::string config_directory() override { return user_config_directory(); }
};
