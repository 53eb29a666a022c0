/// tarvelin-bas: converts programs of the machine's BASIC between text and tokenized files.
#include "tools/basic_tokens.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

constexpr char USAGE[] = R"(usage: tarvelin-bas encode IN.bas OUT
       tarvelin-bas decode IN OUT.bas

Converts programs of the Colour Genie's BASIC.

  encode      text to a tokenized file, as the machine keeps it
  decode      tokenized file to text
  --help      print this summary and exit
  --version   print the version and exit

"-" as IN or OUT is the standard input or output. In the text \xNN is the byte
NN (hexadecimal), for characters that ASCII does not have.
Exit status: 0 done, 1 the file is at fault, 2 the arguments are wrong.
)";

enum : int { DONE = 0, FAILED = 1, WRONG_ARGUMENTS = 2 };

int fail(const std::string& message, int status = FAILED) {
    std::fprintf(stderr, "tarvelin-bas: %s\n", message.c_str());
    return status;
}

std::optional<std::string> read_all(const std::string& path) {
    std::string text;
    if (path == "-") {
        char block[4096];
        while (const size_t count = std::fread(block, 1, sizeof block, stdin))
            text.append(block, count);
        if (std::ferror(stdin)) return {};
        return text;
    }
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) return {};
    std::ifstream in(path, std::ios::binary);
    if (!in) return {};
    text.assign(std::istreambuf_iterator<char>(in), {});
    if (in.bad()) return {};
    return text;
}

/// A file is complete before it takes the place of one that was there.
bool write_all(const std::string& path, const std::string& text) {
    if (path == "-")
        return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() &&
               std::fflush(stdout) == 0;
    std::error_code error;
    if (std::filesystem::exists(path, error) && !std::filesystem::is_regular_file(path, error)) {
        std::ofstream device(path, std::ios::binary); // nothing to keep and nothing to replace
        device << text;
        device.close();
        return device.good();
    }
    const std::string unfinished = path + ".part";
    std::ofstream out(unfinished, std::ios::binary | std::ios::trunc);
    out << text;
    out.close();
    if (out.good()) std::filesystem::rename(unfinished, path, error);
    if (out.good() && !error) return true;
    std::filesystem::remove(unfinished, error);
    return false;
}

std::optional<std::string> convert(bool encode, const std::string& in, BasicProblem& problem) {
    if (!encode) return basic_decode(BasicBytes(in.begin(), in.end()), problem);
    const auto file = basic_encode(in, problem);
    if (!file) return {};
    return std::string(file->begin(), file->end());
}

} // namespace

int main(int count, char** words) {
    if (count == 2 && std::strcmp(words[1], "--help") == 0) return std::fputs(USAGE, stdout), DONE;
    if (count == 2 && std::strcmp(words[1], "--version") == 0)
        return std::puts("tarvelin-bas " TARVELIN_VERSION), DONE;
    const std::string act = count > 1 ? words[1] : "";
    if (count != 4 || (act != "encode" && act != "decode")) {
        std::fputs(USAGE, stderr);
        return WRONG_ARGUMENTS;
    }
    const auto in = read_all(words[2]);
    if (!in) return fail(std::string("cannot read ") + words[2]);
    BasicProblem problem;
    const auto out = convert(act == "encode", *in, problem);
    if (!out) {
        const std::string place = problem.line == 0 && act == "encode" ? ""
                                  : act == "encode" ? ":" + std::to_string(problem.line)
                                  : problem.line    ? ": line " + std::to_string(problem.line)
                                                    : "";
        return fail(words[2] + place + ": " + problem.text);
    }
    if (!write_all(words[3], *out)) return fail(std::string("cannot write ") + words[3]);
    return DONE;
}
