/// Whatever is typed or stands in a program, BREAK or the reset key brings the prompt back, and the
/// reset key keeps the program; on all models, without and with the disk ROM and a disk. The normal
/// run is short; BASIC_SOAK=<hours of the machine> in the environment makes it longer and
/// BASIC_SOAK_SEED another one.

#include "cgenie/memory/memory.h"
#include "cgenie/typing/typing.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "media/files/drive_files.h"
#include "media/traps.h"
#include "support/basic_machine.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <random>

namespace {

constexpr unsigned PROGRAM_START = 0x5801, PROGRAM_END = 0x40F9;
constexpr int BURST_FRAMES = 150, KEY_FRAMES = 12, PROMPT_FRAMES = 150;
constexpr double FRAMES_PER_HOUR = 50.0 * 3600;
constexpr const char* DISK = TEST_BINARY_DIR "/soak.dsk";

/// Tokens of words that may write over the system, or wait for a cassette: POKE OUT SYSTEM CLOAD
/// CSAVE USR, and CALL and VERIFY behind FF.
constexpr uint8_t DANGEROUS[] = {0xB1, 0xA0, 0xAE, 0xB9, 0xBA, 0xC1};
/// Of words that change a program in which they stand: RENUM EDIT LOAD MERGE DELETE NEW RUN.
constexpr uint8_t CHANGING[] = {0x93, 0x9D, 0xA7, 0xA8, 0xB6, 0xBB, 0x8E};
constexpr uint8_t TWO_BYTE_CALL = 0x96, TWO_BYTE_VERIFY = 0x97;

// Without the words that may write over the system, and those that wait for a cassette.
constexpr const char* WORDS[] = {
    "END", "FOR", "RESET", "SET", "CLS", "CMD", "RANDOM", "NEXT", "DATA", "INPUT", "DIM", "READ",
    "LET", "GOTO", "RUN", "IF", "RESTORE", "GOSUB", "RETURN", "REM", "STOP", "ELSE", "TRON",
    "TROFF", "DEFSTR", "DEFINT", "DEFSNG", "DEFDBL", "LINE", "EDIT", "ERROR", "RESUME", "ON",
    "OPEN", "FIELD", "GET", "PUT", "CLOSE", "LOAD", "MERGE", "NAME", "KILL", "LSET", "RSET", "SAVE",
    "LPRINT", "DEF", "PRINT", "CONT", "LIST", "LLIST", "DELETE", "AUTO", "CLEAR", "NEW", "TAB(",
    "TO", "FN", "USING", "VARPTR", "ERL", "ERR", "STRING$(", "INSTR(", "POINT(", "TIME$", "MEM",
    "INKEY$", "THEN", "NOT", "STEP", "AND", "OR", "SGN(", "INT(", "ABS(", "FRE(", "INP(", "POS(",
    "SQR(", "RND(", "LOG(", "EXP(", "COS(", "SIN(", "TAN(", "ATN(", "PEEK(", "CVI(", "MKI$(",
    "CINT(", "CSNG(", "CDBL(", "FIX(", "LEN(", "STR$(", "VAL(", "ASC(", "CHR$(", "LEFT$(",
    "RIGHT$(", "MID$(", "COLOUR", "FCOLOUR", "KEYPAD1", "JOY1X", "PLOT", "FGR", "LGR", "FCLS",
    "PLAY", "CIRCLE", "SCALE", "SHAPE", "NSHAPE", "XSHAPE", "PAINT", "CPOINT(", "NPLOT", "SOUND",
    "CHAR", "RENUM", "SWAP", "FKEY", "BGRD", "NBGRD", "A", "B$", "C%", "D#", "E(", "F$(", "Z9", "I",
    "I=1TO9", "&H", "1E", "1D-", "\"", "\"X\"", ".", ",", ";", ":", ":", ":", "(", ")", ")", "+",
    "-", "*", "/", "^", "=", "<", ">", "'", "@", "#", "##.##", "!", "%", "$", "?", " ", "0", "1",
    "2", "3", "9", "10", "20", "255", "256", "32767", "65535", "1E38", "-1",
    // Whole statements, so that more than their syntax is reached.
    "DEF FNA(X,B$)=X*2+LEN(B$):", "FNA(3,\"AB\")",
    "DEFUSR3=0:", "MID$(B$,2,1)=\"Z\":", "OPEN\"R\",1,\"X\":", "OPEN\"O\",2,\"T\":",
    "OPEN\"I\",2,\"T\":", "FIELD 1,9 AS B$,200 AS F$(1):", "LSET B$=STR$(I):", "RSET F$(1)=B$:",
    "PUT 1,I:", "GET 1:", "PRINT#2,B$;I:", "INPUT#2,B$:", "PRINT#-1,A,B$:", "INPUT#-1,A,B$:",
    "SAVE\"P\",A:", "MERGE\"P\":", "LOAD\"P\":", "KILL\"X\":", "FORI=1TO300:F$(I)=STR$(I):NEXT:",
    "DIM F$(400):", "CLEAR 2000:", "?FRE(B$):", "&O17", "CLOSE:"};

double number_of(const char* variable, double otherwise) {
    const char* text = std::getenv(variable);
    return text ? std::atof(text) : otherwise;
}

class Soak {
public:
    Soak(int slot, bool disk) : disk_(disk) {
        random_.seed(unsigned(number_of("BASIC_SOAK_SEED", 1)) * 6 + unsigned(slot * 2 + disk));
        if (disk) {
            write_file(DISK, std::vector<uint8_t>(40 * 10 * 256, 0xE5));
            machine_cfg[slot].expansion_rom = 0;
            EXPECT_EQ(diskimg_attach(0, DISK), 1);
        }
        machine_.boot(slot, trial_rom());
        if (disk) machine_.type("FORMAT 0\nY\n");
    }
    ~Soak() {
        if (disk_) diskimg_detach(0, false);
    }

