#include "files/user_paths.h"

/// In the file system of the page. What is below /store outlives it.
std::string user_data_directory() { return "/store/data"; }

std::string user_config_directory() { return "/store/config"; }

std::string executable_directory() { return "/program"; }

std::vector<std::string> program_arguments(int count, char** arguments) {
    return {arguments + 1, arguments + count};
}
