/// Any arguments, one a line. Five files of every kind stand ready to be named.

#include "host/command_line.h"

#include "core/frame_driver.h"
#include "core/pacing/pacing.h"
#include "media/snapshot.h"
#include "support/files.h"
#include "support/input.h"
#include "support/shell.h"

#include <array>

namespace {

constexpr std::array<uint8_t, 9> MODULE = {1, 5, 0x00, 0x58, 0xC3, 0x00, 0x58, 2, 2};
constexpr std::array<uint8_t, 10> TOKENIZED = {0xFF, 0x08, 0x58, 0x0A, 0x00, 0x80, 0x00, 0, 0, 0};
constexpr std::array<uint8_t, 7> LISTING = {'1', '0', ' ', 'E', 'N', 'D', '\r'};
constexpr size_t DISK_SIZE = 89600;

void make_files() {
    write_file("p.cmd", MODULE);
    write_file("p.bas", TOKENIZED);
    write_file("p.txt", LISTING);
    write_file("p.dsk", std::vector<uint8_t>(DISK_SIZE));
    write_file("p.jzs", std::vector<uint8_t>(SNAPSHOT_SIZE));
}

Arguments split(const uint8_t* data, size_t size) {
    Arguments arguments(1);
    for (size_t n = 0; n < size; ++n) {
        if (data[n] == '\n') {
            arguments.emplace_back();
        } else {
            arguments.back() += char(data[n]);
        }
    }
    return arguments;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool made = (make_files(), true);
    (void)made;
    const Arguments arguments = split(data, size);
    FuzzShell shell;
    shell.start();
    const CommandLine line = read_command_line(arguments);
    const std::string problem = command_line_problem(line);
    require(problem.find('\n') == std::string::npos, "a problem is one line");
    get_command_line(line);
    // No picture is written: its name could be any.
    event_screenshot_timout = event_shutdown_timout = EVENT_DISARMED;
    machine_run();
    return 0;
}
