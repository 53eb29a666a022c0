#include "files/file_names.h"

#include <algorithm>
#include <cctype>

size_t extension_point(const std::string& path) {
    const size_t point = path.rfind('.');
    const size_t separator = path.rfind('/');
    const bool in_folder = separator != std::string::npos && point < separator;
    return in_folder ? std::string::npos : point;
}

std::string lower_case_extension(const std::string& path) {
    const size_t point = extension_point(path);
    if (point == std::string::npos) return {};
    std::string extension = path.substr(point + 1);
    std::ranges::transform(extension, extension.begin(),
                           [](unsigned char c) { return char(std::tolower(c)); });
    return extension;
}

std::string with_extension(const std::string& path, const std::string& extension) {
    const bool complete = extension.empty() || extension_point(path) != std::string::npos;
    return complete ? path : path + "." + extension;
}
