/// Hours of the machine with their history: a hash of state and picture is kept at random moments,
/// at the ends of frames and inside of them, and these are visited afterwards, out of order. Each
/// must be what it was, to the byte. Then it goes on from one of them.
///
/// usage: history MINUTES MOMENTS [line|beam] [PROGRAM] [unpaced] [KB]
///
/// PROGRAM is an example's file name, or "session": BASIC with typing, disk, cassette and printer;
/// without it, all of them. Unpaced, states are spaced by the host's time. KB limits the memory.
/// Prints memory, cost and the time to any frame. Ends with 1 and a line that begins with "FAILED"
/// when something is wrong.

#include "time/history.h"
#include "cgenie/input.h"
#include "cgenie/video.h"
#include "core/frame_driver.h"
#include "core/machine_state.h"
#include "media/traps.h"
#include "random_run.h"
#include "wall/machine_host.h"
#include "z80/z80.h"
#include "z80/z80_watch.h"

#include <cctype>
#include <ctime>

namespace {

constexpr int64_t FRAME_NS = 20'000'000;
constexpr int64_t HOUR = 180'000; ///< frames

/// Of the processor, so that what else the host does is not counted.
int64_t processor_ns() {
    timespec now = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return int64_t(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

// ---- the host ----------------------------------------------------------------------------------

struct {
    bool paced = true;
    history_settings settings;
    int64_t passed = 0; ///< ns, of frames at their own speed
    machine_input input;
    std::vector<uint8_t> shown; ///< the last picture
} host;

void keep_shown() {
    host.shown.assign(frame_buffer, frame_buffer + size_t(SCREEN_WIDTH) * SCREEN_HEIGHT);
}

void connect() {
    machine_host = machine_without_host();
    machine_host.frame = [](int) { keep_shown(); };
    machine_host.fragment_decision = [](int) { return once_in(200) ? int(below(3)) : 1; };
    machine_host.read_input = [](machine_input& input) { input = host.input; };
    machine_host.save_question = [] { return once_in(8) ? SAVE_REFUSED : SAVE_READY; };
    machine_host.watch_hit = [] { return 1; };
    history_host.nanoseconds = [] { return processor_ns() + host.passed; };
    history_host.show = keep_shown;
}

// ---- what is run -------------------------------------------------------------------------------

constexpr const char* BOOT_DISK = EXAMPLES "/bootdisk.dsk";

/// What a user at the BASIC prompt does now and then.
void go_on_with_session() {
    using enum event_kind;
    switch (below(24)) {
    case 0: machine_apply(disk_in, int32_t(below(2)), 0, shared_bytes(contents(BOOT_DISK))); break;
    case 1: machine_apply(tape_out); break;
    case 2:
        once_in(2) ? machine_apply(tape_rewind) : machine_apply(tape_seek, int32_t(below(30'000)));
        break;
    case 3: machine_apply(printer, int32_t(below(2))); break;
    case 4:
        if (once_in(20)) machine_apply(once_in(2) ? restart_with_disk_rom : restart);
        break;
    case 5:
        if (once_in(20)) machine_apply(configure, int32_t(below(3)), 1);
        break;
    case 6:
        if (once_in(20)) machine_apply(engine, g_bCycleBasedEngine ? 0 : 1);
        break;
    case 7:
    case 8: machine_apply(reset); break;
    default: type_something(); break;
    }
}

void play(const std::string& program) {
    if (once_in(25)) {
        host.input = {};
        if (once_in(2)) host.input.positional[below(7)] = uint8_t(1 << below(8));
        host.input.sticks[0].x = uint16_t(generator());
    }
    if (program == "session" && once_in(200)) go_on_with_session();
}

// ---- a run and its record ----------------------------------------------------------------------

struct Moment {
    int64_t frame = 0;
    bool inside = false; ///< of the frame behind it
    history_moment place = {};
    uint64_t state = 0;
    uint64_t picture = 0;
    machine_state whole = {}; ///< in short runs
};

Moment present(bool keep) {
    Moment now = {.frame = history_position(), .place = history_moment_now()};
    if (!g_bCycleBasedEngine) {
        video_render_frame();
        keep_shown();
    }
    machine_save(now.whole);
    now.state = hash_of(now.whole.records.data(), now.whole.records.size());
    for (const shared_bytes& medium : now.whole.media)
        now.state = hash_of(medium.view().data(), medium.view().size(), now.state);
    now.picture = hash_of(host.shown.data(), host.shown.size());
    if (!keep) now.whole = {};
    return now;
}

/// What a debugger does to the machine that stands.
void change_inside() {
    if (once_in(2)) machine_apply(event_kind::poke, 0x5000, 0, shared_bytes({uint8_t(below(256))}));
    if (once_in(2)) {
        z80_registers registers = z80_state;
        registers.bc = uint16_t(registers.bc + once_in(2));
        machine_apply(event_kind::registers, 0, 0, bytes_of(registers));
    }
}

/// Runs the frame; it stands inside of it where one of the moments is.
void run_frame(Moment* inside, bool keep) {
    if (inside) {
        z80_watch.run = z80_run_watched;
        z80_watch.until = z80_state.t_count + 1 + below(30'000);
        while (machine_run() == MACHINE_WAITS) continue;
        z80_watch.run = nullptr;
        change_inside();
        *inside = present(keep);
        inside->inside = true;
        // Back inside of the present frame, too, and then on from the present.
        if (once_in(2)) {
            const auto shown = host.shown;
            history_show(history_last() - below(3));
            if (!history_show_moment(inside->place).empty()) fail("the present is not there");
            const std::string difference = machine_difference(inside->whole, present(true).whole);
            if (keep && !difference.empty()) fail("the present has changed: " + difference);
            host.shown = shown;
        }
    }
    while (machine_run() != MACHINE_FRAME) continue;
}

struct Costs {
    int64_t history = 0; ///< ns in its calls
    int64_t longest = 0;
    int64_t all = 0; ///< with the frames
};

/// Runs the frames, and keeps those of `moments`, which are in order.
Costs run(const std::string& program, int64_t frames, std::vector<Moment>& moments) {
    Costs costs;
    auto next = moments.begin();
    for (int64_t n = 0; n < frames; ++n) {
        play(program);
        const int64_t begin = processor_ns();
        const bool keep = moments.size() <= 64;
        const bool is_next = next != moments.end() && next->frame == history_last() + 1;
        run_frame(is_next && once_in(2) ? &*next++ : nullptr, keep);
        const int64_t ran = processor_ns();
        history_frame_ran();
        const int64_t end = processor_ns();
        machine_apply(event_kind::tape_moves);
        costs.history += end - ran;
        costs.longest = std::max(costs.longest, end - ran);
        costs.all += end - begin;
        if (host.paced) host.passed += FRAME_NS;
        while (next != moments.end() && next->frame == history_last()) {
            *next++ = present(keep);
        }
    }
    return costs;
}

std::vector<Moment> random_moments(int64_t first, int64_t last, unsigned count) {
    std::vector<Moment> moments(count);
    std::uniform_int_distribution<int64_t> any(first, last);
    for (Moment& moment : moments) moment.frame = any(generator);
    std::ranges::sort(moments, {}, &Moment::frame);
    return moments;
}

void print_times(const char* which, std::vector<double>& ms) {
    if (ms.empty()) return;
    std::ranges::sort(ms);
    std::printf("    %s: median %.2f ms, worst %.2f ms (%zu frames)\n", which, ms[ms.size() / 2],
                ms.back(), ms.size());
}

void visit(std::vector<Moment> moments, bool print) {
    std::ranges::shuffle(moments, generator);
    std::vector<double> young, old;
    const int64_t last = history_last();
    for (const Moment& moment : moments) {
        const int64_t begin = processor_ns();
        const std::string trouble =
            moment.inside ? history_show_moment(moment.place) : history_show(moment.frame);
        const double ms = double(processor_ns() - begin) / 1e6;
        (moment.frame > last - HOUR ? young : old).push_back(ms);
        if (!trouble.empty()) fail("frame " + std::to_string(moment.frame) + ": " + trouble);
        const uint64_t picture = hash_of(host.shown.data(), host.shown.size());
        const Moment again = present(true);
        std::string difference = again.state == moment.state ? "" : "another state";
        if (!moment.whole.records.empty()) {
            difference = machine_difference(moment.whole, again.whole);
        }
        if (picture != moment.picture && !moment.inside) difference += " another picture";
        if (history_position() != moment.frame) difference += " another position";
        if (!difference.empty()) {
            fail("frame " + std::to_string(moment.frame) + " is another one: " + difference);
        }
    }
    if (!print) return;
    print_times("the last hour", young);
    print_times("older", old);
}

void run_and_visit(const std::string& program, bool beam, int minutes, unsigned count) {
    generator.seed(1);
    host.passed = 0;
    host.input = {};
    machine_apply(event_kind::engine, beam);
    const int64_t frames = int64_t(minutes) * 3000;
    std::vector<Moment> none;
    for (int frame = 0; frame < 300; ++frame) machine_run(); // to the prompt
    start_example(program == "session" ? BOOT_DISK : EXAMPLES "/" + program);
    history_start(host.settings);
    auto moments = random_moments(1, frames, count);
    const Costs costs = run(program, frames, moments);
    const double seconds = double(minutes) * 60;
    const auto states = double(history_states());
    std::printf("%s, %s engine, %d minutes%s\n", program.c_str(), beam ? "beam" : "line", minutes,
                host.paced ? "" : ", unpaced");
    std::printf("    %.2f MB, %.0f states; %.3f %% of real time, %.2f %% of the run; "
                "longest %.2f ms\n",
                double(history_bytes()) / 1e6, states, double(costs.history) / seconds / 1e7,
                100.0 * double(costs.history) / double(costs.all), double(costs.longest) / 1e6);
    const Moment end = present(false);
    visit(moments, true);
    if (!history_show(history_last()).empty() || present(false).state != end.state) {
        fail("the present is another one");
    }

    // From somewhere in the past, and again over what was before.
    int64_t from = frames / 2;
    std::erase_if(moments, [from](const Moment& moment) { return moment.frame > from; });
    if (!moments.empty() && moments.back().inside) {
        from = moments.back().frame;
        history_show_moment(moments.back().place);
    } else {
        history_show(from);
    }
    history_go_on();
    auto others = random_moments(from + 1, from + 1500, std::min(count, 100U));
    run(program, 1500, others);
    if (history_last() != from + 1500) fail("frames that were to be forgotten");
    moments.insert(moments.end(), others.begin(), others.end());
    visit(moments, false);
    history_stop();
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fputs("usage: history MINUTES MOMENTS [line|beam] [PROGRAM] [unpaced] [KB]\n", stderr);
        return 2;
    }
    std::vector<bool> engines = {false, true};
    std::vector<std::string> programs;
    for (int n = 3; n < argc; ++n) {
        const std::string_view word = argv[n];
        if (word == "line" || word == "beam") {
            engines = {word == "beam"};
        } else if (word == "unpaced") {
            host.paced = false;
        } else if (std::isdigit(argv[n][0])) {
            host.settings.limit = std::strtoull(argv[n], nullptr, 10) * 1000;
        } else {
            programs.emplace_back(word);
        }
    }
    if (programs.empty()) {
        programs.emplace_back("session");
        for (const std::filesystem::path path : examples({".cmd", ".dsk", ".bas"})) {
            programs.push_back(path.filename());
        }
    }
    connect();
    machine_init();
    tape_init();
    machine_state power_on;
    machine_save(power_on);
    for (const std::string& program : programs) {
        for (const bool beam : engines) {
            machine_load(power_on);
            run_and_visit(program, beam, std::atoi(argv[1]), unsigned(std::atoi(argv[2])));
        }
    }
    return 0;
}
