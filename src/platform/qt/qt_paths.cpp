#include "platform/qt/qt_paths.h"

#include "files/user_paths.h"

std::string QtPaths::program_directory() { return executable_directory(); }
std::string QtPaths::data_directory() { return user_data_directory(); }
std::string QtPaths::config_directory() { return user_config_directory(); }
