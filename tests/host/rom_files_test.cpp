#include "host/rom_files.h"

#include "cgenie/firmware_images.h"
#include "cgenie/memory/memory.h"
#include "host/messages.h"
#include "support/host_files.h"

#include <algorithm>

namespace {
using Bytes = std::vector<uint8_t>;

Bytes pattern(size_t size) {
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i) bytes[i] = uint8_t(i * 5 + (i >> 8) * 11 + 1);
    return bytes;
}

class RomFiles : public HostFilesTest {};

TEST_F(RomFiles, TheFileThatTheSettingNamesIsReadAsFarAsItGoes) {
    struct {
        const char* name;
        int size; ///< of the file; -1: there is none, -2: it is a directory
        int found;
    } const cases[] = {{"exact", 16384, 16384},  {"short", 4096, 4096}, {"empty", 0, 0},
                       {"longer", 20000, 16384}, {"missing", -1, 0},    {"directory", -2, 0}};
    const std::pair<rom_file, const char*> settings[] = {{ROM_BASIC, "BasicROMPath"},
                                                         {ROM_EXPANSION, "ExpansionROMPath"},
                                                         {ROM_CHARACTERS, "CharROMPath"}};
    for (const auto& [which, setting] : settings) {
        Bytes area(16385, 0x99);
        EXPECT_EQ(read_rom_file(which, area.data(), 16384), ROM_NOT_NAMED) << setting;
        for (const auto& c : cases) {
            if (c.size >= 0) write_file(c.name, pattern(size_t(c.size)));
            if (c.size == -2) std::filesystem::create_directories(c.name);
            host->settings().set_text(setting, c.name);
            area.assign(16385, 0x99);
            EXPECT_EQ(read_rom_file(which, area.data(), 16384), c.found) << c.name;
            Bytes expected(16385, 0x99);
            std::ranges::copy(pattern(size_t(c.found)), expected.begin());
            EXPECT_EQ(area, expected) << setting << c.name;
        }
        host->settings().set_text(setting, "");
        EXPECT_EQ(read_rom_file(which, area.data(), 16384), ROM_NOT_NAMED) << setting;
    }
}

TEST_F(RomFiles, DumpIsTheWholeAddressSpace) {
    const Bytes image = pattern(65536);
    std::ranges::copy(image, memory);
    write_file("memdump.bin", Bytes(70000, 1)); // an older file gives way
    mem_dump();
    EXPECT_EQ(read_file("memdump.bin"), image);
    EXPECT_EQ(save_binary("no/such/folder", memory, 16), 0);
}

TEST_F(RomFiles, UserFirmwareOfTheRightSizeReplacesTheBuiltInOne) {
    const auto in_use = [](FirmwareImage image) {
        const auto bytes = firmware_bytes(image);
        return Bytes(bytes.begin(), bytes.end());
    };
    hold_message_boxes(); // forgets earlier messages
    EXPECT_EQ(firmware_load_user_images("."), 0) << "an empty folder";
    EXPECT_EQ(firmware_load_user_images("missing"), 0);
    EXPECT_TRUE(kept_messages().empty()) << "a file that is not there is no news";
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

    ASSERT_EQ(kept_messages().size(), 4U);
    EXPECT_NE(kept_messages()[0].line.find("firmware/basic-v1.rom"), std::string::npos);
    EXPECT_NE(kept_messages()[1].line.find("100 bytes found, 8192 "), std::string::npos);
    firmware_forget_user_images();
    EXPECT_NE(in_use(FirmwareImage::basic_v2), pattern(16384));
}
} // namespace
