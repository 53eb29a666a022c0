#include "media/cmd_loader.h"

#include "cgenie/memory/memory.h"
#include "media/damage.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;
using Image = std::vector<uint8_t>;

/// Blocks counted by every load of this program, as the loader numbers them.
int blocks_seen = 0;

struct Outcome {
    int result = 0;
    unsigned entry = 0;
    std::string out, err;
};

template <typename... Values>
std::string text(const char* format, Values... values) {
    char line[256];
    std::snprintf(line, sizeof line, format, values...);
    return line;
}

/// RAM, colour and character RAM take writes; the tests keep clear of the disk controller.
void poke(Image& image, unsigned address, uint8_t value) {
    address %= 65536;
    const bool ram = address >= 0x4000 && address < 0xC000;
    const bool video = address >= 0xF000 && address < 0xF800;
    if (ram || video) image[address] = value;
}

/// What the format says about `bytes`, worked out on the whole file at once.
Outcome expected(const Bytes& bytes, Image& image) {
    Outcome outcome;
    const size_t size = bytes.size();
    size_t at = 0;
    while (at < size) {
        const unsigned type = bytes[at];
        outcome.err += text("Block #%02i, type %i: \n", ++blocks_seen, int(type));
        const bool has_length = at + 1 < size;
        const unsigned length = has_length ? bytes[at + 1] : 0;
        const size_t body = at + 2;
        if (type == 2) {
            if (!has_length || length != 2) return outcome;
            outcome.result = 1;
            if (body + 2 > size) return outcome;
            outcome.entry = bytes[body] + 256u * bytes[body + 1];
            outcome.err += text("start address at %xh.\n", outcome.entry);
            return outcome;
        }
        if (type == 1) {
            if (body + 2 > size) {
                outcome.result = 1;
                return outcome;
            }
            const unsigned address = bytes[body] + 256u * bytes[body + 1];
            const size_t data = length >= 3 ? length - 2 : 254 + length;
            outcome.out += text("load from address %04xh, %i bytes.\n", address, int(data));
            for (size_t i = 0; i < data && body + 2 + i < size; ++i) {
                poke(image, unsigned(address + i), bytes[body + 2 + i]);
            }
            at = body + 2 + data;
            if (at > size) {
                outcome.result = 1;
                return outcome;
            }
            continue;
        }
        if (!has_length) return outcome;
        const unsigned skipped = length == 0 ? 256 : length;
        outcome.err += text("unsupported block type %i of size %i, at offset: %i.\n", int(type),
                            int(skipped), int(body));
        at = body + skipped;
    }
    return outcome;
}

struct CmdLoader : testing::Test {
    void SetUp() override {
        static const uint32_t ram_32k = 1;
        memory_set_ram_size_source(&ram_32k);
        for (size_t i = 0; i < MEMORY_SIZE; ++i) memory[i] = uint8_t(i * 7 + (i >> 8));
    }

    Outcome load(const Bytes& bytes) {
        Outcome outcome;
        uint16_t entry = 0xAAAA;
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        outcome.result = load_cmd(bytes, &entry);
        outcome.entry = entry;
        outcome.out = testing::internal::GetCapturedStdout();
        outcome.err = testing::internal::GetCapturedStderr();
        return outcome;
    }

    void check(const Bytes& bytes, const std::string& name) {
        Image image(memory, memory + MEMORY_SIZE);
        const Outcome want = expected(bytes, image);
        const Outcome got = load(bytes);
        EXPECT_EQ(got.result, want.result) << name;
        EXPECT_EQ(got.entry, want.entry) << name;
        EXPECT_EQ(got.out, want.out) << name;
        EXPECT_EQ(got.err, want.err) << name;
        EXPECT_EQ(std::memcmp(memory, image.data(), MEMORY_SIZE), 0) << name;
    }
};

void append(Bytes& bytes, std::initializer_list<int> head, size_t body, int seed) {
    for (const int byte : head) bytes.push_back(uint8_t(byte));
    for (size_t i = 0; i < body; ++i) bytes.push_back(uint8_t(seed + i * 3));
}

TEST_F(CmdLoader, FileCutAtEveryByte) {
    Bytes whole;
    append(whole, {5, 6}, 6, 'A');
    append(whole, {1, 5, 0x00, 0x60}, 3, 10);
    append(whole, {1, 2, 0xF0, 0xF3}, 256, 20);
    append(whole, {0, 0}, 256, 30);
    append(whole, {1, 0, 0x80, 0xBF}, 254, 40);
    append(whole, {2, 2, 0x00, 0xC0}, 0, 0);
    for (size_t size = 0; size <= whole.size(); ++size) {
        const Bytes cut(whole.begin(), whole.begin() + long(size));
        check(cut, "cut at " + std::to_string(size));
        EXPECT_EQ(load_module_damage(cut).empty(), size == whole.size()) << size;
    }
}

TEST_F(CmdLoader, EveryTypeWithEveryLength) {
    for (int length = 0; length < 256; ++length) {
        Bytes bytes;
        for (int type = 0; type < 256; ++type) {
            if (type == 1) {
                append(bytes, {1, length, length, 0x44}, size_t((length + 253) % 256 + 1), length);
            } else if (type != 2) {
                append(bytes, {type, length}, size_t((length + 255) % 256 + 1), type);
            }
        }
        append(bytes, {2, length, 0xCD, 0xAB, 1}, 0, 0);
        check(bytes, "length " + std::to_string(length));
    }
}

} // namespace
