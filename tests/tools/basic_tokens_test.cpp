#include "media/basic/basic_tokens.h"

#include "cgenie/memory/memory.h"
#include "support/basic_machine.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <random>

namespace {

constexpr unsigned PROGRAM_START = 0x5801, PROGRAM_END = 0x40F9;

unsigned word_at(unsigned address) { return memory[address] + 256u * memory[address + 1]; }

std::string hexadecimal(const uint8_t* bytes, size_t count) {
    std::string text;
    char digits[4];
    for (size_t i = 0; i < count; ++i) {
        std::snprintf(digits, sizeof digits, "%02X ", bytes[i]);
        text += digits;
        if (bytes[i] == 0) text += '\n';
    }
    return text;
}

/// Lines that a tokenizer may get wrong: every word, words within words, and what is no word.
TEST(BasicTokensTest, AreWhatTheMachineMakesOfTypedLines) {
    const std::string listing = read_text(TEST_SOURCE_DIR "/tricky_lines.txt");
    ASSERT_FALSE(listing.empty());
    BasicMachine machine;
    machine.boot(0, trial_rom());
    machine.type("NEW\n" + listing);
    BasicProblem problem;
    const auto file = basic_encode(listing, problem, LONGEST_BASIC_LINE);
    ASSERT_TRUE(file) << problem.line << problem.text;
    const std::string expected =
        hexadecimal(memory + PROGRAM_START, word_at(PROGRAM_END) - PROGRAM_START);
    EXPECT_EQ(hexadecimal(file->data() + 1, file->size() - 1), expected);
    EXPECT_EQ(basic_encode(*basic_decode(*file, problem), problem, LONGEST_BASIC_LINE), file);
}

TEST(BasicTokensTest, LinesAreKeptInOrderAndReplaced) {
    BasicProblem problem;
    const auto file = basic_encode("20 B\r\n10 A\n\n30 X\n20 C\r30\n RUN \n\n", problem);
    ASSERT_TRUE(file);
    const BasicBytes expected{0xFF, 0x07, 0x58, 10, 0, 'A', 0, 0x0D, 0x58, 20, 0, 'C', 0, 0, 0};
    EXPECT_EQ(*file, expected);
    EXPECT_EQ(basic_decode(*file, problem), "10 A\n20 C\n");
}

/// Whatever stands in the lines, the text of a program gives the program again.
TEST(BasicTokensTest, AnyProgramComesBackFromItsText) {
    std::mt19937 random(1);
    constexpr std::array<uint8_t, 24> TRICKY{'A',  'B',  'N',  'D',  'T',  'O',  'R',  ' ',
                                             '"',  ':',  '1',  '&',  'H',  '\'', '?',  '\\',
                                             0x5B, 0x5E, 0x95, 0x93, 0xFB, 0x88, 0xFF, 0x81};
    for (unsigned round = 0; round < 400; ++round) {
        BasicBytes file{0xFF};
        for (unsigned number = 0; number < 5; ++number) {
            BasicBytes text(1 + random() % 20);
            for (uint8_t& byte : text)
                byte =
                    random() % 3 ? TRICKY[random() % TRICKY.size()] : uint8_t(1 + random() % 255);
            const size_t next = 0x5800 + file.size() + 4 + text.size() + 1;
            file.insert(file.end(), {uint8_t(next), uint8_t(next >> 8), uint8_t(number), 2});
            file.insert(file.end(), text.begin(), text.end());
            file.push_back(0);
        }
        file.insert(file.end(), {0, 0});
        BasicProblem problem;
        const auto text = basic_decode(file, problem);
        ASSERT_TRUE(text) << problem.text;
        EXPECT_EQ(basic_encode(*text, problem), file) << *text;
    }
}

/// Letters that read as words, in a line longer than any that was typed: looked at afresh for every
/// letter, it would take minutes.
TEST(BasicTokensTest, LongLineOfFalseWordsComesBackSoon) {
    constexpr size_t LETTERS = 4000;
    constexpr size_t NEXT = 0x5801 + 4 + LETTERS + 1;
    BasicBytes file{0xFF, uint8_t(NEXT & 0xFF), uint8_t(NEXT >> 8), 10, 0};
    for (size_t n = 0; n < LETTERS; ++n) file.push_back(n % 2 ? 'F' : 'I');
    file.insert(file.end(), {0, 0, 0});
    BasicProblem problem;
    const auto start = std::chrono::steady_clock::now();
    const auto text = basic_decode(file, problem);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    ASSERT_TRUE(text) << problem.text;
    EXPECT_EQ(basic_encode(*text, problem), file);
}

TEST(BasicTokensTest, FaultsAreNamed) {
    BasicProblem problem;
    const std::string long_line = "1 REM" + std::string(30000, 'X');
    const struct {
        std::string text;
        unsigned line;
        const char* message;
    } texts[] = {{"10 A\nPRINT\n", 2, "no line number"},
                 {"RUN\n10 A\n", 1, "no line number"},
                 {"10 A\n\n65530 B\n", 3, "line number above 65529"},
                 {"10 \"\xC3\xA4\"", 1, "byte C3 is not ASCII text, write it as \\xC3"},
                 {"10 \\x00", 1, "a line cannot hold the byte 00"},
                 {"10 A\n" + long_line.substr(0, 241), 2,
                  "a line of 241 characters, of which the machine takes 240"},
                 {long_line, 0, "the program is too long for the memory"}};
    for (const auto& text : texts) {
        const size_t longest = text.line ? LONGEST_BASIC_LINE : SIZE_MAX;
        EXPECT_FALSE(basic_encode(text.text, problem, longest)) << text.message;
        EXPECT_EQ(problem.line, text.line) << text.message;
        EXPECT_EQ(problem.text, text.message);
    }
    const BasicBytes files[] = {
        {}, {0x00, 0x00}, {0xFF}, {0xFF, 1, 0x58, 10, 0, 'A'}, {0xFF, 1, 0x58, 0xFA, 0xFF, 0}};
    for (const auto& file : files) EXPECT_FALSE(basic_decode(file, problem)) << file.size();
    EXPECT_EQ(problem.text, "line number above 65529");
}

TEST(BasProgramTest, ConvertsFilesAndKeepsWhatIsThereOnFailure) {
    const Folder folder;
    const auto run = [&](const std::string& arguments) {
        const std::string line =
            "cd '" + folder.path().string() + "' && '" BAS_PROGRAM "' " + arguments + " >out 2>err";
        return std::system(line.c_str()) / 256;
    };
    write_text(folder / "in.bas", "20 goto10\n10 print\"HI\\x81\"\nRUN\n");
    write_text(folder / "bad.bas", "10 A\nB\n");
    write_text(folder / "long.bas", "10 REM" + std::string(300, 'X') + "\n");
    EXPECT_EQ(run("encode long.bas long"), 1);
    EXPECT_EQ(run("encode --long-lines long.bas long"), 0);
    EXPECT_EQ(run("encode in.bas tokens"), 0);
    EXPECT_EQ(run("decode tokens text"), 0);
    EXPECT_EQ(read_text(folder / "text"), "10 PRINT\"HI\\x81\"\n20 GOTO10\n");
    EXPECT_EQ(run("encode - - <text"), 0);
    EXPECT_EQ(read_text(folder / "out"), read_text(folder / "tokens"));

    const std::string kept = read_text(folder / "tokens");
    EXPECT_EQ(run("encode bad.bas tokens"), 1);
    EXPECT_EQ(read_text(folder / "err"), "tarvelin-bas: bad.bas:2: no line number\n");
    EXPECT_EQ(read_text(folder / "tokens"), kept);
    EXPECT_EQ(run("decode text tokens"), 1);
    EXPECT_EQ(run("encode missing tokens"), 1);
    EXPECT_EQ(run("encode in.bas missing/tokens"), 1);
    for (const char* wrong : {"encode in.bas", "code in.bas tokens", "encode --no in.bas tokens"})
        EXPECT_EQ(run(wrong), 2) << wrong;
    EXPECT_EQ(run("encode in.bas text"), 1);
    EXPECT_EQ(read_text(folder / "err"), "tarvelin-bas: text exists; --force replaces it\n");
    std::filesystem::create_symlink("text", folder / "link");
    EXPECT_EQ(run("encode --force -- in.bas link"), 0);
    EXPECT_EQ(read_text(folder / "text"), kept);
    for (const char* endless : {"encode /dev/zero x", "encode - x </dev/zero"})
        EXPECT_EQ(run(endless), 1) << endless;
    EXPECT_EQ(run("--help"), 0);
    EXPECT_EQ(read_text(folder / "out").substr(0, 6), "usage:");
}

} // namespace
