#include "host/rom_files.h"

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

} // namespace
