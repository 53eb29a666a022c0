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

std::vector<uint8_t> deflated_raw(std::span<const uint8_t> bytes) {
    // What zlib puts around it: two bytes of head, and four of check sum.
    constexpr std::ptrdiff_t HEAD = 2, SUM = 4;
    const std::vector<uint8_t> whole = deflated(bytes, DEFLATE_BEST);
    return {whole.begin() + HEAD, whole.end() - SUM};
}

std::optional<std::vector<uint8_t>> inflated_raw(std::span<const uint8_t> bytes, size_t most) {
    z_stream stream = {};
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) return std::nullopt;
    std::vector<uint8_t> whole(most + 1);                // zlib wants a place even for nothing
    stream.next_in = const_cast<uint8_t*>(bytes.data()); // which zlib only reads
    stream.avail_in = uInt(bytes.size());
    stream.next_out = whole.data();
    stream.avail_out = uInt(whole.size());
    const bool ended = inflate(&stream, Z_FINISH) == Z_STREAM_END && stream.avail_in == 0;
    const size_t count = stream.total_out;
    inflateEnd(&stream);
    if (!ended || count > most) return std::nullopt;
    whole.resize(count);
    return whole;
}

uint32_t crc32_of(std::span<const uint8_t> bytes, uint32_t before) {
    if (bytes.empty()) return before; // zlib takes a null pointer for a new beginning
    return uint32_t(crc32_z(before, bytes.data(), bytes.size()));
}
