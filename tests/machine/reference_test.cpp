// Runs the examples of docs/reference.html, each after a start of the machine. Of its blocks,
// "asm" is assembled and put into memory; "program" is typed in and RUN; "typed" is what is typed
// at the prompt, instead of RUN when it follows a program. A cassette is rewound before each
// program and each "typed" of its own. "printer" is what the printer gets, "screen" the rows below
// the last first command.
#include "basic_cases.h"

#include "cgenie/memory/memory.h"
#include "media/basic/basic_tokens.h"
#include "media/files/cassette_files.h"
#include "media/files/printer_file.h"
#include "media/printer.h"
#include "media/traps.h"
#include "support/basic_machine.h"
#include "support/html_examples.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <regex>
#include <set>

namespace {

const std::string DOCS = std::string(DOCS_DIR) + "/";

const std::string PAGE = DOCS + "reference.html", FIRMWARE = DOCS + "firmware.html";

/// Lines of all examples of a page.
std::vector<std::string> lines_of(const std::string& page,
                                  std::initializer_list<std::string> kinds) {
    std::vector<std::string> all;
    for (const HtmlExample& example : read_html_examples(page))
        for (const std::string& kind : kinds)
            for (const std::string& line : example.lines(kind)) all.push_back(line);
    return all;
}

struct Routine {
    size_t origin = 0;
    std::vector<uint8_t> code;
};

Routine assemble(const std::vector<std::string>& source, const Folder& folder) {
    if (source.empty()) return {};
    const std::string text = join(source), path = folder / "routine";
    write_text(path + ".asm", text);
    const std::string command = PASMO " --bin " + path + ".asm " + path + ".bin";
    std::smatch origin;
    EXPECT_TRUE(std::regex_search(text, origin, std::regex("ORG +([0-9A-F]+)h"))) << text;
    EXPECT_EQ(std::system(command.c_str()), 0) << text;
    return {std::stoul(origin[1], nullptr, 16), read_file(path + ".bin")};
}

std::vector<BasicCase> steps_of(const HtmlExample& example) {
    std::vector<BasicCase> steps;
    bool runs = false; // the last step is a program that waits for what is typed
    for (const HtmlBlock& block : example.blocks) {
        if (block.kind == "typed") {
            if (!runs) steps.emplace_back();
            steps.back().commands = block.lines;
        } else if (block.kind == "program") {
            steps.push_back({example.line, block.lines, {"RUN"}, {}});
        }
        runs = block.kind == "program";
    }
    return steps;
}

void run(BasicMachine& machine, const HtmlExample& example) {
    const Folder folder;
    const Routine routine = assemble(example.lines("asm"), folder);
    const auto printed = example.lines("printer");
    for (int model : {0, 1, 2}) {
        const std::filesystem::path files = folder / std::to_string(model) / "";
        const std::string tape = files / "tape.cas";
        std::filesystem::create_directory(files);
        machine.boot(model, trial_rom());
        machine.platform().dialogs().choices = {FileChoice{tape}};
        std::ranges::copy(routine.code, memory + routine.origin);
        printer_set_filename(files);
        printer_enabled = !printed.empty();
        if (printer_enabled) printer_init();
        std::vector<std::string> rows;
        for (const BasicCase& step : steps_of(example)) {
            tape_attach_cas(tape);
            rows = run_basic_case(machine, step);
            tape_detach_cas();
        }
        printer_close();
        printer_enabled = false;
        const auto at = testing::Message() << "line " << example.line << ", model " << model;
        EXPECT_EQ(join(rows), join(example.lines("screen"))) << at;
        EXPECT_EQ(read_text(files / "printer.txt"), join(printed)) << at;
    }
}

TEST(Reference, ExamplesShowTheirScreens) {
    BasicMachine machine;
    tape_init();
    const auto examples = read_html_examples(PAGE);
    ASSERT_FALSE(examples.empty());
    for (const HtmlExample& example : examples) run(machine, example);
}

constexpr unsigned TIME = 0xC7; // TIME$ waits for a ROM with a clock

// Words by their codes; of those of two bytes the first one is FF. The words of the disk are in the
// firmware manual.
TEST(Reference, EachWordHasAnExample) {
    std::set<unsigned> used;
    for (const std::string& page : {PAGE, FIRMWARE})
        for (const std::string& line : lines_of(page, {"program", "typed"})) {
            const BasicBytes bytes = basic_tokenize(line);
            for (size_t i = 0; i < bytes.size(); ++i)
                used.insert(bytes[i] == 0xFF ? 0xFF00u | bytes[++i] : bytes[i]);
        }
    for (unsigned code = 0x80; code <= 0xFF99; code = code == 0xFB ? 0xFF80 : code + 1)
        EXPECT_TRUE(used.contains(code) || code == TIME) << std::hex << code;
}

// The addresses in the first column of the tables of the firmware manual.
TEST(Reference, EachAddressHasAnExample) {
    std::set<unsigned long> used;
    const std::string text = join(lines_of(PAGE, {"program", "typed", "asm"}));
    const std::regex number("&H([0-9A-F]+)|\\b([0-9][0-9A-F]*)h");
    for (std::sregex_iterator i(text.begin(), text.end(), number), end; i != end; ++i)
        used.insert(std::stoul((*i)[1].str() + (*i)[2].str(), nullptr, 16));

    const std::string page = read_text(FIRMWARE);
    const size_t from = page.find("<h2 id=\"code\""), to = page.find("<h2 id=\"files\"");
    ASSERT_LT(from, to);
    const std::string tables = page.substr(from, to - from);
    const std::regex cell("<tr><td>([0-9A-F, -]+)</td>"), range("([0-9A-F]{4})(?:-([0-9A-F]{4}))?");
    for (std::sregex_iterator row(tables.begin(), tables.end(), cell), end; row != end; ++row) {
        const std::string addresses = (*row)[1];
        for (std::sregex_iterator i(addresses.begin(), addresses.end(), range); i != end; ++i) {
            const auto first = std::stoul((*i)[1], nullptr, 16);
            const auto last = (*i)[2].matched ? std::stoul((*i)[2], nullptr, 16) : first;
            const auto found = used.lower_bound(first);
            EXPECT_TRUE(found != used.end() && *found <= last) << (*i)[0];
        }
    }
}

} // namespace
