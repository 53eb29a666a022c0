#include "files/file_names.h"

#include "files/system_file.h"

#include <algorithm>
#include <cctype>

bool is_absolute_path(const std::string& path) { return system_path(path).is_absolute(); }

std::string file_name_of(const std::string& path) {
    return path_text(system_path(path).filename());
}

std::string file_stem_of(const std::string& path) { return path_text(system_path(path).stem()); }

std::string folder_of(const std::string& path) {
    return path_text(system_path(path).parent_path());
}

std::string path_in(const std::string& folder, const std::string& name) {
    return path_text(system_path(folder) / system_path(name));
}

size_t extension_point(const std::string& path) {
    const size_t point = path.rfind('.');
    const size_t separator = path.find_last_of(path_separators);
    const bool in_folder = separator != std::string::npos && point < separator;
    return in_folder ? std::string::npos : point;
}

std::string lower_case(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](unsigned char c) { return char(std::tolower(c)); });
    return text;
}

std::string find_in_any_case(const std::string& folder, const std::string& name) {
    std::string exact = path_in(folder, name);
    if (path_exists(exact)) return exact;
    std::string found;
    for (const std::string& other : names_in(folder.empty() ? "." : folder)) {
        if (lower_case(other) != lower_case(name)) continue;
        const std::string path = path_in(folder, other);
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
