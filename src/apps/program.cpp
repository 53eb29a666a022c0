#include "apps/program.h"

#include "apps/source_output.h"
#include "files/user_paths.h"
#include "host/messages.h"
#include "host/script.h"
#include "host/shell.h"
#include "platform/headless/headless.h"
#include "z80/disassembler.h"

#include <cstdio>
#include <utility>

namespace {

constexpr const char* USAGE =
    "Tarvelin - EACA EG2000 Colour Genie emulator\n"
    "\n"
    "usage: tarvelin [options] [switches] [FILE]\n"
    "       tarvelin-headless [options] [switches] [FILE]\n"
    "\n"
    "FILE is started by its type: a load module (.cmd), a cassette (.cas, .cgt), a disk (.dsk,\n"
    ".cgd), a snapshot (.jzs), a state (.tvs), a replay (.tvr) or BASIC, tokenized or as text\n"
    "(.bas, .txt).\n"
    "\n"
    "options:\n"
    "  --headless            run without a display, as tarvelin-headless always does\n"
    "  --real-time           headless: keep to real time instead of virtual time\n"
    "  --setting NAME=VALUE  headless: a setting for this run, a number or a text\n"
    "  --save-disks          headless: write changed disks back at the end\n"
    "  --wav FILE            record the sound from the start\n"
    "  --load-state FILE     begin with this state of the machine\n"
    "  --save-state FILE     write the machine's state to FILE at the end\n"
    "  --whole-state         in it, also the disks and tapes that are as in their files\n"
    "  --record FILE         record all that happens to the machine as a replay\n"
    "  --replay FILE         play a replay; headless the program ends behind it, with status 1\n"
    "                        when the machine did not do the same again\n"
    "  --to-frame N          play the replay up to the end of frame N\n"
    "  --script FILE         headless: obey the commands in FILE, \"-\" for the standard input\n"
    "  --gdb PORT            let GDB and what speaks its protocol connect to this port of this\n"
    "                        computer; 0 takes a free one. Headless the machine stands at its\n"
    "                        start until a client has come\n"
    "  --regs                print the processor's registers after the run\n"
    "  --disassemble FIRST-LAST\n"
    "                        print the disassembly of these hexadecimal addresses after the run\n"
    "  --source FIRST-LAST   headless: print this memory after the run, as a source for pasmo\n"
    "  --symbols FILE        names for addresses: a symbol file of pasmo, sdcc or z88dk\n"
    "  --help                print this text\n"
    "  --version             print the version\n"
    "  --                    what follows are files\n"
    "\n"
    "switches:\n";
constexpr const char* USAGE_OF_FILES =
    "\n"
    "An argument that names an existing file, or has a point or a second slash, is a file.\n"
    "Without --headless, options of Qt such as -style and -platform are taken as well.\n"
    "A screenshot is written beside FILE, as FILE0000.gif and so on.\n";

HeadlessOptions headless_options() {
    HeadlessOptions options;
    options.data_directory = user_data_directory();
    options.config_directory = user_config_directory();
    options.program_directory = executable_directory();
    return options;
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

ShellOptions in_window(const CommandLine& line, ShellOptions options) {
    options.line = line;
    options.keep_disk_journals = true;
    options.keep_history = true;
    options.resumes = true;
    options.sizable_window = true;
    options.remembers_files = true;
    options.answers_memory_question = true;
    options.welcomes = true;
    return options;
}

} // namespace

bool print_information(const CommandLine& line) {
    if (line.help) {
        std::fputs((USAGE + switches_help() + USAGE_OF_FILES).c_str(), stdout);
    } else if (line.version) {
        std::puts("Tarvelin " TARVELIN_VERSION);
    }
    return line.help || line.version;
}

int fail(const std::string& problem) {
    std::fprintf(stderr, "tarvelin: %s\n", problem.c_str());
    return 1;
}

void print_results(const CommandLine& line) {
    if (line.print_registers) print_registers();
    if (line.disassemble) print_disassembly(*line.disassemble);
    if (line.source) print_source(line);
}

int run_headless(const CommandLine& line) {
    std::string problem = command_line_problem(line);
    if (problem.empty()) problem = load_named_symbols(line);
    if (!problem.empty()) return fail(problem);
    Script script;
    if (!line.script.empty()) {
        const std::string wrong = read_script(line.script, script);
        std::fputs(wrong.c_str(), stderr);
        if (!wrong.empty()) return SCRIPT_NOT_RUN;
    }
    HeadlessOptions headless = headless_options();
    headless.real_time = line.real_time;
    HeadlessPlatform host(headless);
    HeadlessPlatform::stop_on_signals();
    install_platform(host);
    const ShellOptions options = {.line = line,
                                  .unattended = true,
                                  .repeatable = !line.script.empty(),
                                  .keep_history = script.uses_debugger,
                                  .save_changed_disks = line.save_disks};
    const int exit_code = line.script.empty() ? run_shell(options) : run_script(script, options);
    print_results(line);
    return exit_code == 0 && failure_was_reported() ? 1 : exit_code;
}

int run_in_window(Platform& host, const CommandLine& line) {
    const std::string problem = load_named_symbols(line);
    if (!problem.empty()) std::fprintf(stderr, "tarvelin: %s\n", problem.c_str());
    install_platform(host);
    const int exit_code = run_shell(in_window(line, {}));
    print_results(line);
    return exit_code;
}

bool start_in_window(Platform& host, const CommandLine& line, ShellOptions options) {
    install_platform(host);
    return start_shell(in_window(line, std::move(options)));
}
