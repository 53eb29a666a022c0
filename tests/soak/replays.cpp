/// Random runs of the machine, each repeated from a state that was parked in the middle of it: the
/// state that it ends in, every picture and every sample must come again, to the byte.
///
/// usage: replays COUNT [SEED]
///
/// Each run has an example program, BASIC or the soak's workload, an engine, media, keys, a sound
/// device that is early, late, jittery or absent, and files that fail. Its frames are paced,
/// unpaced, stepped, or pass a breakpoint, and in one run of three a WAV tape plays or records
/// meanwhile. Now and then the machine looks ahead, which must leave no trace. Ends with 1 and a
/// line that begins with "FAILED" when something is wrong.

#include "cgenie/hires_lowe.h"
#include "cgenie/input.h"
#include "cgenie/memory/memory.h"
#include "cgenie/palette.h"
#include "cgenie/typing/typing.h"
#include "cgenie/video.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "core/machine_state.h"
#include "core/pacing/run_ahead.h"
#include "media/tape_audio.h"
#include "media/traps.h"
#include "media/wav_samples.h"
#include "random_run.h"
#include "sound/sound_core.h"
#include "time/event_code.h"
#include "time/event_feed.h"
#include "time/replay.h"
#include "time/state_file.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <span>
#include <unistd.h>

