#include "cgenie/memory/memory.h"

#include "cgenie/firmware_images.h"
#include "support/fake_host.h"
#include "support/host_files.h"

#include <algorithm>
#include <cstring>
#include <set>

namespace {
using Bytes = std::vector<uint8_t>;

Bytes pattern(size_t size) {
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i) bytes[i] = uint8_t(i * 5 + (i >> 8) * 11 + 1);
    return bytes;
}

Bytes copy(const uint8_t* from, size_t size) { return {from, from + size}; }

/// A file that stands in for a custom ROM.
struct CustomRom {
    const char* name;
    int size; ///< of the file; -1: there is none, -2: it is a directory
    const char* setting;

    /// The bytes of it that an area takes.
    size_t taken(int area) const { return *setting ? size_t(std::clamp(size, 0, area)) : 0; }
};
constexpr CustomRom CUSTOM_ROMS[] = {
    {"exact", 16384, "custom.rom"},  {"short", 4096, "custom.rom"}, {"empty file", 0, "custom.rom"},
    {"longer", 20000, "custom.rom"}, {"no file", -1, "custom.rom"}, {"directory", -2, "custom.rom"},
    {"no setting", 16384, ""}};

class Memory : public HostFilesTest {
protected:
    void SetUp() override {
        HostFilesTest::SetUp();
        fake_host = {};
        firmware_forget_user_images();
        memory_set_startup_pattern(0);
        std::fill(std::begin(memory), std::end(memory), 0x99);
        std::fill(std::begin(current_eprom), std::end(current_eprom), 0x99);
    }
    void TearDown() override {
        firmware_forget_user_images();
        HostFilesTest::TearDown();
    }

    /// Replaces the seven images by ones that are filled with 11, 22, ... 77.
    static void load_marked_firmware() {
        const size_t sizes[] = {16384, 16384, 16384, 8192, 2048, 2048, 2048};
        for (size_t i = 0; i < FIRMWARE_IMAGES; ++i) {
            write_file(firmware_file_name(FirmwareImage(i)),
                       Bytes(sizes[i], uint8_t(0x11 * (i + 1))));
        }
        ASSERT_EQ(firmware_load_user_images("."), 7);
    }

    void place(const CustomRom& rom, const char* setting) const {
        std::filesystem::remove_all("custom.rom");
        if (rom.size >= 0) write_file("custom.rom", pattern(size_t(rom.size)));
        if (rom.size == -2) std::filesystem::create_directory("custom.rom");
        host->settings().set_text(setting, rom.setting);
    }
};

TEST_F(Memory, CustomBasicRomLiesOverTheFirstOne) {
    load_marked_firmware();
    for (const CustomRom& rom : CUSTOM_ROMS) {
        place(rom, "BasicROMPath");
        memory_set_basic_rom(1); // nothing of it may stay
        memory_set_basic_rom(3);
        Bytes expected(16384, 0x11);
        std::ranges::copy(pattern(rom.taken(16384)), expected.begin());
        EXPECT_EQ(copy(memory, 16384), expected) << rom.name;
        EXPECT_EQ(copy(active_rom, 16384), expected) << rom.name;
        EXPECT_EQ(memory[0x4000], 0x99) << rom.name;
    }
}

TEST_F(Memory, ExpansionRom) {
    load_marked_firmware();
    memory_set_eprom(0);
    Bytes expected(12288, 0x99);
    std::fill_n(expected.begin(), 8192, 0x44);
    EXPECT_EQ(copy(current_eprom, 12288), expected) << "the disk ROM is 8 KB of the 12";
    for (const uint32_t index : {1U, 3U}) {
        std::fill(std::begin(current_eprom), std::end(current_eprom), 0x99);
        memory_set_eprom(index);
        EXPECT_EQ(copy(current_eprom, 12288), Bytes(12288, 0xFF)) << index;
    }
    for (const CustomRom& rom : CUSTOM_ROMS) {
        place(rom, "ExpansionROMPath");
        std::fill(std::begin(current_eprom), std::end(current_eprom), 0x99);
        memory_set_eprom(2);
        expected.assign(12288, 0x99);
        std::ranges::copy(pattern(rom.taken(12288)), expected.begin());
        EXPECT_EQ(copy(current_eprom, 12288), expected) << rom.name;
    }
    EXPECT_EQ(copy(memory, 65536), Bytes(65536, 0x99));
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
}

TEST_F(Memory, DumpIsTheWholeAddressSpace) {
    const Bytes image = pattern(65536);
    std::ranges::copy(image, memory);
    write_file("memdump.bin", Bytes(70000, 1)); // an older file gives way
    mem_dump();
    EXPECT_EQ(read_file("memdump.bin"), image);
    save_binary("no/such/folder", memory, 16);
    EXPECT_EQ(memory_get_ram(), memory + 0x4000);
    EXPECT_EQ(memory_get_video_ram_ptr(), memory + 0x4000);
    EXPECT_EQ(memory_get_video_colorram(0x7FF), memory + 0xF3FF) << "1 KB, mirrored";
    EXPECT_EQ(memory_get_charram(), memory + 0xF400);
}

TEST_F(Memory, UserFirmwareOfTheRightSizeReplacesTheBuiltInOne) {
    const auto in_use = [](FirmwareImage image) {
        const auto bytes = firmware_bytes(image);
        return Bytes(bytes.begin(), bytes.end());
    };
    EXPECT_EQ(firmware_load_user_images("."), 0) << "an empty folder";
    EXPECT_EQ(firmware_load_user_images("missing"), 0);
    EXPECT_TRUE(fake_host.reports.empty()) << "a file that is not there is no news";
    const Bytes basic = in_use(FirmwareImage::basic_v1), disk = in_use(FirmwareImage::disk);
    const Bytes charset = in_use(FirmwareImage::charset_german);

    write_file("firmware/basic-v2.rom", pattern(16384));
    write_file("firmware/charset-german.rom", pattern(2049));
    write_file("firmware/disk.rom", pattern(100));
    write_file("firmware/charset-emulator.rom", {});
    std::filesystem::create_directory("firmware/basic-v1.rom");
    EXPECT_EQ(firmware_load_user_images("firmware"), 1);
    EXPECT_EQ(in_use(FirmwareImage::basic_v2), pattern(16384));
    EXPECT_EQ(in_use(FirmwareImage::basic_v1), basic);
    EXPECT_EQ(in_use(FirmwareImage::disk), disk);
    EXPECT_EQ(in_use(FirmwareImage::charset_german), charset);

    // In the order of the images; the directory's line has no sizes.
    const std::vector<std::vector<std::string>> words = {
        {"firmware/basic-v1.rom"},
        {"firmware/disk.rom", "100 ", "8192 "},
        {"firmware/charset-german.rom", "2049 ", "2048 "},
        {"firmware/charset-emulator.rom", " 0 ", "2048 "}};
    ASSERT_EQ(fake_host.reports.size(), words.size());
    for (size_t i = 0; i < words.size(); ++i) {
        for (const std::string& word : words[i]) {
            EXPECT_NE(report_line(fake_host.reports[i]).find(word), std::string::npos)
                << report_line(fake_host.reports[i]) << " lacks " << word;
        }
    }
    firmware_forget_user_images();
    EXPECT_NE(in_use(FirmwareImage::basic_v2), pattern(16384));
    EXPECT_EQ(in_use(FirmwareImage::basic_v2).size(), 16384u);
}
} // namespace
