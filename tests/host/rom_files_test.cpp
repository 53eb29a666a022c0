#include "host/rom_files.h"

#include "cgenie/firmware_images.h"
#include "files/file_names.h"
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

TEST_F(RomFiles, FourChipsAreOneRomAndNamesHaveAnyCase) {
    for (const int n : {0, 1, 2, 3}) {
        Bytes chip = pattern(4096);
        chip[0] = uint8_t(n);
        write_file(n % 2 ? "ROM" + std::to_string(n) + ".BIN" : "rom" + std::to_string(n) + ".bin",
                   chip);
    }
    std::filesystem::create_directories("firmware");
    write_file("firmware/Charset-German.ROM", pattern(2048));
    EXPECT_EQ(firmware_load_user_images("firmware"), 1);
    firmware_forget_user_images();
    const std::pair<const char*, int> chosen[] = {
        {"rom0.bin", 16384}, {"ROM1.BIN", 4096}, {"rom2.bin", 4096}}; // there is no rom4
    for (const auto& [name, count] : chosen) {
        host->settings().set_text("BasicROMPath", name);
        Bytes rom(16384);
        EXPECT_EQ(read_rom_file(ROM_BASIC, rom.data(), rom.size()), count) << name;
        for (size_t n = 0; count > 4096 && n < 4; ++n) EXPECT_EQ(rom[n * 4096], n);
        EXPECT_EQ(read_rom_file(ROM_EXPANSION, rom.data(), rom.size()), ROM_NOT_NAMED);
    }
    write_file("ROM3.BIN", pattern(4095));
    host->settings().set_text("BasicROMPath", "rom0.bin");
    Bytes rom(16384);
    EXPECT_EQ(read_rom_file(ROM_BASIC, rom.data(), rom.size()), 4096);
    const auto told = std::ranges::count_if(kept_messages(), [](const KeptMessage& message) {
        return lower_case(message.line).find(".bin: its cassette") != std::string::npos;
    });
    EXPECT_EQ(told, 3) << "once for each file";
}

} // namespace
