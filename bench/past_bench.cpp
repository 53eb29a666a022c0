/// bench_past [MINUTES] [PROGRAM]: the debugger's ways back through a game of the examples (an hour
/// of raiders.bas unless told otherwise) that somebody plays, in both engines. Prints how long it
/// takes to search for what was never written, beside a plain run of the same time; to come to the
/// last hit a minute ago; who wrote a byte long ago; and 10000 steps back.
#include "cgenie/input.h"
#include "cgenie/memory/memory.h"
#include "cgenie/typing/typing.h"
#include "core/frame_driver.h"
#include "core/machine_events.h"
#include "core/machine_mute.h"
#include "core/machine_state.h"
#include "debugger/debugger.h"
#include "files/whole_file.h"
#include "time/history.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <random>
#include <string>

namespace {

constexpr int64_t FRAMES_PER_MINUTE = 3000;
constexpr int BOOT_FRAMES = 300;
constexpr uint16_t NEVER_WRITTEN = 0x0000; ///< ROM
constexpr int STEPS = 10'000;

std::mt19937 generator;
machine_input pressed;

/// Seconds of the processor, which others do not slow down.
double now() { return double(std::clock()) / CLOCKS_PER_SEC; }

void run_frame() {
    while (machine_run() != MACHINE_FRAME) continue;
}

/// Another key now and then: cursor to the left or the right, or the space bar.
void play() {
    if (generator() % 25 != 0) return;
    pressed = {};
    pressed.positional[6] = uint8_t(0x10 << generator() % 4);
}

int run_debugged_frame() {
    const int end = machine_run();
    if (end == MACHINE_FRAME) {
        history_frame_ran();
        debugger_frame_ran();
    }
    return end;
}

struct Work {
    double seconds = 0;
    double longest = 0; ///< turn, in seconds
};

/// Has the debugger do it, to its end.
Work measure(const std::function<void()>& act) {
    Work work;
    const double begin = now();
    act();
    bool more = true;
    while (more) {
        const double turn = now();
        more = debugger_turn();
        work.longest = std::max(work.longest, now() - turn);
    }
    work.seconds = now() - begin;
    return work;
}

void print(const char* what, const Work& work) {
    std::printf("  %-34s %9.3f s, longest turn %5.1f ms  (%s)\n", what, work.seconds,
                work.longest * 1e3, debugger_last_stop().text.c_str());
}

/// The same frames without a history, a debugger or a log; the machine is then as it was.
double run_plainly(const machine_state& start, int64_t frames) {
    machine_state here;
    machine_save(here);
    const MachineMute mute;
    machine_load(start);
    const double begin = now();
    for (int64_t n = 0; n < frames; ++n) run_frame();
    const double seconds = now() - begin;
    machine_load(here);
    return seconds;
}

/// A byte of the program's memory that has changed in the first minute and then no more.
uint16_t old_byte(const std::vector<uint8_t>& early, const std::vector<uint8_t>& start) {
    for (uint16_t address = 0x5800; address < 0xBF00; ++address) {
        const uint8_t now = memory[address];
        if (early[address] == now && start[address] != now) return address;
    }
    return NEVER_WRITTEN;
}

std::vector<uint8_t> memory_now() { return {memory, memory + 0xC000}; }

void run_and_search(const std::string& program, bool beam, int64_t minutes) {
    auto text = read_whole_file(program);
    if (!text) {
        std::fprintf(stderr, "%s cannot be read\n", program.c_str());
        std::exit(1);
    }
    generator.seed(1);
    pressed = {};
    machine_apply(event_kind::engine, beam);
    for (int n = 0; n < BOOT_FRAMES; ++n) run_frame();
    machine_apply(event_kind::typing_trap);
    text->insert(text->begin(), '\n'); // the size of memory is asked first
    text->insert(text->end(), {'R', 'U', 'N', '\n'});
    machine_apply(event_kind::type_text, 0, 0, shared_bytes(*text));
    while (!typing_text.empty()) run_frame();
    machine_state start;
    machine_save(start);
    const std::vector<uint8_t> first = memory_now();
    std::vector<uint8_t> early;
    history_start({});
    const int64_t frames = minutes * FRAMES_PER_MINUTE;
    const double begin = now();
    for (int64_t n = 0; n < frames; ++n) {
        play();
        run_frame();
        history_frame_ran();
        if (n == FRAMES_PER_MINUTE) early = memory_now();
    }
    const double with_history = now() - begin;
    const double plain = run_plainly(start, frames);
    std::printf("%s engine, %lld minutes: %.3f s with the history, %.3f s without\n",
                beam ? "beam" : "line", static_cast<long long>(minutes), with_history, plain);
    debugger_start({.run_frame = run_debugged_frame});
    debugger_stop();
    const Work never = measure([] { debugger_back_to_write(NEVER_WRITTEN); });
    print("what was never written", never);
    std::printf("    %.2f times the plain run\n", never.seconds / plain);
    std::string problem;
    Breakpoint minute;
    minute.kind = BreakpointKind::frame;
    minute.at = history_last() - FRAMES_PER_MINUTE;
    const int number = breakpoint_add(minute, problem);
    print("back to a hit a minute ago", measure(debugger_back_go));
    breakpoint_remove(number);
    debugger_to_present();
    debugger_turn();
    const uint16_t old = old_byte(early, first);
    print("who wrote a byte long ago", measure([old] { debugger_back_to_write(old); }));
    std::printf("    %04X, at frame %lld of %lld\n", old,
                static_cast<long long>(history_position()), static_cast<long long>(frames));
    measure(debugger_to_present);
    const double steps = now();
    for (int n = 0; n < STEPS; ++n) measure(debugger_back_step);
    std::printf("  %d steps back %.3f s\n", STEPS, now() - steps);
    debugger_end();
    history_stop();
}

} // namespace

int main(int count, char** words) {
    const int64_t minutes = count > 1 ? std::atoi(words[1]) : 60;
    const std::string program = count > 2 ? words[2] : EXAMPLES "/raiders.bas";
    machine_host = machine_without_host();
    machine_host.read_input = [](machine_input& input) { input = pressed; };
    machine_init();
    machine_state power_on;
    machine_save(power_on);
    for (const bool beam : {false, true}) {
        machine_load(power_on);
        run_and_search(program, beam, minutes);
    }
    return 0;
}
