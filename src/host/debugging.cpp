#include "host/debugging.h"

#include "core/pacing/pacing.h"
#include "debugger/debugger.h"
#include "debugger/symbol_files.h"
#include "host/display.h"
#include "host/keep_history.h"
#include "host/shell.h"
#include "host/shell_state.h"
#include "host/status.h"
#include "monitor/monitor.h"
#include "sound/output/sound_ring.h"
#include "wall/machine_host.h"

#include <map>
#include <utility>

namespace {

struct {
    std::map<int, DebuggingLog> users;
    int last_user = 0;
    std::string program; ///< whose symbols are wanted
    std::string symbols; ///< the file that they were taken from
} debugging;

void write_line(const std::string& line) {
    const auto users = debugging.users; // one may go meanwhile
    for (const auto& [number, log] : users) {
        if (log) log(line);
    }
}

void let_run(bool runs) {
    shell_state.debugger_stands = !runs;
    activate_unless_held();
    reset_timer();
    g_bActive ? sound_resume() : sound_pause();
    const char* const state = g_bActive ? "(Restarting)" : "(Suspended)";
    ui_set_window_title("%s", runs ? state : "(Debugger)");
}

/// The listing of the monitor follows the machine, too.
void show_machine() {
    if (g_bDebug && monitor_page == MONITOR_DISASSEMBLY) return debug();
    update_screen(1);
}

void take_symbols() {
    const std::string file = symbol_file_beside(debugging.program);
    if (file.empty() || file == debugging.symbols) return;
    SymbolTable& symbols = debugger_symbols();
    if (!debugging.symbols.empty()) {
        symbols.clear(); // of the program before; those of the command line stay
        for (const std::string& named : shell_state.start.line.symbols) {
            load_symbol_file(named, symbols);
        }
    }
    debugging.symbols = file;
    const std::string problem = load_symbol_file(file, symbols);
    write_line(problem.empty() ? std::to_string(symbols.size()) + " symbols from " + file
                               : problem);
}

} // namespace

int debugging_begin(DebuggingLog log) {
    debugging.users[++debugging.last_user] = std::move(log);
    if (debugging.users.size() == 1) {
        debugger_start(
            {.let_run = let_run, .log = write_line, .show = show_machine, .run_frame = [] {
                 return run_with_answers(pacing_host.run_frame);
             }});
        history_switched();
    }
    take_symbols();
    return debugging.last_user;
}

void debugging_end(int user) {
    if (!debugging.users.erase(user) || !debugging.users.empty()) return;
    debugger_end();
    history_switched();
}

void debugging_end_all() {
    while (!debugging.users.empty()) debugging_end(debugging.users.begin()->first);
}

bool debugging_is_on() { return !debugging.users.empty(); }

bool debugging_turn() { return debugging_is_on() && debugger_turn(); }

void debugging_frame_ran() {
    if (debugging_is_on()) debugger_frame_ran();
}

void debugging_program_is(const std::string& path) {
    debugging.program = path;
    if (debugging_is_on()) take_symbols();
}
