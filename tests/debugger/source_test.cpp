#include "debugger/source.h"

#include "cgenie/memory/memory.h"
#include "cgenie/roms.h"
#include "core/machine.h"
#include "debugger/peek.h"
#include "debugger/symbol_files.h"
#include "media/cmd_loader.h"
#include "media/program_outline.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

namespace {

class Source : public testing::Test {
protected:
    void SetUp() override { machine_init(); }

    /// The source; pasmo must make the bytes in memory of it.
    std::string round_trip(uint16_t first, uint16_t last, std::vector<uint16_t> entries = {}) {
        const std::string source = source_text(first, last, symbols, entries);
        const Folder folder;
        const std::string path = folder / "source";
        write_text(path + ".asm", source);
        const std::string command = std::string(PASMO_PROGRAM) + " --bin " + path + ".asm " + path +
                                    ".bin " + path + ".sym >" + path + ".log 2>&1";
        EXPECT_EQ(std::system(command.c_str()), 0)
            << read_text(path + ".log") << source.substr(0, 500);
        const std::vector<uint8_t> bytes = read_file(path + ".bin");
        EXPECT_EQ(bytes.size(), size_t(last - first + 1));
        for (size_t n = 0; n < bytes.size(); ++n) {
            const auto address = uint16_t(first + n);
            if (bytes[n] != debug_peek(address)) return ADD_FAILURE() << address, source;
        }
        return source;
    }
    static size_t count(const std::string& text, const std::string& word) {
        size_t found = 0;
        for (size_t at = 0; (at = text.find(word, at)) != std::string::npos; ++at) ++found;
        return found;
    }

    SymbolTable symbols;
};

TEST_F(Source, OfTheFirmware) {
    memory_set_eprom(0);
    const std::string basic = round_trip(0x0000, 0x3FFF);
    EXPECT_NE(basic.find("cold_start:\n"), std::string::npos);
    EXPECT_GT(count(basic, "\n        call "), 700U) << "most of it is code";
    EXPECT_LT(count(basic, "\n        defb "), 1500U);
    const std::string disk = round_trip(0xC000, 0xDFFF);
    EXPECT_GT(count(disk, "\n        call "), 450U);
    EXPECT_NE(disk.find("PROGRAM_START    equ 040a4h\n"), std::string::npos);
}

TEST_F(Source, OfTheExamples) {
    for (const char* name : {"bounce", "colours", "sticks", "tune"}) {
        const std::string path = std::string(EXAMPLES_FOLDER) + name;
        symbols.clear();
        ASSERT_EQ(load_symbol_file(symbol_file_beside(path + ".cmd"), symbols), "");
        const std::vector<uint8_t> module = read_file(path + ".cmd");
        uint16_t entry = 0;
        ASSERT_EQ(load_cmd(module, &entry), 1) << name;
        const ProgramOutline outline = load_module_outline(module);
        const std::string source = round_trip(outline.lowest, outline.highest, {entry});
        EXPECT_EQ(count(source, "stmt_"), 0U) << "data is not taken for code that calls BASIC";
        EXPECT_GT(count(source, "\n        ld "), 50U) << name;
    }
    const std::vector<uint8_t> boot = read_file(std::string(EXAMPLES_FOLDER) + "bootdisk.bin");
    std::copy(boot.begin(), boot.end(), memory + 0x5700);
    round_trip(0x5700, uint16_t(0x56FF + boot.size()), {0x5700});
}

TEST_F(Source, OfRandomBytes) {
    for (unsigned seed = 1; seed <= 5; ++seed) {
        std::mt19937 random(seed);
        for (unsigned n = 0; n < 0x10000; ++n) memory[n] = uint8_t(random());
        memory[0] = 0x18; // jr FF82, which assemblers refuse
        memory[1] = 0x80;
        symbols.add({"ld", uint16_t(random())});
        symbols.add({"_main", uint16_t(0x4000 + seed)});
        symbols.add({"L4000", uint16_t(0x5000 + seed)});
        std::vector<uint16_t> entries;
        for (int n = 0; n < 2000; ++n) entries.push_back(uint16_t(random()));
        round_trip(0x0000, 0xFFFF, entries);
        round_trip(0x4001, 0x4001 + seed, {0x4001});
    }
}

TEST_F(Source, CodeIsToldFromData) {
    const std::vector<uint8_t> program = {0x21, 0x16, 0x80,       // ld hl,text
                                          0xCD, 0x0C, 0x80,       // call 800C
                                          0xED, 0x63, 0x17, 0x80, // ld (text+1),hl in four bytes
                                          0x18, 0xF6, // jr 8002: the midst of the first one
                                          0xCB, 0x37, // sll a
                                          0xDD, 0x36, 0xFE, 0x05, // ld (ix-2),5
                                          0x32, 0x00, 0x90,       // ld (9000h),a
                                          0xC9,                   // ret
                                          'T',  'E',  'X',  'T',  1, 2};
    std::copy(program.begin(), program.end(), memory + 0x8000);
    symbols.add({"start", 0x8000});
    symbols.add({"text", 0x8016});
    symbols.add({"inner", 0x8004});
    symbols.add({"MEMORY", 0x9000});
    EXPECT_EQ(round_trip(0x8000, 0x801B, {0x8000}), R"(; 8000-801B, as it is in memory

MEMORY           equ 09000h
inner            equ 08004h

        org 08000h
start:
        ld hl,text
        call L800C
        defb 0edh,063h,017h,080h ; ld (8017h),hl
        jr start+2

L800C:
        defb 0cbh,037h ; slia a
        ld (ix-2),5
        ld (MEMORY),a
        ret

text:
        defm 'TEXT'
        defb 1,2
)");
}

} // namespace
