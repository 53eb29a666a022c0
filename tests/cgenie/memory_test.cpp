#include "cgenie/memory/memory.h"

#include "cgenie/firmware_images.h"
#include "cgenie/roms.h"
#include "wall/machine_host.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace {
using Bytes = std::vector<uint8_t>;

Bytes pattern(size_t size) {
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i) bytes[i] = uint8_t(i * 5 + (i >> 8) * 11 + 1);
    return bytes;
}

Bytes copy(const uint8_t* from, size_t size) { return {from, from + size}; }

class Memory : public testing::Test {
protected:
    void SetUp() override {
        memory_state = {};
        std::fill(std::begin(memory), std::end(memory), 0x99);
        std::fill(std::begin(current_eprom), std::end(current_eprom), 0x99);
        // Replaces the seven images by ones that are filled with 11, 22, ... 77.
        const size_t sizes[] = {16384, 16384, 16384, 8192, 2048, 2048, 2048};
        for (size_t i = 0; i < FIRMWARE_IMAGES; ++i) {
            Bytes bytes(sizes[i], uint8_t(0x11 * (i + 1)));
            ASSERT_EQ(firmware_use_image(FirmwareImage(i), bytes), 1);
            bytes.push_back(0);
            ASSERT_EQ(firmware_use_image(FirmwareImage(i), bytes), 0) << "a byte too many";
        }
        machine_host.read_rom = [](rom_file which, uint8_t* to, size_t size) {
            asked = which;
            const size_t taken = size_t(std::clamp(custom_size, 0, int(size)));
            std::ranges::copy(pattern(taken), to);
            return std::min(custom_size, int(size));
        };
    }
    void TearDown() override {
        firmware_forget_user_images();
        machine_host.read_rom = machine_without_host().read_rom;
    }
    static inline int custom_size; ///< of the user's ROM; ROM_NOT_NAMED: there is none
    static inline rom_file asked;
};

TEST_F(Memory, RomsOfTheFirmwareAndOfTheUser) {
    memory_set_eprom(0);
    Bytes expansion(12288, 0x99);
    std::fill_n(expansion.begin(), 8192, 0x44);
    EXPECT_EQ(copy(current_eprom, 12288), expansion) << "the disk ROM is 8 KB of the 12";
    for (const uint32_t index : {1U, 3U}) {
        std::fill(std::begin(current_eprom), std::end(current_eprom), 0x99);
        memory_set_eprom(index);
        EXPECT_EQ(copy(current_eprom, 12288), Bytes(12288, 0xFF)) << index;
    }
    for (const int size : {16384, 12288, 4096, 0, ROM_NOT_NAMED}) {
        custom_size = size;
        memory_set_basic_rom(1); // nothing of it may stay
        memory_set_basic_rom(3);
        EXPECT_EQ(asked, ROM_BASIC);
        Bytes basic(16384, 0x11);
        std::ranges::copy(pattern(size_t(std::max(size, 0))), basic.begin());
        EXPECT_EQ(copy(memory, 16384), basic) << size;
        EXPECT_EQ(copy(active_rom, 16384), basic) << size;
        EXPECT_EQ(memory[0x4000], 0x99) << size;

        std::fill(std::begin(current_eprom), std::end(current_eprom), 0x99);
        memory_set_eprom(2);
        EXPECT_EQ(asked, ROM_EXPANSION);
        expansion.assign(12288, 0x99);
        std::ranges::copy(pattern(size_t(std::clamp(size, 0, 12288))), expansion.begin());
        EXPECT_EQ(copy(current_eprom, 12288), expansion) << size;
    }
}

TEST_F(Memory, RamStartsWithThePattern) {
    const Bytes rom(16384, 0x99);
    for (const uint32_t fill : {0U, 32U, 255U}) {
        memory_set_startup_pattern(fill);
        EXPECT_EQ(memory_get_startup_pattern(), fill);
        memory_reset();
        EXPECT_EQ(copy(memory + 0x4000, 49152), Bytes(49152, uint8_t(fill)));
        EXPECT_EQ(copy(memory, 16384), rom);
    }
    std::set<Bytes> contents;
    for (const uint32_t random : {256U, 0xFFFFFFFFU, 0xFFFFFFFFU}) {
        memory_set_startup_pattern(random);
        memory_reset();
        const Bytes ram = copy(memory + 0x4000, 49152);
        EXPECT_EQ(std::set<uint8_t>(ram.begin(), ram.end()).size(), 256u) << "every value occurs";
        EXPECT_EQ(copy(memory, 16384), rom);
        EXPECT_EQ(copy(current_eprom, 12288), Bytes(12288, 0x99));
        contents.insert(ram);
    }
    EXPECT_EQ(contents.size(), 3u) << "fresh contents every time";
    memory_seed_random(0);
    memory_reset();
    // The first outputs of the published generator for the seed 0 are E220A8397B1DCDAF,
    // 6E789E6AA1B965F4 and 06C45D188009454F.
    EXPECT_EQ(copy(memory + 0x4000, 3), (Bytes{0xAF, 0xF4, 0x4F}));
    EXPECT_TRUE(contents.contains(copy(memory + 0x4000, 49152))) << "the same seed, the same bytes";
}
} // namespace
