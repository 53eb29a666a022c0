#pragma once
/// Files for tests: a folder of their own, and whole files.

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

/// How often a test kills what it looks at; scripts/kills.sh asks for more.
inline int kills_wanted() {
    const char* const wanted = std::getenv("TARVELIN_KILLS");
    return wanted ? std::atoi(wanted) : 20;
}

/// A path that is a text as well, on every system.
struct FilePath : std::filesystem::path {
    using path::path;
    FilePath(path from) : path(std::move(from)) {}
    operator std::string() const { return string(); }
    friend FilePath operator/(const FilePath& folder, const std::string& name) {
        return path(folder) / path(name);
    }
};

/// A new folder that goes with the object.
class Folder {
public:
    Folder() {
        path_ = std::filesystem::temp_directory_path() /
                ("tarvelin-" + std::to_string(std::random_device()()));
        std::filesystem::create_directory(path_);
    }
    ~Folder() {
        std::error_code error;
        if (!path_.empty()) std::filesystem::remove_all(path_, error);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    FilePath operator/(const std::string& name) const { return path_ / name; }
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

/// What the file holds; nothing when it cannot be read.
template <typename Container>
Container file_contents(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}
inline std::vector<uint8_t> read_file(const std::filesystem::path& path) {
    return file_contents<std::vector<uint8_t>>(path);
}
inline std::string read_text(const std::filesystem::path& path) {
    return file_contents<std::string>(path);
}

/// Replaces the file, and makes the folders that it needs.
inline void write_text(const std::filesystem::path& path, const std::string& text) {
    if (path.has_parent_path()) std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
}
inline void write_file(const std::filesystem::path& path, const std::vector<uint8_t>& bytes) {
    write_text(path, {bytes.begin(), bytes.end()});
}
