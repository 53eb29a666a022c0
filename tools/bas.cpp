/// tarvelin-bas: converts programs of the machine's BASIC between text and tokenized files.
#include "files/unfinished_writes.h"
#include "files/whole_file.h"
#include "media/basic/basic_tokens.h"
#include "tools/host_files.h"

#include <cstdio>

#include <getopt.h>

namespace {

constexpr char USAGE[] = R"(usage: tarvelin-bas encode [--force] [--long-lines] IN.bas OUT
       tarvelin-bas decode [--force] IN OUT.bas

Converts programs of the Colour Genie's BASIC.

  encode      text to a tokenized file, as the machine keeps it
  decode      tokenized file to text
  --force     replace OUT where it exists
  --long-lines
              also lines of more than 240 characters, which cannot be typed
  --help      print this summary and exit
  --version   print the version and exit

"-" as IN or OUT is the standard input or output. In the text \xNN is the byte
NN (hexadecimal), for characters that ASCII does not have.
Exit status: 0 done, 1 the file is at fault, 2 the arguments are wrong.
)";

enum : int { DONE = 0, FAILED = 1, WRONG_ARGUMENTS = 2 };

struct Arguments {
    std::vector<std::string> words;
    bool force = false, long_lines = false, help = false, version = false;
};

int fail(const std::string& message) {
    std::fprintf(stderr, "tarvelin-bas: %s\n", message.c_str());
    return FAILED;
}

/// Nothing when an option is wrong, which has been told then.
std::optional<Arguments> read_options(int count, char** words) {
    enum : int { FORCE = 1, LONG_LINES, HELP, VERSION };
    constexpr option OPTIONS[] = {{"force", no_argument, nullptr, FORCE},
                                  {"long-lines", no_argument, nullptr, LONG_LINES},
                                  {"help", no_argument, nullptr, HELP},
                                  {"version", no_argument, nullptr, VERSION},
                                  {}};
    Arguments given;
    char program[] = "tarvelin-bas"; // begins getopt's messages
    words[0] = program;
    for (int option; (option = getopt_long(count, words, "", OPTIONS, nullptr)) != -1;) {
        switch (option) {
        case FORCE: given.force = true; break;
        case LONG_LINES: given.long_lines = true; break;
        case HELP: given.help = true; break;
        case VERSION: given.version = true; break;
        default: return {};
        }
    }
    given.words.assign(words + optind, words + count);
    return given;
}

std::optional<BasicBytes> encode(const Arguments& given, const BasicBytes& in,
                                 BasicProblem& problem) {
    return basic_encode(std::string(in.begin(), in.end()), problem,
                        given.long_lines ? SIZE_MAX : LONGEST_BASIC_LINE);
}

std::optional<BasicBytes> decode(const BasicBytes& in, BasicProblem& problem) {
    const std::optional<std::string> text = basic_decode(in, problem);
    if (!text) return {};
    return BasicBytes(text->begin(), text->end());
}

} // namespace

int main(int count, char** words) {
    const auto given = read_options(count, words);
    if (!given) return WRONG_ARGUMENTS;
    if (given->help) return std::fputs(USAGE, stdout), DONE;
    if (given->version) return std::puts("tarvelin-bas " TARVELIN_VERSION), DONE;
    const std::string act = given->words.empty() ? "" : given->words[0];
    if (given->words.size() != 3 || (act != "encode" && act != "decode")) {
        std::fputs(USAGE, stderr);
        return WRONG_ARGUMENTS;
    }
    remove_unfinished_files();
    const std::string& from = given->words[1];
    const auto in = read_host_file(from, LARGEST_FILE);
    if (!in) return fail("cannot read " + from);
    BasicProblem problem;
    const auto out = act == "encode" ? encode(*given, *in, problem) : decode(*in, problem);
    if (!out) {
        const std::string place = problem.line == 0 ? ""
                                  : act == "encode" ? ":" + std::to_string(problem.line)
                                                    : ": line " + std::to_string(problem.line);
        return fail(from + place + ": " + problem.text);
    }
    const std::string trouble = write_host_file(given->words[2], *out, given->force);
    return trouble.empty() ? DONE : fail(trouble);
}
