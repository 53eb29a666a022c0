#include "files/user_paths.h"

#include <cstdlib>
#include <filesystem>

#include <pwd.h>
#include <unistd.h>

namespace {

std::string home_directory() {
    if (const char* home = std::getenv("HOME"); home && *home) return home;
    const passwd* entry = getpwuid(getuid());
    return entry && entry->pw_dir ? entry->pw_dir : ".";
}

std::string user_directory(const char* variable, const char* below_home) {
    if (const char* given = std::getenv(variable); given && *given == '/') {
        return std::string(given) + "/tarvelin";
    }
    return home_directory() + below_home + "/tarvelin";
}

} // namespace

std::string user_data_directory() { return user_directory("XDG_DATA_HOME", "/.local/share"); }

std::string user_config_directory() { return user_directory("XDG_CONFIG_HOME", "/.config"); }

std::string executable_directory() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path().string();
}

std::vector<std::string> program_arguments(int count, char** arguments) {
    return {arguments + 1, arguments + count};
}
