#include "debugger/symbol_files.h"

#include "cgenie/memory/memory.h"
#include "cgenie/roms.h"
#include "core/machine.h"
#include "firmware/firmware_symbols.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

/// What the tools wrote for small programs, shortened.
std::string seed(const std::string& name) {
    return read_text(std::string(PROJECT_FOLDER "/fuzz/seeds/symbols/") + name);
}

class Symbols : public testing::Test {
protected:
    void SetUp() override { machine_init(); }
    void load(const std::string& contents) { EXPECT_EQ(load_symbols("file", contents, table), ""); }
    std::string line_of(uint16_t address) const {
        const auto line = table.line_of(address);
        return line ? line->file + ":" + std::to_string(line->line) : "";
    }
    SymbolTable table;
};

TEST_F(Symbols, Pasmo) {
    load(seed("pasmo"));
    EXPECT_EQ(table.value_of("Other_Label"), 0x8004);
    EXPECT_EQ(table.value_of("OTHER_LABEL"), 0x8004);
    EXPECT_EQ(table.name_at(0x8002), ".loop");
    EXPECT_EQ(table.near(0x8003), ".loop+1");
    EXPECT_EQ(table.near(0x8103), "Other_Label+255");
    EXPECT_EQ(table.near(0x8104), "");
    EXPECT_EQ(table.value_of("K"), 5);
    EXPECT_EQ(table.name_at(5), "") << "a number is no label";
    EXPECT_EQ(table.size(), 4U);
    load("start: equ $9000 ; of another assembler\n");
    EXPECT_EQ(table.name_at(0x8000), "") << "the program was assembled anew";
    EXPECT_EQ(table.name_at(0x9000), "start");
}

/// As the installed version of sdcc writes them.
TEST_F(Symbols, FilesBesideACProgram) {
    if (!std::filesystem::exists(C_PROGRAM ".cmd")) GTEST_SKIP() << "built without sdcc";
    std::ifstream source(C_SOURCE);
    std::string text;
    int line = 1;
    while (std::getline(source, text) && text != "int main(void) {") ++line;
    for (const char* file : {C_PROGRAM ".noi", C_PROGRAM ".cdb", C_PROGRAM ".map"}) {
        table.clear();
        EXPECT_EQ(load_symbol_file(file, table), "");
        const auto main = table.value_of("main");
        ASSERT_TRUE(main) << file;
        EXPECT_EQ(line_of(*main), "vine.c:" + std::to_string(line)) << file;
    }
}

TEST_F(Symbols, Sdcc) {
    for (const char* file : {"noi", "cdb", "map"}) {
        table.clear();
        load(seed(file));
        EXPECT_EQ(table.value_of("main"), 0x801A) << file;
        EXPECT_EQ(table.name_at(0x801A), "_main") << file;
        EXPECT_EQ(table.value_of("helper"), 0x8000) << file;
    }
    load(seed("noi"));
    EXPECT_EQ(table.name_at(0x8000), "helper") << "and not that of the area";
    EXPECT_EQ(table.value_of("l__CODE"), 0x31);
    load(seed("cdb"));
    EXPECT_EQ(table.value_of("helper.kept"), 0x9001);
    EXPECT_EQ(line_of(0x8000), "h.c:4");
    EXPECT_EQ(line_of(0x8006), "h.c:6");
    EXPECT_EQ(line_of(0xA001), "start.asm:7");
    EXPECT_EQ(line_of(0x7FFF), "");
    EXPECT_EQ(table.line_at(0x8001), (SourceLine{"h.c", 6}));
    EXPECT_FALSE(table.line_at(0x8002));
    EXPECT_EQ(table.address_of("src/H.C", 5), 0x8001) << "the next line that has code";
    EXPECT_FALSE(table.address_of("h.c", 7));
}

TEST_F(Symbols, Z88dk) {
    load(seed("z88dk"));
    EXPECT_EQ(table.name_at(0x801A), "_main");
    EXPECT_EQ(table.value_of("char_bell"), 7);
    EXPECT_EQ(table.name_at(0x8000), "");
    EXPECT_EQ(line_of(0x8021), "h.c:11");
    EXPECT_EQ(table.address_of("h.c", 9), 0x801A);
    load("main                            = 8003, G: test\n");
    EXPECT_EQ(table.value_of("main"), 0x8003);
}

