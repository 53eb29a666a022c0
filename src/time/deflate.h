#pragma once
/// Bytes deflated and inflated by zlib.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

/// From fast to small. Two programs of the same build make the same bytes; two versions of zlib
/// need not.
enum deflate_effort : int { DEFLATE_FAST = 1, DEFLATE_USUAL = 6, DEFLATE_BEST = 9 };

std::vector<uint8_t> deflated(std::span<const uint8_t> bytes,
                              deflate_effort effort = DEFLATE_USUAL);
/// What was deflated, when it is exactly `size` bytes; nothing when it is not, or is damaged. No
/// more than that many bytes are taken from the memory.
std::optional<std::vector<uint8_t>> inflated(std::span<const uint8_t> bytes, size_t size);
/// The same without zlib's head and check sum, as the web's "deflate-raw". To be inflated, it need
/// not be known how much it becomes: nothing when that is more than `most`, or what is there is
/// damaged, cut off or followed by anything.
std::vector<uint8_t> deflated_raw(std::span<const uint8_t> bytes);
std::optional<std::vector<uint8_t>> inflated_raw(std::span<const uint8_t> bytes, size_t most);
/// CRC-32 of the bytes, behind those of which `before` is the CRC.
uint32_t crc32_of(std::span<const uint8_t> bytes, uint32_t before = 0);
