/// The program without a display: the other one with --headless, without what a display needs.

#include "apps/program.h"

#include "files/user_paths.h"

int main(int argc, char** argv) {
    Arguments arguments = {"--headless"};
    const Arguments given = program_arguments(argc, argv);
    arguments.insert(arguments.end(), given.begin(), given.end());
    const CommandLine line = read_command_line(arguments);
    return print_information(line) ? 0 : run_headless(line);
}