    void burst() {
        const unsigned kind = random_() % 8;
        typed_ = kind < 5 ? soup() : kind < 7 ? noise() : tokens();
        machine_.type(typed_, BURST_FRAMES);
        frames_ += machine_.frames();
        keyboard_type_reset();
        memory_remove_bas_trap();
        press_break();
        if (!answers()) {
            ++resets_;
            reset();
            EXPECT_TRUE(answers()) << "the reset key does not bring the prompt back" << report();
        }
        EXPECT_EQ(broken_link(), 0u) << "the program is damaged" << report();
    }
    /// The reset key at any moment, but for those in which the program changes.
    void reset_keeps_program() {
        const auto before = program();
        const bool changes = std::ranges::any_of(before, [](uint8_t byte) {
            return std::ranges::find(CHANGING, byte) != std::end(CHANGING);
        });
        typed_ = direct_lines() + (changes ? "LIST\n" : "RUN\n");
        machine_.type(typed_, int(random_() % 40));
        keyboard_type_reset();
        memory_remove_bas_trap();
        reset();
        EXPECT_TRUE(answers()) << report();
        EXPECT_EQ(program(), before) << "the reset key changed the program" << report();
    }
    int resets() const { return resets_; }
    int64_t frames() const { return frames_; }

private:
    std::string line_of_words() {
        std::string text;
        for (unsigned words = 1 + random_() % 12; words > 0; --words)
            text += WORDS[random_() % std::size(WORDS)];
        return text + '\n';
    }
    std::string soup() {
        std::string text;
        for (unsigned lines = 1 + random_() % 6; lines > 0; --lines) {
            if (random_() % 2) text += std::to_string(random_() % 8 * 10) + " ";
            text += line_of_words();
        }
        if (random_() % 2) text += "RUN\n";
        return text;
    }
    std::string direct_lines() {
        std::string text;
        for (unsigned lines = 1 + random_() % 4; lines > 0; --lines) text += line_of_words();
        for (const char* word : {"NEW", "DELETE", "RENUM", "AUTO", "EDIT", "LOAD", "MERGE", "RUN"})
            if (text.find(word) != std::string::npos) text.clear();
        for (size_t at = 0; at < text.size(); at = text.find('\n', at) + 1)
            if (std::isdigit(text[at]) || text[at] == ' ' || text[at] == '@') text.insert(at, ":");
        return text;
    }
    std::string noise() {
        std::string text;
        for (unsigned count = 1 + random_() % 300; count > 0; --count)
            text += random_() % 12 ? char(' ' + random_() % 95) : '\n';
        // A word that writes into the system may come about by chance as well.
        for (const char* word :
             {"POKE", "OUT", "CALL", "USR", "SYSTEM", "CLOAD", "CSAVE", "VERIFY"})
            if (text.find(word) != std::string::npos) text.clear();
        return text + "\n";
    }
    /// A program of any bytes, as a file may bring it in, and what is done with it.
    std::string tokens() {
        unsigned at = PROGRAM_START;
        for (unsigned line = 1 + random_() % 20; line > 0; --line) {
            const unsigned start = at;
            put_word(at + 2, line_number_ = uint16_t(line_number_ + random_() % 1000));
            at += 4;
            for (unsigned count = 1 + random_() % 120; count > 0; --count) {
                auto byte = uint8_t(random_() % 3 ? 0x80 + random_() % 128 : 1 + random_() % 127);
                if (std::ranges::find(DANGEROUS, byte) != std::end(DANGEROUS) ||
                    byte == TWO_BYTE_CALL || byte == TWO_BYTE_VERIFY)
                    byte = ':';
                memory[at++] = byte;
            }
            memory[at++] = 0;
            put_word(start, at);
        }
        put_word(at, 0);
        for (const unsigned cell : {PROGRAM_END, PROGRAM_END + 2, PROGRAM_END + 4})
            put_word(cell, at + 2);
        const char* const acts[] = {"RUN\n",
                                    "LIST\n",
                                    "RENUM\n",
                                    "EDIT.\nX1\n",
                                    "GOTO500\n",
                                    "DELETE-100\n",
                                    "RUN\nLIST\nSAVE\"A\",A\nLOAD\"A\"\n"};
        return acts[random_() % std::size(acts)];
    }
    static void put_word(unsigned address, unsigned value) {
        memory[address] = uint8_t(value);
        memory[address + 1] = uint8_t(value >> 8);
    }
    void run(int frames) {
        frames_ += frames;
        while (frames-- > 0) machine_run();
    }
    void press_break() {
        machine_.platform().set_key(KEY_END, true);
        run(KEY_FRAMES);
        machine_.platform().set_key(KEY_END, false);
        run(KEY_FRAMES);
    }
    void reset() {
        machine_reset();
        run(KEY_FRAMES);
    }
    bool answers() {
        const bool idle = machine_.type("\nLGR:COLOUR1:CLS\nPRINT 7*6;\n", PROMPT_FRAMES);
        frames_ += machine_.frames();
        if (!idle) return false;
        const auto rows = machine_.screen();
        return std::ranges::find(rows, " 42") != rows.end() && rows.back() == ">";
    }
    static unsigned word(unsigned address) { return memory[address] + 256u * memory[address + 1]; }
    static std::vector<uint8_t> program() {
        return {memory + PROGRAM_START, memory + word(PROGRAM_END)};
    }
    /// Address of a link that does not lead to the line behind its own; 0 when all do.
    static unsigned broken_link() {
        unsigned at = PROGRAM_START;
        while (word(at) != 0) {
            unsigned end = at + 4;
            while (end < RAM_END && memory[end] != 0) ++end;
            if (word(at) != end + 1) return at;
            at = end + 1;
        }
        return at + 2 == word(PROGRAM_END) ? 0 : at;
    }
    std::string report() const {
        std::string text = "\ntyped:\n" + typed_ + "screen:\n";
        for (const auto& row : machine_.screen()) text += row + "\n";
        text += "program up to " + std::to_string(word(PROGRAM_END)) + ":\n";
        for (const uint8_t byte : program()) text += std::to_string(byte) + " ";
        return text;
    }

    static constexpr unsigned RAM_END = 0xC000;
    BasicMachine machine_;
    std::mt19937 random_;
    std::string typed_;
    uint16_t line_number_ = 0;
    int64_t frames_ = 0;
    int resets_ = 0;
    bool disk_;
};

TEST(BasicSoak, BreakOrResetBringsThePromptBackAndTheProgramStays) {
    const double hours = number_of("BASIC_SOAK", 0.1);
    for (int variant = 0; variant < 6 && !testing::Test::HasFailure(); ++variant) {
        SCOPED_TRACE(variant);
        Soak soak(variant / 2, variant % 2);
        int bursts = 0;
        while (soak.frames() < hours * FRAMES_PER_HOUR / 6 && !testing::Test::HasFailure()) {
            soak.burst();
            if (++bursts % 5 == 0) soak.reset_keeps_program();
        }
        // BREAK does it alone but for a wait for the printer.
        EXPECT_LE(soak.resets(), 1 + bursts / 20);
    }
}

} // namespace
