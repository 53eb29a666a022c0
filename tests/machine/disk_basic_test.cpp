/// The words that the disk ROM adds to BASIC, and the examples of their page.
#include "basic_cases.h"
#include "disk_machine.h"

#include "core/frame_driver.h"
#include "support/html_examples.h"

#include <random>

namespace {

/// Whatever was nested, and how it ended.
TEST(DiskBasic, FunctionsGiveVariablesTheirValuesBack) {
    const std::vector<std::string> program = {
        "10 CLEAR 700:DEF FNR(X)=FNR(X+1)+X:DEF FNS$(A$,X)=FNS$(A$+STR$(X),X+1)",
        "20 DEF FNX(X,X,D#)=X*D#:DEF FNT(A$,X)=A$:DEF FNH$(A$)=STRING$(99,A$)+A$",
        "30 DEF FNG$(A$,B$)=A$+FNH$(B$)+B$:X=7:A$=\"OL\"+\"D\":B$=\"B\":D#=8",
        "40 FOR I=1 TO 99:C$=FNG$(A$,\"X\"+B$):NEXT:PRINT LEFT$(C$,4);RIGHT$(C$,3);A$;B$",
        "50 PRINT FNX(4,4,.5);X;D#:ON ERROR GOTO 70:A(3)=FNR(1)",
        "60 PRINT FNS$(A$,1):PRINT FNT(A$,2):END",
        "70 PRINT ERR/2+1;X;A$:RESUME NEXT"};
    const std::vector<std::string> rows = {"OLDXBXBOLDB", " 2  7  8", " 7  7 OLD", " 16  7 OLD",
                                           " 13  7 OLD"};
    DiskMachine disk(2, 40, 10);
    EXPECT_EQ(run_basic_case(disk.machine, {0, program, {"RUN"}, {}}), rows);
}

/// While the strings of an argument are collected and the output goes to a file.
TEST(DiskBasic, BreakInAFunctionLeavesNothingOfIt) {
    DiskMachine disk(0, 35, 10);
    disk.rows("FORMAT\nY10 CLEAR 9999:DIM A$(900):DEF FNL(X,B$)=LEN(B$+STRING$(250,65)):X=7\n"
              "20 FOR I=1 TO 900:A$(I)=STR$(I):NEXT:B$=\"B\"+A$(9):OPEN\"O\",1,\"X\"\n"
              "30 PRINT#1,FNL(3,\"C\"+STR$(X));:GOTO 30\n");
    disk.machine.type("RUN\n", 600);
    for (int i = 0; i < 9; ++i) {
        disk.machine.platform().set_key(KEY_END, true); // BREAK
        EXPECT_TRUE(disk.machine.type("", 60)) << i;
        disk.machine.platform().release_all_keys();
        const auto rows = disk.machine.screen();
        EXPECT_EQ(rows[rows.size() - 3], "BREAK IN 30") << i;
        EXPECT_EQ(disk.answer("PRINT X;B$\n"), " 7 B 9") << i;
        disk.machine.type("CONT\n", 51 + i);
    }
}

/// Against records in a string. Whenever the disk is taken out, it is sound, and other records are
/// as they were.
TEST(DiskBasic, RandomFilesHoldTheirRecords) {
    DiskMachine disk(1, 35, 10);
    disk.rows("CLEAR 999\nFORMAT\nYOPEN\"O\",1,\"LONG\":PRINT#1,STRING$(250,42):CLOSE\n"
              "OPEN\"O\",1,\"R100\":PRINT#1,STRING$(150,43)\n");
    std::mt19937 random(3);
    for (const size_t length : {256, 255, 100, 7, 1}) {
        const std::string name = "R" + std::to_string(length), left = std::to_string(length / 2),
                          right = std::to_string(length - length / 2),
                          padded = name + std::string(8 - name.size(), ' ');
        const std::string open = "CLOSE:OPEN\"R\",1,\"" + name + "\"," + std::to_string(length) +
                                 ":FIELD 1," + left + " AS A$," + right + " AS B$\n";
        disk.rows(open);
        std::string file = disk.contents(padded);
        for (int i = 0; i < 12; ++i) {
            const size_t record = 1 + random() % (length < 99 ? 300 : 12);
            const size_t from = (record - 1) * length, before = file.size();
            const char letter = char('A' + i);
            std::string text = std::to_string(record);
            disk.rows((i == 6 ? open : "") + "LSET A$=\"" + text + "\":RSET B$=STRING$(255," +
                      std::to_string(letter) + ")\n");
            disk.machine.type("PUT 1," + text + "\n", 1);
            text.resize(length / 2, ' ');
            file.resize(std::max(before, from + length));
            file.replace(from, length, text + std::string(length - length / 2, letter));
            const auto others = [&](std::string bytes) {
                bytes.resize(before);
                std::fill(bytes.begin() + long(std::min(before, from)),
                          bytes.begin() + long(std::min(before, from + length)), '-');
                return bytes;
            };
            std::string now;
            for (int n = 0; n < 3000 && (now = disk.contents(padded)) != file; ++n) {
                ASSERT_EQ(others(now), others(file)) << name << " " << record;
                const std::string found = disk.found(), faults = found.substr(found.find(';') + 1);
                ASSERT_TRUE(faults == found || faults.ends_with("belongs to no file")) << found;
                machine_run();
            }
            ASSERT_TRUE(now == file) << name << " " << record;
            disk.rows("");
            const size_t count = (file.size() + length - 1) / length, any = 1 + random() % count;
            EXPECT_EQ(disk.answer("GET 1," + std::to_string(any) +
                                  ":PRINTASC(RIGHT$(B$,1));LOC(1);LOF(1);EOF(1)\n"),
                      " " + std::to_string(int((file + std::string(length, 0))[any * length - 1])) +
                          "  " + std::to_string(any) + "  " + std::to_string(count) +
                          (any == count ? " -1" : "  0"));
        }
    }
}

TEST(DiskBasic, ExamplesOfThePageShowTheirScreens) {
    const auto examples = read_html_examples(DOCS_DIR "/firmware.html");
    ASSERT_FALSE(examples.empty());
    for (const int model : {0, 1, 2}) {
        DiskMachine disk(model, 35, 10);
        disk.rows("FORMAT\nY");
        for (const HtmlExample& example : examples) {
            auto typed = example.lines("typed");
            if (typed.empty()) typed = {"RUN"};
            const BasicCase steps = {example.line, example.lines("program"), typed, {}};
            EXPECT_EQ(run_basic_case(disk.machine, steps), example.lines("screen")) << example.line;
        }
    }
}

} // namespace
