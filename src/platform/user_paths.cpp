#include "platform/user_paths.h"

#include <cstdlib>
#include <filesystem>

namespace {

std::string user_directory(const char* variable, const char* below_home) {
    if (const char* given = std::getenv(variable); given && *given == '/') {
        return std::string(given) + "/tarvelin";
    }
    const char* home = std::getenv("HOME");
    return std::string(home ? home : ".") + below_home + "/tarvelin";
}

} // namespace

std::string user_data_directory() { return user_directory("XDG_DATA_HOME", "/.local/share"); }

std::string user_config_directory() { return user_directory("XDG_CONFIG_HOME", "/.config"); }

std::string executable_directory() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path().string();
}
