#pragma once
/// Numbers as bytes, the same on every host: little-endian words, and variable-length numbers of 7
/// bits a byte, the low ones first.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class ByteWriter {
public:
    void byte(uint8_t value) { bytes_.push_back(value); }
    void word16(uint16_t value) { put(value, 2); }
    void word32(uint32_t value) { put(value, 4); }
    void word64(uint64_t value) { put(value, 8); }
    void number(uint64_t value) {
        for (; value >= 0x80; value >>= 7) byte(uint8_t(value | 0x80));
        byte(uint8_t(value));
    }
    /// Small values of either sign become short.
    void signed_number(int64_t value) {
        number(uint64_t(value) << 1 ^ uint64_t(value < 0 ? -1 : 0));
    }
    void raw(std::span<const uint8_t> bytes) {
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    }
    /// With their count in front.
    void counted(std::span<const uint8_t> bytes) {
        number(bytes.size());
        raw(bytes);
    }
    void text(std::string_view characters) {
        number(characters.size());
        bytes_.insert(bytes_.end(), characters.begin(), characters.end());
    }
    size_t size() const { return bytes_.size(); }
    const std::vector<uint8_t>& bytes() const { return bytes_; }
    std::vector<uint8_t> take() { return std::move(bytes_); }

private:
    void put(uint64_t value, int count) {
        for (; count > 0; --count, value >>= 8) byte(uint8_t(value));
    }
    std::vector<uint8_t> bytes_;
};

/// Reads never leave the bytes: beyond the end everything is 0, and good() is false from then on.
class ByteReader {
public:
    explicit ByteReader(std::span<const uint8_t> bytes) : rest_(bytes) {}

    uint8_t byte() { return uint8_t(get(1)); }
    uint16_t word16() { return uint16_t(get(2)); }
    uint32_t word32() { return uint32_t(get(4)); }
    uint64_t word64() { return get(8); }
    uint64_t number() {
        uint64_t value = 0;
        for (int shift = 0; shift < 64; shift += 7) {
            const uint8_t next = byte();
            value |= uint64_t(next & 0x7F) << shift;
            if (next < 0x80) return value;
        }
        fail();
        return 0;
    }
    int64_t signed_number() {
        const uint64_t value = number();
        return int64_t(value >> 1 ^ (value & 1 ? ~uint64_t(0) : 0));
    }
    std::span<const uint8_t> raw(uint64_t count) {
        if (count > rest_.size()) {
            fail();
            return {};
        }
        const auto bytes = rest_.first(size_t(count));
        rest_ = rest_.subspan(size_t(count));
        return bytes;
    }
    std::span<const uint8_t> counted() { return raw(number()); }
    std::string text() {
        const auto bytes = counted();
        return {bytes.begin(), bytes.end()};
    }
    /// What has not been read.
    std::span<const uint8_t> rest() const { return rest_; }
    bool empty() const { return rest_.empty(); }
    bool good() const { return good_; }
    void fail() {
        good_ = false;
        rest_ = {};
    }

private:
    uint64_t get(int count) {
        uint64_t value = 0;
        const auto bytes = raw(uint64_t(count));
        for (size_t n = bytes.size(); n > 0; --n) value = value << 8 | bytes[n - 1];
        return value;
    }
    std::span<const uint8_t> rest_;
    bool good_ = true;
};
