/// Picks the platform and starts the shell.

#include "apps/program.h"
#include "platform/qt/qt_platform.h"

#include <algorithm>
#include <string_view>

namespace {

/// Runs the shell in a window. Qt takes its own options out of the line, except those behind "--".
int run_desktop(int argc, char** argv) {
    char** const end = std::find(argv, argv + argc, std::string_view("--"));
    const Arguments operands(end, argv + argc);
    int count = int(end - argv);
    QtPlatform host(count, argv);
    Arguments rest(argv + 1, argv + count);
    rest.insert(rest.end(), operands.begin(), operands.end());
    const CommandLine line = read_command_line(rest);
    if (!line.refusal.empty()) return fail(line.refusal);
    return run_in_window(host, line);
}

} // namespace

int main(int argc, char** argv) {
    const CommandLine line = read_command_line({argv + 1, argv + argc});
    if (print_information(line)) return 0;
    return line.headless ? run_headless(line) : run_desktop(argc, argv);
}
