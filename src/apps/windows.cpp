/// Picks the platform and starts the shell.

#include "apps/program.h"
#include "files/user_paths.h"
#include "platform/win32/win32_platform.h"
#include "platform/win32/win32_program.h"

namespace {

int run_window(const CommandLine& line) {
    if (!line.refusal.empty()) return fail(line.refusal);
    Win32Platform host;
    return run_in_window(host, line);
}

} // namespace

int main(int argc, char** argv) {
    win32_attach_console();
    const CommandLine line = read_command_line(program_arguments(argc, argv));
    if (print_information(line)) return 0;
    return line.headless ? run_headless(line) : run_window(line);
}
