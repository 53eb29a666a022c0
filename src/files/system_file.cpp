#include "files/system_file.h"

#include "files/file_names.h"

namespace fs = std::filesystem;

bool path_exists(const std::string& path) {
    std::error_code error;
    return fs::exists(system_path(path), error);
}

bool is_missing(const std::string& path) {
    std::error_code error;
    return fs::status(system_path(path), error).type() == fs::file_type::not_found;
}

bool name_is_taken(const std::string& path) {
    std::error_code error;
    return fs::exists(fs::symlink_status(system_path(path), error));
}

bool is_folder(const std::string& path) {
    std::error_code error;
    return fs::is_directory(system_path(path), error);
}

bool is_plain_file(const std::string& path) {
    std::error_code error;
    return fs::is_regular_file(system_path(path), error);
}

std::optional<uint64_t> size_of_file(const std::string& path) {
    std::error_code error;
    const uint64_t size = fs::file_size(system_path(path), error);
    return error ? std::nullopt : std::optional(size);
}

std::vector<std::string> names_in(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(system_path(folder), error), end; !error && entry != end;
         entry.increment(error)) {
        names.push_back(path_text(entry->path().filename()));
    }
    return names;
}

void make_folders(const std::string& folder) {
    std::error_code error;
    fs::create_directories(system_path(folder), error);
}