namespace {

shared_bytes random_bytes(size_t count) {
    std::vector<uint8_t> bytes(count);
    for (uint8_t& byte : bytes) byte = uint8_t(generator());
    return shared_bytes(std::move(bytes));
}

constexpr uint8_t RET = 0xC9;

// ---- a host that is different in every run -----------------------------------------------------

enum frame_way : unsigned { PACED, UNPACED, STEPPED, THROUGH_BREAKPOINT };

/// The beam may be caught up, and a picture shown, before or after a fragment of the same moment:
/// each kind has its own order.
enum output : size_t { PICTURES, SOUND, BYTES, OUTPUTS };

struct Host {
    unsigned way = PACED;
    unsigned device = 0;      ///< what the sound device does with the decision
    unsigned write_fails = 0; ///< once in so many; 0 never
    bool rom_files = false;
    machine_input input;
    std::array<std::vector<uint64_t>, OUTPUTS> put_out; ///< hashes
} host;

int decide(int) {
    switch (host.device) {
    case 0: return 1;
    case 1: return once_in(9) ? 0 : 1;
    case 2: return once_in(9) ? 2 : 1;
    case 3: return int(below(3));
    default: return 0;
    }
}

void connect() {
    machine_host = machine_without_host();
    machine_host.fragment = [](const uint16_t* samples) {
        // With the moment that the output takes a decision by.
        host.put_out[SOUND].push_back(
            hash_of(samples, FRAGMENT_BYTES, sound_core.begun_at_frame_end));
    };
    // The beam engine shows its own frames, the line engine's are drawn at their end.
    machine_host.frame = [](int) {
        host.put_out[PICTURES].push_back(hash_of(frame_buffer, size_t(SCREEN_WIDTH) * SCREEN_HEIGHT,
                                                 hash_of(cgpalette, sizeof cgpalette)));
    };
    machine_host.stale = palette_update;
    machine_host.lamp = [](int drive) {
        host.put_out[BYTES].push_back(uint64_t(drive) ^
                                      hash_of(&lowe, offsetof(lowe_board, pixels)));
        if (g_bCycleBasedEngine) return;
        video_render_frame();
        machine_host.frame(1);
    };
    machine_host.fragment_decision = decide;
    machine_host.write = [](output_stream stream, uint64_t position, const uint8_t* bytes,
                            size_t count) {
        host.put_out[BYTES].push_back(hash_of(bytes, count, position * 4 + uint64_t(stream)));
        return host.write_fails && once_in(host.write_fails) ? 0 : 1;
    };
    machine_host.read_rom = [](rom_file, uint8_t* to, size_t size) {
        if (!host.rom_files) return int(below(2)) - 1; // not named, or not to be read
        std::memset(to, RET, size / 2);
        return int(size / 2);
    };
    // What is on a tape follows from its format, so a replay finds the same.
    machine_host.read_tape = [](uint64_t offset, uint8_t* to, size_t bytes) -> size_t {
        const uint64_t end = tape_audio.wav.data_start * 100; // one in three has been cut
        if (offset >= end) return 0;
        const size_t count = std::min<uint64_t>(bytes, end - offset);
        for (size_t n = 0; n < count; ++n) {
            const uint64_t wave = (offset + n) * (offset + n) / (300 + tape_audio.wav.data_start);
            to[n] = uint8_t(wave * 2654435761U >> 20);
        }
        return count;
    };
    machine_host.read_input = [](machine_input& input) { input = host.input; };
    machine_host.save_question = [] {
        return once_in(3) ? SAVE_READY : once_in(2) ? SAVE_REFUSED : SAVE_NOT_YET;
    };
    machine_host.breakpoint_reached = [] { return int(below(2)); };
}

// ---- what happens to the machine ---------------------------------------------------------------

machine_input random_input() {
    machine_input input;
    if (once_in(2)) input.positional[below(7)] = uint8_t(1 << below(8));
    if (once_in(2)) input.symbolic[below(2)][below(7)] = uint8_t(1 << below(8));
    input.sticks[0].x = uint16_t(generator());
    input.keypad = uint16_t(below(0x400));
    return input;
}

wav_format random_tape() {
    wav_format format;
    format.rate = 11025U << below(3);
    format.bits = 8U << below(2);
    format.channels = 1 + below(2);
    format.data_start = once_in(3) ? 44 : 44 + below(1000);
    format.samples = 20000;
    return format;
}

void change_configuration() {
    machine_choice choice = {machine_cfg[CUSTOM_CONFIGURATION], below(4)};
    if (choice.active == 3) choice.active = CUSTOM_CONFIGURATION;
    choice.custom.basic_rom = below(4);
    choice.custom.expansion_rom = below(3);
    choice.custom.character_rom = below(4);
    choice.custom.ram_size = below(2);
    choice.custom.cpu_clock = 2'000'000 + below(2'000'000);
    choice.custom.screen_frequency = 50 + 10 * below(2);
    choice.custom.palette = below(2);
    host.rom_files = once_in(2);
    machine_apply(event_kind::choose, int32_t(below(2)), 0, bytes_of(choice));
    machine_apply(event_kind::configure, int32_t(choice.active), int32_t(below(2)));
}

/// What a user, a menu or the host may do between two instructions.
void do_something() {
    using enum event_kind;
    static constexpr event_kind switches[] = {key_mapping,
                                              clean_sound,
                                              tape_motor,
                                              tape_inversion,
                                              event_kind::printer,
                                              printer_file,
                                              tape_out,
                                              graphics_board,
                                              start_sound,
                                              reset_sound,
                                              tape_traps,
                                              key_reset,
                                              event_kind::tape_rewind,
                                              event_kind::tape_close_wav};
    const auto drive = int32_t(below(4));
    const auto flag = int32_t(below(2));
    switch (below(27)) {
    case 0: machine_apply(tape_seek, int32_t(below(3000))); break;
    case 1: type_something(); break;
    case 2: machine_apply(tape_level, int32_t(below(64))); break;
    case 3: machine_apply(tape_in, 0, 0, random_bytes(1 + below(2000))); break;
    case 4: machine_apply(tape_record_wav, 11025 << below(3)); break;
    case 5: machine_apply(tape_play_wav, 0, 0, bytes_of(random_tape())); break;
    case 6:
        machine_apply(disk_in, drive, flag, shared_bytes(std::vector<uint8_t>(102400, 0xE5)));
        break;
    case 7: machine_apply(disk_out, drive); break;
    case 8: machine_apply(disk_protect, drive, flag); break;
    case 9: machine_apply(poke, int32_t(0x4400 + below(0x3000)), 0, random_bytes(40)); break;
    case 10:
        if (once_in(4)) machine_apply(reset);
        break;
    case 11:
        if (once_in(8)) machine_apply(flag ? restart : restart_with_disk_rom);
        break;
    case 12: change_configuration(); break;
    case 13: host.input = random_input(); break;
    default: machine_apply(switches[below(std::size(switches))], flag); break;
    }
}

// ---- runs --------------------------------------------------------------------------------------

/// What few programs use: the second registers, shown on the screen, frames of 256 to 280 lines,
/// noise, and port B.
constexpr uint8_t SELDOM[] = {
    0xF3,                                           //       DI
    0x08, 0xC6, 0x1D, 0x32, 0x10, 0x44, 0x08,       // loop: AF' + 1D00, shown
    0xD9, 0x23, 0x22, 0x12, 0x44, 0xD9,             //       HL' + 1, shown
    0x3E, 0x07, 0xD3, 0xFA, 0x3E, 0x1E, 0xD3, 0xFB, //       CRTC R7 = 30, sync
    0x13, 0x7A, 0xE6, 0x0C, 0x0F, 0x0F, 0xC6, 0x1F, //       INC DE; B = 31 to 34 rows
    0x47, 0x3E, 0x04, 0xD3, 0xFA, 0x78, 0xD3, 0xFB, //       CRTC R4 = B
    0x3E, 0x07, 0xD3, 0xF8, 0xD3, 0xF9,             //       R7 = 7: noise only
    0x3E, 0x08, 0xD3, 0xF8, 0x3E, 0x0F, 0xD3, 0xF9, //       R8 = 15
    0x3E, 0x06, 0xD3, 0xF8, 0x7B, 0xD3, 0xF9,       //       R6 = E
    0x3E, 0x0F, 0xD3, 0xF8, 0xDB, 0xF9,             //       port B, shown
    0x32, 0x14, 0x44, 0x18, 0xBB};                  //       JR loop
constexpr const char* SELDOM_USED = "seldom used";

/// Every state goes through a file.
machine_state from_file(const machine_state& state) {
    machine_state read;
    state_description about;
    const std::string problem = state_file_unpack(
        state_file_pack(state, {}, true), read, about,
        {.rom = [](const rom_piece& piece) -> state_sources::Files {
            constexpr size_t SIZES[] = {BASIC_ROM_SIZE, EXPANSION_SIZE, CHARSET_SIZE};
            return {std::vector<uint8_t>(SIZES[piece.area] / 2, 0xC9)};
        }});
    if (!problem.empty()) fail("a state file: " + problem);
    return read;
}

/// An example, the soak's workload, what is seldom used, or BASIC alone.
void start(const std::string& path) {
    constexpr uint16_t ORIGIN = 0x5800;
    if (path.empty()) return;
    if (path != WORKLOAD && path != SELDOM_USED) return start_example(path);
    const auto code = path == WORKLOAD ? contents(path) : std::vector(SELDOM, std::end(SELDOM));
    machine_apply(event_kind::poke, ORIGIN, 0, shared_bytes(code));
    machine_apply(event_kind::go_to, ORIGIN);
}

/// A WAV tape under way, that BASIC loads from or saves to.
void start_tape() {
    using enum event_kind;
    const bool plays = once_in(2);
    if (plays) machine_apply(tape_play_wav, 0, 0, bytes_of(random_tape()));
    if (!plays) machine_apply(tape_record_wav, 11025 << below(3));
    machine_apply(tape_motor, 1);
    type(plays ? "\r\nCLOAD\r" : "\r\nCSAVE\"A\"\r");
}

void run_frame() {
    if (once_in(8)) {
        const auto breakpoint = z80_state.breakpoint_enabled;
        look_ahead(1 + below(MOST_FRAMES_AHEAD), [] { video_render_frame(); });
        if (z80_state.breakpoint_enabled != breakpoint) fail("a look ahead ends a breakpoint");
    }
    const auto run = host.way == STEPPED ? machine_step : machine_run;
    for (int end = run(); end != MACHINE_FRAME; end = run()) {
        if (end != MACHINE_WAITS || !once_in(3)) continue;
        machine_apply(once_in(2) ? event_kind::reset : event_kind::tape_out);
    }
    event_feed_frame();
    if (host.way == PACED) machine_apply(event_kind::tape_moves);
    if (host.way == THROUGH_BREAKPOINT && once_in(4)) z80_cpu_set_breakpoint(z80_state.pc);
}

/// A part of a frame, or more than one, by single instructions.
void run_steps() {
    for (unsigned n = below(3000); n > 0; --n) {
        if (machine_step() == MACHINE_WAITS) return;
    }
}

struct Parked {
    machine_state state = {};
    size_t event;
    std::array<size_t, OUTPUTS> put_out; ///< before it
};

/// The log as it comes back from blocks of bytes.
machine_log coded(const machine_log& log) {
    machine_log again;
    std::span<const machine_event> rest = log.events;
    while (!rest.empty()) {
        const size_t count = std::min<size_t>(1 + below(300), rest.size());
        const std::string problem =
            events_from_bytes(events_to_bytes(rest.first(count)), again.events);
        if (!problem.empty()) fail(problem);
        rest = rest.subspan(count);
    }
    return again;
}

void replay(const Parked& from, const machine_log& log, const machine_state& end,
            const Host& first_run) {
    host.put_out = {};
    machine_load(from.state);
    std::string problem = machine_replay(log, from.event);
    machine_state again;
    machine_save(again);
    const std::string difference = machine_difference(end, again);
    if (!difference.empty()) problem += "; " + difference;
    constexpr const char* NAMES[] = {"pictures", "sound", "bytes put out"};
    for (size_t n = 0; n < OUTPUTS; ++n) {
        const auto expected = std::span(first_run.put_out[n]).subspan(from.put_out[n]);
        if (!std::ranges::equal(expected, host.put_out[n]))
            problem += std::string("; other ") + NAMES[n];
    }
    if (!problem.empty()) fail(problem);
}

/// The states of the replay file that is being recorded; the file has their numbers.
std::vector<machine_state> states;

std::vector<uint8_t> park_for_file() {
    machine_save(states.emplace_back());
    return {uint8_t(states.size() - 1)};
}

std::string load_for_file(std::span<const uint8_t> number) {
    if (number[0] < states.size()) machine_load(states[number[0]]);
    return "";
}

/// The whole run once more, from its file.
void play(const std::string& path, const machine_state& end) {
    ReplayPlayer player;
    const auto rom = [](const replay_rom& wanted) {
        return std::vector<uint8_t>(wanted.size, RET); // as the host reads them
    };
    std::string problem =
        player.open(contents(path), {load_for_file, rom, {}, machine_host.read_tape});
    if (problem.empty()) problem = load_for_file(player.start_state()) + player.begin();
    while (problem.empty() && player.is_on()) {
        if (player.run_frame() == ReplayStep::parted) problem = player.trouble();
    }
    machine_state again;
    machine_save(again);
    problem += machine_difference(end, again);
    if (!problem.empty()) fail(path + ": " + problem);
}

/// Every byte of the file changed, and every end of it cut off: it is refused, or plays up to there
/// and says so.
void play_damaged(const std::vector<uint8_t>& whole) {
    const auto trouble = [&](std::vector<uint8_t> bytes, uint8_t change = 0) {
        ReplayPlayer player;
        const std::string problem = player.open(std::move(bytes), {load_for_file, {}, {}, {}});
        if (!problem.empty()) return problem;
        load_for_file(player.start_state());
        z80_state.t_count += change;
        player.begin();
        while (player.is_on()) player.run_frame();
        return player.trouble();
    };
    const std::string parted = trouble(whole, 1);
    if (!parted.ends_with("the same up to frame 0")) fail("another machine: " + parted);
    for (size_t n = 0; n < whole.size(); ++n) {
        if (trouble({whole.begin(), whole.begin() + ptrdiff_t(n)}).empty()) fail("a cut replay");
        std::vector<uint8_t> changed = whole;
        changed[n] ^= uint8_t(1 + below(255));
        if (trouble(changed).empty()) fail("a changed replay");
    }
}

/// Runs a while, parks machines on the way, and replays from each. Returns the replays.
int run_and_replay(int frames) {
    constexpr size_t MOST_PARKED = 4;
    machine_log log;
    std::vector<Parked> parked;
    host.put_out = {};
    states.clear();
    ReplayRecorder recorder;
    const std::string path = std::filesystem::temp_directory_path() /
                             ("tarvelin-replays-" + std::to_string(getpid()) + ".tvr");
    if (!recorder.start(path, "", {park_for_file, [] { return replay_tape(); }})) fail(path);
    const int reader = event_feed_add([&log](std::span<const machine_event> events) {
        log.events.insert(log.events.end(), events.begin(), events.end());
    });
    for (int frame = 0; frame < frames; ++frame) {
        if (once_in(2)) do_something();
        if (once_in(4)) {
            if (once_in(2)) run_steps(); // else between two frames
            if (once_in(2)) do_something();
            if (parked.size() < MOST_PARKED) {
                event_feed_frame();
                machine_state now;
                machine_save(now);
                parked.push_back({from_file(now), log.events.size(), {}});
                for (size_t n = 0; n < OUTPUTS; ++n)
                    parked.back().put_out[n] = host.put_out[n].size();
            }
        }
        run_frame();
    }
    if (once_in(2)) run_steps();
    event_feed_remove(reader);
    recorder.stop();
    machine_state end;
    machine_save(end);
    const Host first_run = host;
    const machine_log bytes = coded(log);
    for (const Parked& from : parked) replay(from, bytes, end, first_run);
    play(path, end);
    static bool damaged = false;
    if (const auto file = contents(path); !damaged && file.size() < 1500) {
        play_damaged(file);
        damaged = true;
    }
    std::filesystem::remove(path);
    machine_load(end);
    return int(parked.size());
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fputs("usage: replays COUNT [SEED]\n", stderr);
        return 2;
    }
    const int wanted = std::atoi(argv[1]);
    const unsigned seed = argc > 2 ? unsigned(std::atoi(argv[2])) : 1;
    connect();
    machine_init();
    tape_init();
    machine_state power_on;
    machine_save(power_on);
    std::vector<std::string> all = {"", WORKLOAD};
    std::ranges::copy(examples({".cmd", ".dsk"}), std::back_inserter(all));
    int done = 0;
    for (unsigned run = 0; done < wanted; ++run) {
        generator.seed(seed * 100'000 + run);
        machine_load(power_on);
        z80_state.breakpoint_enabled = 0;
        host = {};
        host.way = below(4);
        host.device = below(5);
        host.write_fails = once_in(2) ? 1 + below(300) : 0;
        machine_apply(event_kind::engine, int32_t(run % 2));
        const bool tape = once_in(3);
        start(tape ? "" : once_in(3) ? SELDOM_USED : all[run / 2 % all.size()]);
        if (tape) start_tape();
        for (int part = 0; part < 3 && done < wanted; ++part) {
            std::fprintf(stderr, "\rrun %u, part %d, %d replays", run, part, done);
            done += run_and_replay(30);
        }
    }
    std::printf("\n%d replays, each equal to the byte\n", done);
    return 0;
}
