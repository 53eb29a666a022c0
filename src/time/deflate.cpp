#include "time/deflate.h"

#include <zlib.h>

std::vector<uint8_t> deflated(std::span<const uint8_t> bytes, deflate_effort effort) {
    uLongf size = compressBound(uLong(bytes.size()));
    std::vector<uint8_t> small(size);
    compress2(small.data(), &size, bytes.data(), uLong(bytes.size()), effort);
    small.resize(size);
    return small;
}

std::optional<std::vector<uint8_t>> inflated(std::span<const uint8_t> bytes, size_t size) {
    // Deflate makes at most 1032 bytes of one.
    constexpr size_t MOST_OF_ONE = 1032;
    if (size / MOST_OF_ONE > bytes.size()) return std::nullopt;
    std::vector<uint8_t> whole(size + 1); // zlib wants a place even for nothing
    uLongf count = uLong(size + 1);
    if (uncompress(whole.data(), &count, bytes.data(), uLong(bytes.size())) != Z_OK) return {};
    if (count != size) return std::nullopt;
    whole.resize(size);
    return whole;
}

uint32_t crc32_of(std::span<const uint8_t> bytes, uint32_t before) {
    if (bytes.empty()) return before; // zlib takes a null pointer for a new beginning
    return uint32_t(crc32_z(before, bytes.data(), bytes.size()));
}
