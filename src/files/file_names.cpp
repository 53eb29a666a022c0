#include "files/file_names.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

size_t extension_point(const std::string& path) {
    const size_t point = path.rfind('.');
    const size_t separator = path.rfind('/');
    const bool in_folder = separator != std::string::npos && point < separator;
    return in_folder ? std::string::npos : point;
}

std::string lower_case(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](unsigned char c) { return char(std::tolower(c)); });
    return text;
}

std::string find_in_any_case(const std::string& folder, const std::string& name) {
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path exact = fs::path(folder) / name;
    if (fs::exists(exact, error)) return exact.string();
    std::string found;
    for (fs::directory_iterator entry(folder.empty() ? "." : folder, error), end;
         !error && entry != end; entry.increment(error)) {
        const std::string other = entry->path().filename().string();
        if (lower_case(other) != lower_case(name)) continue;
        const std::string path = (fs::path(folder) / other).string();
        if (found.empty() || path < found) found = path;
    }
    return found;
}

std::string lower_case_extension(const std::string& path) {
    const size_t point = extension_point(path);
    return point == std::string::npos ? std::string() : lower_case(path.substr(point + 1));
}

std::string with_extension(const std::string& path, const std::string& extension) {
    const bool complete = extension.empty() || extension_point(path) != std::string::npos;
    return complete ? path : path + "." + extension;
}
