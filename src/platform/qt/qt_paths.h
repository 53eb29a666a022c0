#pragma once
#include "platform/paths.h"

/// Directories after the XDG base directory rules.
class QtPaths final : public Paths {
public:
    std::string program_directory() override;
    std::string data_directory() override;
    std::string config_directory() override;
};
