#include "files/file_identity.h"

#include "files/file_names.h"

#include <algorithm>
#include <bit>
#include <cstring>

std::string lasting_path(const std::string& path) {
    if (path.empty()) return {};
    std::error_code error;
    const auto absolute = std::filesystem::absolute(system_path(path), error);
    return error ? path : path_text(absolute);
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
