#include "tools/host_files.h"

#include "files/whole_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

std::optional<std::vector<uint8_t>> read_host_file(const std::string& path, size_t limit) {
    if (path != "-") return read_whole_file(path, limit);
    std::vector<uint8_t> bytes;
    uint8_t block[4096];
    while (const size_t count = std::fread(block, 1, sizeof block, stdin)) {
        bytes.insert(bytes.end(), block, block + count);
        if (bytes.size() > limit) return {};
    }
    return std::ferror(stdin) ? std::nullopt : std::optional(bytes);
}

std::string write_host_file(const std::string& path, std::span<const uint8_t> bytes, bool force) {
    if (path == "-") {
        const size_t written = std::fwrite(bytes.data(), 1, bytes.size(), stdout);
        if (written == bytes.size() && std::fflush(stdout) == 0) return {};
        return "cannot write the standard output";
    }
    std::error_code error;
    if (!force && std::filesystem::is_regular_file(path, error))
        return path + " exists; --force replaces it";
    if (replace_whole_file(path, bytes)) return {};
    return "cannot write " + path + ": " + std::strerror(errno);
}
