/// The program without a display: the other one with --headless, without what a display needs.

#include "apps/program.h"

int main(int argc, char** argv) {
    Arguments arguments = {"--headless"};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    const CommandLine line = read_command_line(arguments);
    return print_information(line) ? 0 : run_headless(line);
}