TEST_F(Symbols, WhatIsDamagedIsRefusedAsAWhole) {
    const std::string noi = seed("noi"), map = seed("map"), image(100, '\0');
    const std::string other = "f: line 11 is not of the kind of those before it";
    const struct {
        std::string contents, problem;
    } cases[] = {
        {noi + "DEF x\n", other},
        {noi + "DEF x 0x12G\n", other},
        {noi + "x EQU 5\n", other},
        {noi + "DEF " + std::string(201, 'x') + " 0x1\n", other},
        {noi + "DEF x 0x1\x01\n", "f: line 11 is no text"},
        {std::string(map).replace(map.find("  _main"), 2, "x"),
         "f: line 9 is not of the kind of those before it"},
        {"; nothing\n", "f: it has no symbols"},
        {"10 PRINT 5\n", "f: no symbol file of pasmo, sdcc or z88dk"},
        {image, "f: line 1 is no text"},
        {std::string(LARGEST_SYMBOL_FILE + 1, ' '), "f: it is too large"},
    };
    for (const auto& [contents, problem] : cases) {
        EXPECT_EQ(load_symbols("f", contents, table), problem);
        EXPECT_EQ(table.size(), 0U);
        EXPECT_FALSE(table.line_at(0x8000));
    }
}

TEST_F(Symbols, OfTheFirmwareWhileItsRomIsThere) {
    // What docs/reference.html tells programmers.
    EXPECT_EQ(table.value_of("key_entry"), 0x002B);
    EXPECT_EQ(table.value_of("usr_address"), 0x408E);
    EXPECT_EQ(table.name_at(0x40A4), "PROGRAM_START");
    EXPECT_EQ(table.name_at(0xF000), "COLOUR_RAM");
    EXPECT_EQ(table.value_of("LATCH"), std::nullopt) << "a port is no address";
    EXPECT_EQ(table.near(0x0062), "delay+2");
    // All names of all images, against what pasmo wrote; the entries have no label there.
    size_t checked = 0;
    const char* const images[] = {"basic_v1", "basic_v2", "basic_v2sn", "disk"};
    for (unsigned n = 0; n < 4; ++n) {
        SymbolTable pasmo;
        ASSERT_EQ(load_symbol_file(FIRMWARE_FOLDER + std::string(images[n]) + ".sym", pasmo), "");
        for (const firmware_symbol& symbol : firmware_symbols) {
            const auto there = pasmo.users().find(symbol.name);
            if (!(symbol.images & 1U << n) || there == pasmo.users().end()) continue;
            EXPECT_EQ(there->second.value, symbol.address) << symbol.name;
            ++checked;
        }
    }
    EXPECT_GT(checked, 2000U);
    memory_set_basic_rom(1);
    memory_set_eprom(0);
    EXPECT_EQ(table.value_of("LAST_ROW"), std::nullopt);
    EXPECT_EQ(table.name_at(0x3BBC), "cold_start");
    // A name of the user's goes before them, and another ROM has none.
    table.add({"usr_address", 0x9000});
    table.add({"mine", 0x002B});
    EXPECT_EQ(table.value_of("usr_address"), 0x9000);
    EXPECT_EQ(table.name_at(0x002B), "mine");
    EXPECT_EQ(table.names("USR_A", 9), (std::vector<std::string>{"usr_address", "USR_ADDRESS"}));
    active_rom[5] ^= 1;
    EXPECT_FALSE(table.value_of("key_entry"));
    EXPECT_EQ(table.name_at(0xC002), "DISK_START") << "the disk ROM has its own";
    current_eprom[5] ^= 1;
    EXPECT_EQ(table.name_at(0xC002), "");
}

TEST_F(Symbols, TheFileBesideAProgramThatTellsMostIsFound) {
    const std::string folder = TEST_BINARY_DIR "/beside";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    EXPECT_EQ(symbol_file_beside(folder + "/game.cmd"), "");
    for (const char* name : {"/game.sym", "/game.cdb", "/GAME.MAP", "/game.noi"}) {
        std::ofstream(folder + name) << "start EQU 9000H\n";
        EXPECT_EQ(symbol_file_beside(folder + "/game.cmd"), folder + name);
    }
    EXPECT_EQ(load_symbol_file(folder + "/game.noi", table), "") << "told by its contents";
    EXPECT_EQ(table.value_of("start"), 0x9000);
    EXPECT_EQ(load_symbol_file(folder, table), folder + ": it cannot be read");
}

} // namespace
