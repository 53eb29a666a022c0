#include "files/file_identity.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <filesystem>

#include <sys/stat.h>

FileIdentity file_identity(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) return {};
    return {uint64_t(status.st_dev), uint64_t(status.st_ino)};
}

std::string canonical_path(const std::string& path) {
    std::error_code error;
    const std::filesystem::path real = std::filesystem::weakly_canonical(path, error);
    return error ? path : real.string();
}

std::string lasting_path(const std::string& path) {
    std::error_code error;
    const auto absolute =
        path.empty() ? std::filesystem::path() : std::filesystem::absolute(path, error);
    return error ? path : absolute.string();
}

uint64_t content_hash(std::span<const uint8_t> bytes) {
    // The basis and the prime of FNV-1a, with eight bytes taken at a time.
    constexpr uint64_t BASIS = 0xCBF29CE484222325, PRIME = 0x100000001B3;
    constexpr int SPREAD = 31; ///< so that high bits of a word reach the low ones
    uint64_t hash = BASIS ^ bytes.size();
    while (!bytes.empty()) {
        uint64_t word = 0;
        const size_t count = std::min(bytes.size(), sizeof word);
        std::memcpy(&word, bytes.data(), count);
        hash = std::rotl((hash ^ word) * PRIME, SPREAD);
        bytes = bytes.subspan(count);
    }
    return hash;
}

uint64_t content_hash(std::string_view text) {
    return content_hash({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}
