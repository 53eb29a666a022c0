#pragma once
/// A reader of RIFF files that knows nothing of those who write them.

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

/// A file taken apart: every chunk by its path, such as "AVI /hdrl/strl/strh".
struct Riff {
    struct Chunk {
        std::string path;
        size_t start, size; ///< of the data
    };
    explicit Riff(std::vector<uint8_t> file) : data(std::move(file)) { read(0, data.size(), ""); }

    uint64_t number(size_t at, int bytes = 4) const {
        uint64_t value = 0;
        for (int n = bytes - 1; n >= 0; --n) value = value << 8 | data.at(at + size_t(n));
        return value;
    }
    std::string text(size_t at, size_t length = 4) const {
        return {data.begin() + std::ptrdiff_t(at), data.begin() + std::ptrdiff_t(at + length)};
    }
    void read(size_t at, size_t end, const std::string& path) {
        while (at + 8 <= end) {
            const std::string id = text(at);
            const size_t size = number(at + 4);
            ASSERT_LE(at + 8 + size, end) << path << id << " reaches out of its list";
            const bool list = id == "RIFF" || (id == "LIST" && text(at + 8) != "INFO");
            if (list) {
                read(at + 12, at + 8 + size, path + text(at + 8) + "/");
            } else {
                chunks.push_back({path + id, at + 8, size});
            }
            at += 8 + size + (size & 1);
        }
        EXPECT_EQ(at, end) << path;
    }
    std::vector<Chunk> all(const std::string& path) const {
        std::vector<Chunk> found;
        for (const Chunk& chunk : chunks) {
            if (chunk.path == path) found.push_back(chunk);
        }
        return found;
    }
    std::vector<uint8_t> data;
    std::vector<Chunk> chunks;
};
