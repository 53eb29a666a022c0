// The disassembler against an assembler, and texts written out.

#include "z80/disassembler.h"

#include "support/flat_bus.h"
#include "support/test_files.h"
#include "z80/processor_setup.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <regex>
#include <sstream>

namespace {

struct Listed {
    std::string line;
    int next;
    std::string mnemonic() const { return line.substr(18); }
};

Listed listed(uint16_t address) {
    char line[DISASSEMBLY_LINE];
    const uint16_t next = disassemble(address, line);
    return {line, next};
}

Listed listed(const std::vector<int>& bytes) {
    flat_bus.clear();
    z80_state.pc = 0x1000;
    put_code(bytes);
    flat_bus.record = true;
    return listed(0x1000);
}

/// Every opcode behind every prefix, with operands.
std::vector<std::vector<int>> all_instructions() {
    std::vector<std::vector<int>> all;
    for (int op = 0; op < 256; ++op) {
        const bool is_prefix = op == 0xCB || op == 0xDD || op == 0xED || op == 0xFD;
        if (!is_prefix) all.push_back({op, 0xF4, 0x92});
        all.push_back({0xCB, op});
        all.push_back({0xED, op, 0xF4, 0x92});
        for (const int prefix : {0xDD, 0xFD}) {
            if (op != 0xCB) all.push_back({prefix, op, 0xF4, 0x92});
            all.push_back({prefix, 0xCB, 0xF4, op});
        }
    }
    return all;
}

/// As the assembler wants it.
std::string assembler_text(const std::string& mnemonic) {
    std::string text = std::regex_replace(mnemonic, std::regex("\\b([0-9a-f]+h)\\b"), "0$1");
    text = std::regex_replace(text, std::regex("^slia "), "sll ");
    return std::regex_replace(text, std::regex("^sbc (i[xy][hl])"), "sbc a,$1");
}

TEST(Disassembler, AssemblesToTheSameBytes) {
    // What the assembler has no words for: checked by the other tests.
    const std::regex unknown("undefined|undoc equiv|emulator trap|emt_|^in \\(c\\)|^out "
                             "\\(c\\),0|^ld .,(r|s)[a-z]+ ");
    flat_bus.clear();
    std::string source = " org 0\n";
    std::vector<std::string> lines;
    std::vector<int> starts;
    uint16_t end = 0;
    for (const auto& code : all_instructions()) {
        z80_state.pc = end;
        put_code(code);
        const Listed shown = listed(end);
        if (std::regex_search(shown.mnemonic(), unknown)) continue;
        source += " " + assembler_text(shown.mnemonic()) + "\n";
        lines.push_back(shown.line);
        starts.push_back(end);
        end = uint16_t(shown.next);
    }
    starts.push_back(end);
    EXPECT_EQ(lines.size(), 252U + 256 + 56 + 2 * (85 + 4 * 8));

    const Folder folder;
    const std::string path = folder / "all";
    write_text(path + ".asm", source);
    const std::string command =
        std::string(PASMO_PROGRAM) + " --bin " + path + ".asm " + path + ".bin";
    ASSERT_EQ(std::system(command.c_str()), 0);
    const std::vector<uint8_t> bytes = read_file(path + ".bin");
    ASSERT_EQ(bytes.size(), size_t{end});
    for (size_t n = 0; n < lines.size(); ++n) {
        for (int at = starts[n]; at < starts[n + 1]; ++at) {
            EXPECT_EQ(flat_bus.memory[size_t(at)], bytes[size_t(at)]) << lines[n];
        }
    }
}

TEST(Disassembler, TextsThatNoRuleGives) {
    std::ifstream cases(TEST_SOURCE_DIR "/disassembled.txt");
    int count = 0;
    for (std::string line; std::getline(cases, line); ++count) {
        if (line[0] == '#') continue;
        std::istringstream code(line.substr(0, 12));
        std::vector<int> all;
        for (int byte; code >> std::hex >> byte;) all.push_back(byte);
        const int length = line[14] - '0';
        const std::string mnemonic =
            std::regex_replace(line.substr(18), std::regex(R"(\\t)"), "\t");
        const Listed shown = listed(all);
        std::string bytes = hex_bytes({all.begin(), all.begin() + length});
        bytes.resize(12, ' ');
        EXPECT_EQ(shown.line, " 1000 " + bytes + mnemonic);
        EXPECT_EQ(shown.next, 0x1000 + length) << mnemonic;
        const int reach = length == 1 && all.size() > 1 ? 2 : length; // behind a lone prefix
        for (const auto& event : flat_bus.events) EXPECT_LT(event.address, 0x1000 + reach) << line;
    }
    EXPECT_GT(count, 20);
    const std::string registers = "bcdehl?a";
    for (int op = 0; op < 256; ++op) { // the copies are the memory forms with a load before them
        if (op >> 6 == 1 || (op & 7) == 6) continue;
        const std::string memory = listed({0xDD, 0xCB, 0x11, (op & 0xF8) | 6}).mnemonic();
        EXPECT_EQ(listed({0xDD, 0xCB, 0x11, op}).mnemonic(),
                  std::string("ld ") + registers[size_t(op & 7)] + "," + memory);
    }
}

TEST(Disassembler, WrapsAndListsTheWholeMemory) {
    flat_bus.clear();
    flat_bus.wait_cycles = 1;
    flat_bus.memory[0xFFFE] = 0xDD;
    flat_bus.memory[0xFFFF] = 0x36;
    flat_bus.memory[0x0001] = 0xC9;
    z80_state.t_count = 1000;
    EXPECT_EQ(listed(0xFFFE).line, " FFFE DD 36 00 C9 ld (ix+00h),c9h");
    EXPECT_EQ(listed(0xFFFE).next, 2);
    EXPECT_EQ(z80_state.t_count, 1000) << "looking takes no time";
    flat_bus.load(0xFFF0, {0x18, 0x7F});
    EXPECT_EQ(listed(0xFFF0).mnemonic(), "jr 0071h");
    flat_bus.load(0xFFF0, {0x00, 0x00});
    for (const bool crosses : {true, false}) {
        if (!crosses) flat_bus.memory[0xFFFE] = flat_bus.memory[0xFFFF] = 0;
        const std::string text = disassembly_listing();
        EXPECT_TRUE(text.starts_with(". 0000h     0000 00          nop\n"
                                     ". 0001h     0001 C9          ret\n"));
        const std::string last = crosses ? ". FFFEh     FFFE DD 36 00 C9 ld (ix+00h),c9h\n"
                                         : ". FFFFh     FFFF 00          nop\n";
        EXPECT_TRUE(text.ends_with(last));
        EXPECT_EQ(std::ranges::count(text, '\n'), crosses ? 65535 : 65536);
    }
}

TEST(Disassembler, RegisterLines) {
    static_cast<z80_registers&>(z80_state) = {0x1245, 0x3456, 0x789A, 0xBCDE, 0x0001, 0xF00F,
                                              0x0042, 0xCAFE, 0,      0,      0,      0,
                                              0x0A,   0x7F,   0,      0,      0};
    z80_state.t_count = 12345678901;
    z80_state.breakpoint = 0x60;
    char line[DISASSEMBLY_LINE];
    const char* lines[4] = {"AF:1245,BC:3456,DE:789A,HL:BCDE,IP:CAFE,R:7F|SZ-H-PNC",
                            "IX:0001,IY:F00F,SP:42,I:0A,BP:0060(OFF),FL:01000101",
                            "TCOUNT:000000000000012345678901",
                            "IX:0001,IY:F00F,SP:42,I:0A,BP:0060(ON ),FL:01000101"};
    for (int n = 0; n < 4; ++n) {
        z80_state.breakpoint_enabled = n == 3;
        regdump(line, n == 3 ? 1 : n);
        EXPECT_STREQ(line, lines[n]);
    }
}

} // namespace
