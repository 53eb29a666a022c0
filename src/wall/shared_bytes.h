#pragma once
/// A medium's bytes (a disk, a cassette, a text to type), which several states of the machine
/// share: to copy them costs nothing, and the first change of one of the copies separates it.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

class shared_bytes {
public:
    shared_bytes() = default;
    explicit shared_bytes(std::vector<uint8_t> contents)
        : bytes(std::make_shared<std::vector<uint8_t>>(std::move(contents))) {}

    size_t size() const { return bytes ? bytes->size() : 0; }
    bool empty() const { return size() == 0; }
    std::span<const uint8_t> view() const {
        return bytes ? std::span<const uint8_t>(*bytes) : std::span<const uint8_t>();
    }
    /// The bytes, to be changed. When other objects share them, this one gets its own copy first.
    std::vector<uint8_t>& change() {
        if (!bytes || bytes.use_count() > 1) {
            bytes = std::make_shared<std::vector<uint8_t>>(bytes ? *bytes : std::vector<uint8_t>());
        }
        return *bytes;
    }
    bool operator==(const shared_bytes& other) const {
        return bytes == other.bytes || std::ranges::equal(view(), other.view());
    }

private:
    std::shared_ptr<std::vector<uint8_t>> bytes;
};
