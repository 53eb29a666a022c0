#pragma once
/// The bytes of one run, taken from the front. Behind the end everything is zero.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>

class Input {
public:
    Input(const uint8_t* data, size_t size) : left_(data, size) {}

    bool empty() const { return left_.empty(); }
    std::span<const uint8_t> take(size_t count) {
        const auto taken = left_.first(std::min(count, left_.size()));
        left_ = left_.subspan(taken.size());
        return taken;
    }
    std::span<const uint8_t> rest() { return take(left_.size()); }
    std::string text(size_t count) {
        const auto bytes = take(count);
        return {bytes.begin(), bytes.end()};
    }
    uint8_t byte() {
        const auto taken = take(1);
        return taken.empty() ? uint8_t(0) : taken[0];
    }
    uint16_t word() {
        const uint8_t low = byte();
        return uint16_t(low | byte() << 8);
    }
    uint32_t dword() {
        const uint32_t low = word();
        return low | uint32_t(word()) << 16;
    }

private:
    std::span<const uint8_t> left_;
};

/// Fills `target` with copies of `pattern`; nothing without one.
inline void tile(std::span<uint8_t> target, std::span<const uint8_t> pattern) {
    if (pattern.empty() || target.empty()) return;
    size_t filled = std::min(pattern.size(), target.size());
    std::memcpy(target.data(), pattern.data(), filled);
    while (filled < target.size()) {
        const size_t count = std::min(filled, target.size() - filled);
        std::memcpy(target.data() + filled, target.data(), count);
        filled += count;
    }
}

/// A broken promise is a finding like any other.
inline void require(bool kept, const char* promise) {
    if (kept) return;
    std::fprintf(stderr, "broken: %s\n", promise);
    std::abort();
}
