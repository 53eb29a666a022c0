/// Whatever is typed, BREAK or the reset key brings the prompt back, and the reset key keeps the
/// program. The normal run is short; BASIC_SOAK=<bursts> in the environment makes it longer and
/// BASIC_SOAK_SEED another one.

#include "cgenie/memory/memory.h"
#include "cgenie/typing/typing.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "media/traps.h"
#include "support/basic_machine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <random>

namespace {

constexpr unsigned PROGRAM_START = 0x5801, PROGRAM_END = 0x40F9;
constexpr int BURST_FRAMES = 150, KEY_FRAMES = 12, PROMPT_FRAMES = 150;

// Without the words that may write over the system, and those that wait for a cassette.
constexpr const char* WORDS[] = {
    "END",     "FOR",     "RESET", "SET",    "CLS",     "CMD",     "RANDOM", "NEXT",    "DATA",
    "INPUT",   "DIM",     "READ",  "LET",    "GOTO",    "RUN",     "IF",     "RESTORE", "GOSUB",
    "RETURN",  "REM",     "STOP",  "ELSE",   "TRON",    "TROFF",   "DEFSTR", "DEFINT",  "DEFSNG",
    "DEFDBL",  "LINE",    "EDIT",  "ERROR",  "RESUME",  "ON",      "OPEN",   "FIELD",   "GET",
    "PUT",     "CLOSE",   "LOAD",  "MERGE",  "NAME",    "KILL",    "LSET",   "RSET",    "SAVE",
    "LPRINT",  "DEF",     "PRINT", "CONT",   "LIST",    "LLIST",   "DELETE", "AUTO",    "CLEAR",
    "NEW",     "TAB(",    "TO",    "FN",     "USING",   "VARPTR",  "ERL",    "ERR",     "STRING$(",
    "INSTR(",  "POINT(",  "TIME$", "MEM",    "INKEY$",  "THEN",    "NOT",    "STEP",    "AND",
    "OR",      "SGN(",    "INT(",  "ABS(",   "FRE(",    "INP(",    "POS(",   "SQR(",    "RND(",
    "LOG(",    "EXP(",    "COS(",  "SIN(",   "TAN(",    "ATN(",    "PEEK(",  "CVI(",    "MKI$(",
    "CINT(",   "CSNG(",   "CDBL(", "FIX(",   "LEN(",    "STR$(",   "VAL(",   "ASC(",    "CHR$(",
    "LEFT$(",  "RIGHT$(", "MID$(", "COLOUR", "FCOLOUR", "KEYPAD1", "JOY1X",  "PLOT",    "FGR",
    "LGR",     "FCLS",    "PLAY",  "CIRCLE", "SCALE",   "SHAPE",   "NSHAPE", "XSHAPE",  "PAINT",
    "CPOINT(", "NPLOT",   "SOUND", "CHAR",   "RENUM",   "SWAP",    "FKEY",   "BGRD",    "NBGRD",
    "A",       "B$",      "C%",    "D#",     "E(",      "F$(",     "Z9",     "I",       "I=1TO9",
    "&H",      "1E",      "1D-",   "\"",     "\"X\"",   ".",       ",",      ";",       ":",
    ":",       ":",       "(",     ")",      ")",       "+",       "-",      "*",       "/",
    "^",       "=",       "<",     ">",      "'",       "@",       "#",      "##.##",   "!",
    "%",       "$",       "?",     " ",      "0",       "1",       "2",      "3",       "9",
    "10",      "20",      "255",   "256",    "32767",   "65535",   "1E38",   "-1"};

int number_of(const char* variable, int otherwise) {
    const char* text = std::getenv(variable);
    return text ? std::atoi(text) : otherwise;
}

class Soak {
public:
    Soak() {
        machine_.boot(0, trial_rom());
        random_.seed(unsigned(number_of("BASIC_SOAK_SEED", 1)));
    }

    void burst() {
        typed_ = random_() % 4 ? soup() : noise();
        machine_.type(typed_, BURST_FRAMES);
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
        typed_ = direct_lines();
        machine_.type(typed_, int(random_() % 40));
        keyboard_type_reset();
        memory_remove_bas_trap();
        const auto before = program();
        reset();
        EXPECT_TRUE(answers()) << report();
        EXPECT_EQ(program(), before) << "the reset key changed the program" << report();
    }
    int resets() const { return resets_; }

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
        for (const char* word : {"NEW", "DELETE", "RENUM", "AUTO", "EDIT"})
            if (text.find(word) != std::string::npos) text.clear();
        for (size_t at = 0; at < text.size(); at = text.find('\n', at) + 1)
            if (std::isdigit(text[at]) || text[at] == ' ') text.insert(at, ":");
        return text + "RUN\n";
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
    static void run(int frames) {
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
        if (!machine_.type("\nLGR:COLOUR1:CLS\nPRINT 7*6;\n", PROMPT_FRAMES)) return false;
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
    int resets_ = 0;
};

TEST(BasicSoak, BreakOrResetBringsThePromptBackAndTheProgramStays) {
    const int bursts = number_of("BASIC_SOAK", 100);
    Soak soak;
    for (int i = 0; i < bursts && !testing::Test::HasFailure(); ++i) {
        soak.burst();
        if (i % 5 == 0) soak.reset_keeps_program();
    }
    // BREAK does it alone but for a wait for the printer.
    EXPECT_LE(soak.resets(), 1 + bursts / 20);
}

} // namespace
