#include "support/files.h"

#include "files/whole_file.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

struct Folder {
    Folder() : path((fs::temp_directory_path() / "tarvelin-fuzz-XXXXXX").string()) {
        if (!mkdtemp(path.data())) std::abort();
        fs::current_path(path);
    }
    ~Folder() {
        std::error_code error;
        fs::current_path("/", error);
        fs::remove_all(path, error);
    }
    std::string path;
};

} // namespace

void use_own_folder() { static const Folder folder; }

void write_file(const std::string& name, std::span<const uint8_t> bytes) {
    use_own_folder();
    std::FILE* const file = std::fopen(name.c_str(), "wb");
    if (!file) std::abort();
    if (!bytes.empty()) std::fwrite(bytes.data(), 1, bytes.size(), file);
    std::fclose(file);
}

std::vector<uint8_t> read_file(const std::string& name) {
    constexpr size_t LARGEST = 16 << 20;
    return read_whole_file(name, LARGEST).value_or(std::vector<uint8_t>());
}
