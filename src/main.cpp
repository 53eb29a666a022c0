/// Picks the platform and starts the shell.

#include "host/messages.h"
#include "host/shell.h"
#include "host/video_codec.h"
#include "platform/headless/headless.h"
#include "platform/qt/qt_platform.h"
#include "platform/user_paths.h"
#include "z80/disassembler.h"

#include <charconv>
#include <cstdio>
#include <optional>
#include <string_view>

namespace {

constexpr const char* USAGE =
    "Tarvelin - EACA EG2000 Colour Genie emulator\n"
    "\n"
    "usage: tarvelin [options] [switches] [FILE]\n"
    "\n"
    "FILE is started by its type: a load module (.cmd), a cassette (.cas, .cgt), a disk (.dsk,\n"
    ".cgd), a snapshot (.jzs) or BASIC, tokenized or as text (.bas, .txt).\n"
    "\n"
    "options:\n"
    "  --headless            run without a display\n"
    "  --real-time           headless: keep to real time instead of virtual time\n"
    "  --setting NAME=VALUE  headless: a setting for this run, a number or a text\n"
    "  --wav FILE            record the sound from the start\n"
    "  --regs                print the processor's registers after the run\n"
    "  --disassemble FIRST-LAST\n"
    "                        print the disassembly of these hexadecimal addresses after the run\n"
    "  --help                print this text\n"
    "  --version             print the version\n"
    "\n"
    "switches:\n"
    "  /a        load FILE, but do not start it\n"
    "  /b FILE   start FILE at once\n"
    "  /d        giant picture: leave every second line black\n"
    "  /g        with the high-resolution graphics board\n"
    "  /h        without sound\n"
    "  /i FILE   put a disk image into drive 0\n"
    "  /mN       standard model N, 1 to 3\n"
    "  /s N      take a screenshot after N seconds of machine time\n"
    "  /t N      quit after N seconds of machine time\n"
    "  /v FILE   record a video\n"
    "  /w        do not wait for real time\n"
    "\n"
    "An argument that names an existing file is a file, whatever it begins with.\n"
    "A screenshot is written beside FILE, as FILE0000.gif and so on.\n";

HeadlessOptions headless_options() {
    HeadlessOptions options;
    options.data_directory = user_data_directory();
    options.config_directory = user_config_directory();
    options.program_directory = executable_directory();
    return options;
}

struct AddressRange {
    uint16_t first = 0;
    uint16_t last = 0;
};

struct Options {
    bool headless = false;
    bool print_registers = false;
    std::optional<AddressRange> disassemble;
    bool real_time = false;
    std::vector<std::pair<std::string, std::string>> settings;
    Arguments arguments; ///< the rest
};

int fail(const std::string& problem) {
    std::fprintf(stderr, "tarvelin: %s\n", problem.c_str());
    return 1;
}

/// A setting is a number where its text is one in full.
void apply_setting(Settings& settings, const std::string& name, const std::string& value) {
    uint32_t number = 0;
    const char* end = value.data() + value.size();
    const auto [stop, error] = std::from_chars(value.data(), end, number);
    if (error == std::errc() && stop == end) {
        settings.set_number(name, number);
    } else {
        settings.set_text(name, value);
    }
}

std::optional<uint16_t> hexadecimal(std::string_view text) {
    constexpr int BASE = 16;
    uint16_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, BASE);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

/// FIRST-LAST.
std::optional<AddressRange> address_range(std::string_view text) {
    const size_t dash = text.find('-');
    if (dash == std::string_view::npos) return std::nullopt;
    const auto first = hexadecimal(text.substr(0, dash));
    const auto last = hexadecimal(text.substr(dash + 1));
    if (!first || !last || *first > *last) return std::nullopt;
    return AddressRange{*first, *last};
}

/// Sorts out the double-dash options. Returns a problem, or nothing.
std::string parse(int count, char** words, Options& options) {
    for (int n = 1; n < count; ++n) {
        const std::string word = words[n];
        if (!word.starts_with("--")) {
            options.arguments.push_back(word);
        } else if (word == "--headless") {
            options.headless = true;
        } else if (word == "--real-time") {
            options.real_time = true;
        } else if (word == "--setting") {
            const std::string text = n + 1 < count ? words[++n] : "";
            const size_t equals = text.find('=');
            if (equals == std::string::npos || equals == 0) return word + ": NAME=VALUE is missing";
            options.settings.emplace_back(text.substr(0, equals), text.substr(equals + 1));
        } else if (word == "--wav") {
            if (n + 1 == count) return word + ": FILE is missing";
            wav_name = words[++n];
        } else if (word == "--regs") {
            options.print_registers = true;
        } else if (word == "--disassemble") {
            options.disassemble = address_range(n + 1 < count ? words[++n] : "");
            if (!options.disassemble) return word + ": hexadecimal FIRST-LAST is missing";
        } else {
            return word + ": unknown option; --help lists them";
        }
    }
    return {};
}

int run_headless(const Options& options) {
    HeadlessOptions headless = headless_options();
    headless.real_time = options.real_time;
    HeadlessPlatform host(headless);
    HeadlessPlatform::stop_on_signals();
    install_platform(host);
    for (const auto& [name, value] : options.settings) {
        apply_setting(host.settings(), name, value);
    }
    // There is nobody to choose.
    answer_video_compression(host.settings().text("VideoCodec").value_or("uncompressed"));
    breakpoint_opens_monitor = false;
    const int exit_code = run_shell(options.arguments);
    return exit_code == 0 && failure_was_reported() ? 1 : exit_code;
}

int run_desktop(const Options& options, int& argc, char** argv) {
    QtPlatform host(argc, argv);
    install_platform(host);
    return run_shell(options.arguments);
}

void print_registers() {
    char line[DISASSEMBLY_LINE];
    for (int kind = 0; kind < 3; ++kind) {
        regdump(line, kind);
        std::puts(line);
    }
}

/// The last instruction is the one that reaches the last address or the end of the memory.
void print_disassembly(const AddressRange& range) {
    char line[DISASSEMBLY_LINE];
    uint16_t address = 0;
    uint16_t next = range.first;
    do {
        address = next;
        next = disassemble(address, line);
        std::puts(line);
    } while (next > address && next <= range.last);
}

bool asks_for(int count, char** words, std::string_view option) {
    for (int n = 1; n < count; ++n) {
        if (words[n] == option) return true;
    }
    return false;
}

} // namespace

int main(int argc, char** argv) {
    if (asks_for(argc, argv, "--help")) {
        std::fputs(USAGE, stdout);
        return 0;
    }
    if (asks_for(argc, argv, "--version")) {
        std::puts("Tarvelin " TARVELIN_VERSION);
        return 0;
    }
    Options options;
    std::string problem = parse(argc, argv, options);
    if (problem.empty() && options.headless) problem = command_line_problem(options.arguments);
    if (problem.empty() && !options.headless && !QtPlatform::has_display()) {
        problem = "there is no display; --headless runs without one";
    }
    if (!problem.empty()) return fail(problem);
    const int exit_code =
        options.headless ? run_headless(options) : run_desktop(options, argc, argv);
    if (options.print_registers) print_registers();
    if (options.disassemble) print_disassembly(*options.disassemble);
    return exit_code;
}
