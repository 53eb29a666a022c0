/// The program in a browser's page. The page calls the shell's turns.

#include "apps/program.h"
#include "files/user_paths.h"
#include "host/turn.h"
#include "platform/web/web_platform.h"

#include <emscripten/emscripten.h>

namespace {

constexpr double ON_EVENT = -1, ENDED = -2;

} // namespace

extern "C" {

/// Runs a turn. Returns the microseconds until the next one is due, 0 for at once, ON_EVENT for
/// when something happens, and ENDED.
EMSCRIPTEN_KEEPALIVE double tarvelin_turn() {
    const ShellTurn done = shell_turn();
    switch (done.next) {
    case ShellTurn::Next::now: return 0;
    case ShellTurn::Next::in_time: return double(done.microseconds);
    case ShellTurn::Next::on_event: return ON_EVENT;
    case ShellTurn::Next::end: return ENDED;
    }
    return ENDED;
}
}

int main(int argc, char** argv) {
    static WebPlatform host; // the page outlives this function
    const CommandLine line = read_command_line(program_arguments(argc, argv));
    if (!line.refusal.empty()) return fail(line.refusal);
    return start_in_window(host, line) ? 0 : 1;
}
