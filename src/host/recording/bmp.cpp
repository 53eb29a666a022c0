#include "host/recording/bmp.h"

#include "files/whole_file.h"

#include <array>
#include <cstdlib>
#include <vector>

namespace {
constexpr size_t FILE_HEADER_SIZE = 14;
constexpr size_t HEADERS_SIZE = FILE_HEADER_SIZE + sizeof(bitmap_header);

using Headers = std::array<uint8_t, HEADERS_SIZE>;

uint8_t* put16(uint8_t* at, uint32_t value) {
    *at++ = uint8_t(value);
    *at++ = uint8_t(value >> 8);
    return at;
}

uint8_t* put32(uint8_t* at, uint32_t value) { return put16(put16(at, value), value >> 16); }

/// The file header and the picture's; a positive height says that the bottom row comes first.
Headers make_headers(const dib& picture, size_t row_bytes) {
    const uint32_t pixel_offset = uint32_t(HEADERS_SIZE + picture.palette.size());
    const bitmap_header& header = picture.header;
    Headers bytes;
    uint8_t* at = put16(bytes.data(), 'B' | 'M' << 8);
    at = put32(at, uint32_t(size_t(picture.height) * row_bytes) + pixel_offset);
    at = put32(at, 0);
    at = put32(at, pixel_offset);
    at = put32(at, header.size);
    at = put32(at, uint32_t(header.width));
    at = put32(at, uint32_t(std::abs(header.height)));
    at = put16(at, header.planes);
    at = put16(at, header.bits);
    at = put32(at, header.compression);
    at = put32(at, header.image_size);
    at = put32(at, uint32_t(header.x_pixels_per_metre));
    at = put32(at, uint32_t(header.y_pixels_per_metre));
    at = put32(at, header.colours_used);
    put32(at, header.colours_important);
    return bytes;
}
} // namespace

bool bmp_save(const std::string& path, const dib& picture) {
    const size_t row_bytes = size_t(picture.width) * picture.header.bits / 8;
    const Headers headers = make_headers(picture, row_bytes);
    std::vector<uint8_t> file(headers.begin(), headers.end());
    file.reserve(headers.size() + picture.palette.size() + size_t(picture.height) * row_bytes);
    file.insert(file.end(), picture.palette.begin(), picture.palette.end());
    for (size_t row = size_t(picture.height); row-- > 0;) {
        const auto first = picture.pixels.begin() + std::ptrdiff_t(row * row_bytes);
        file.insert(file.end(), first, first + std::ptrdiff_t(row_bytes));
    }
    return replace_whole_file(path, file);
}
