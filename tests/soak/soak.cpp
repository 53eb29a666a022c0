/// A busy machine in virtual time, watched for hours: no cycle and no sample may be lost or won,
/// the same moment of the program must always show the same picture, and nothing may grow.
///
/// usage: soak day line|beam [MINUTES]     a day from the start, or so many minutes
///        soak edges line|beam             a few seconds around the edges of the counters
///
/// Ends with 1 and a line that begins with "FAILED" when something is wrong.

#include "soak/sound_watch.h"

#include "cgenie/memory/memory.h"
#include "cgenie/video.h"
#include "core/frame_driver.h"
#include "core/pacing/pacing.h"
#include "files/file_handle.h"
#include "host/commands.h"
#include "host/disks.h"
#include "host/menu.h"
#include "host/shell.h"
#include "media/files/printer_file.h"
#include "media/files/tape_sound_files.h"
#include "media/printer.h"
#include "media/tape_audio.h"
#include "media/wd1771.h"
#include "platform/headless/headless.h"
#include "sound/output/sound_ring.h"
#include "support/paced_frames.h"
#include "z80/z80.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

// The machine.
constexpr int64_t FRAME = 44335;          ///< cycles
constexpr int64_t LONGEST_OVERSHOOT = 64; ///< an instruction and an interrupt
constexpr int64_t FRAME_NS = 20'000'000;
constexpr int64_t MINUTE = 3000; ///< frames
constexpr int64_t HOUR = 60;     ///< minutes

// The program, as its source says.
constexpr uint16_t ORIGIN = 0x5800;
constexpr uint16_t COUNTER = 0x5802;
constexpr uint16_t KEYS = 0x5803;
constexpr uint16_t STICKS = 0x5805;
constexpr uint16_t TAPE = 0x5807;
constexpr uint16_t TAKEN = 0x5809;
constexpr uint16_t STEP = 0x5810;
constexpr int64_t STEP_CYCLES = 144 * 304;
constexpr int64_t PERIOD = 64 * STEP_CYCLES;

// Samples: the sound's own clock is 141 cycles a line at 15625 lines; 256 samples are 11750 cycles.
constexpr int64_t SAMPLES = 256;
constexpr int64_t SAMPLES_CYCLES = 11750;

constexpr uint8_t KEY_A = 'A';
constexpr int MOTOR_FRAMES = 115; ///< 2.3 s
constexpr int TAPE_RATE = 44100;
constexpr size_t DISK_BYTES = 40 * 10 * 256;

/// Of the files of the run, while it lasts.
std::filesystem::path work_folder;

void remove_work_folder() {
    if (work_folder.empty()) return;
    std::filesystem::current_path(work_folder.parent_path());
    std::filesystem::remove_all(work_folder);
}

[[noreturn]] void fail(const std::string& problem) {
    std::printf("FAILED at cycle %lld: %s\n", static_cast<long long>(z80_state.t_count),
                problem.c_str());
    std::fflush(stdout);
    remove_work_folder();
    std::_Exit(1);
}

void expect(bool condition, const char* what, double found) {
    if (!condition) fail(std::string(what) + ": " + std::to_string(found));
}

uint16_t word(uint16_t address) { return uint16_t(memory[address] | memory[address + 1] << 8); }

/// Of the sound at a cycle, rounded to nearest.
int64_t sample_position(int64_t cycle) {
    return (2 * cycle * SAMPLES + SAMPLES_CYCLES) / (2 * SAMPLES_CYCLES);
}

int64_t resident_bytes() {
    const FileHandle file = open_file("/proc/self/statm", "r");
    long long pages = 0;
    if (!file || std::fscanf(file.get(), "%*d %lld", &pages) != 1) return 0;
    return pages * sysconf(_SC_PAGESIZE);
}

/// FNV-1a.
uint64_t checksum(const uint8_t* bytes, size_t count) {
    uint64_t sum = 0xCBF29CE484222325;
    for (size_t n = 0; n < count; ++n) sum = (sum ^ bytes[n]) * 0x100000001B3;
    return sum;
}

std::string work_file(const char* name) { return (work_folder / name).string(); }

HeadlessOptions options() {
    HeadlessOptions made;
    made.look_ns = 50'000;
    made.refresh_rate = 60;
    made.data_directory = work_file("data");
    return made;
}

// ---- the run -----------------------------------------------------------------------------------

/// What goes on beside the program for a piece of the run.
struct Scene {
    bool adapts = false; ///< the sound follows the device; otherwise every sample is made
    bool plays = false;  ///< the tape that was recorded before; otherwise records
    bool key = false;
    bool prints = false;
};
constexpr Scene RECORDING = {};
constexpr Scene PLAYING = {.adapts = true, .plays = true, .key = true, .prints = true};

class Soak {
public:
    explicit Soak(bool beam) : host_(options()), beam_(beam) {
        install_platform(host_);
        host_.joysticks().sticks.resize(1);
        platform().window().create("soak");
        create_menu();
        emu_init({});
        g_bCycleBasedEngine = beam;
        sound_watch_install();
        insert_media();
        start_program();
    }
    ~Soak() { emu_close(); }
    Soak(const Soak&) = delete;
    Soak& operator=(const Soak&) = delete;

    int64_t frames() const { return frames_; }
    int64_t first_memory() const { return first_memory_; }
    double last_volume() const { return volume_; }
    uint64_t picture() const { return picture_; }

    /// Runs so many frames in a scene, and then to where the picture is compared.
    void run(int64_t count, const Scene& scene);
    /// As if the machine had been running for longer.
    void jump_to(int64_t cycle) {
        tape_set_motor(0, z80_state.t_count); // or the gap would be recorded
        z80_state.t_count = cycle;
        sound_update(cycle); // the gap is no sound
        start_counting();
    }
    void watch_memory() { first_memory_ = resident_bytes(); }
    void check_memory() const;

private:
    void insert_media();
    void start_program();
    void start_counting();
    void enter(const Scene& scene);
    void paced_frame();
    void count_frame();
    void check_sample_count();
    void check_motor(int frame);
    void check_program(const Scene& scene, int64_t cycles);
    void check_tape(int64_t count) const;
    void check_sound(const Scene& scene);
    void check_picture();
    void go_to_first_step();

    HeadlessPlatform host_;
    bool beam_;
    int64_t frames_ = 0;          ///< in all
    int64_t frame_end_ = 0;       ///< of the frame under way, in cycles
    bool adapted_ = false;        ///< the sound, up to now
    bool counts_samples_ = false; ///< begun
    int64_t first_sample_ = 0;    ///< where counting began
    int64_t first_fragment_ = 0;
    int64_t least_unfinished_ = 0; ///< samples rendered beyond the written fragments
    int64_t most_unfinished_ = 0;
    bool recording_ = false; ///< a tape to record is in
    double volume_ = 0;
    uint64_t picture_ = 0;
    int64_t first_memory_ = 0;
    uint16_t keys_ = 0, sticks_ = 0, tape_ = 0, taken_ = 0;
};

void Soak::insert_media() {
    const std::string path = work_file("soak.dsk");
    const std::vector<uint8_t> sectors(DISK_BYTES, 0xE5);
    {
        const FileHandle file = open_file(path, "wb");
        if (!file) fail(path + " cannot be written");
        std::fwrite(sectors.data(), 1, sectors.size(), file.get());
    }
    main_disk_image_attach(0, path);
    printer_init();
}

void Soak::start_program() {
    const FileHandle file = open_file(WORKLOAD, "rb");
    expect(file && std::fread(memory + ORIGIN, 1, 0x700, file.get()) > 0, WORKLOAD " to read", 0);
    z80_state.pc = ORIGIN;
    frame_end_ = z80_state.t_count + FRAME;
    for (int pass = 0; pass < 2; ++pass) go_to_first_step(); // in its first step the disk rests
    const int64_t start = z80_state.t_count;
    go_to_first_step();
    expect(z80_state.t_count - start == PERIOD, "cycles of a period",
           double(z80_state.t_count - start));
    for (int pass = 0; pass < 2; ++pass) go_to_first_step(); // all of the screen has scrolled by
    start_counting();
}

/// From the present frame on.
void Soak::start_counting() {
    machine_run();
    ++frames_;
    frame_end_ = z80_state.t_count + FRAME + leftover;
    counts_samples_ = false;
}

/// The frame that has just ended was as long as it had to be.
void Soak::count_frame() {
    ++frames_;
    const int64_t over = z80_state.t_count - frame_end_;
    expect(over >= 0 && over < LONGEST_OVERSHOOT, "cycles over the end of a frame", double(over));
    // The beam engine begins the next frame where this one has ended.
    frame_end_ = (beam_ ? z80_state.t_count : frame_end_) + FRAME;
    check_sample_count();
}

/// What is rendered but not written is always less than a fragment: exactly so many samples have
/// been made as the cycles ask for.
void Soak::check_sample_count() {
    if (!counts_samples_) {
        first_sample_ = sample_position(z80_state.t_count);
        first_fragment_ = sound_watch_fragments();
        least_unfinished_ = most_unfinished_ = 0;
        counts_samples_ = true;
    }
    const int64_t made = (sound_watch_fragments() - first_fragment_) * FRAGMENT_SAMPLES;
    const int64_t unfinished = sample_position(z80_state.t_count) - first_sample_ - made;
    least_unfinished_ = std::min(least_unfinished_, unfinished);
    most_unfinished_ = std::max(most_unfinished_, unfinished);
}

void Soak::paced_frame() {
    run_paced_frame();
    count_frame();
}

void Soak::go_to_first_step() {
    do {
        machine_step();
        if (z80_state.t_count < frame_end_) continue;
        count_frame();
        host_.advance_ns(FRAME_NS);
    } while (z80_state.pc != STEP || memory[COUNTER] != 0);
    reset_timer();
}

void Soak::enter(const Scene& scene) {
    const std::string path = work_file("tape.wav");
    if (scene.plays) {
        tape_open_wav(path);
    } else if (!recording_) {
        tape_create_wav(path, TAPE_RATE);
    }
    recording_ = !scene.plays;
    expect(tape_wav_is_open() != 0, "a tape in the recorder", 0);
    tape_rewind();
    tape_set_motor(1, z80_state.t_count);
    wd1771_device_select(1); // starts the drive
    host_.set_key(KEY_A, scene.key);
    host_.joysticks().sticks[0].state.x = scene.key ? 0xFFFF : 0;
    printer_enabled = scene.prints;
    sound_watch_show_device(scene.adapts);
    sound_watch_take();
    keys_ = word(KEYS);
    sticks_ = word(STICKS);
    tape_ = word(TAPE);
    taken_ = word(TAKEN);
}

void Soak::check_motor(int frame) {
    // The lamp is set at the end of a frame, by the time then.
    const bool lit = wd1771_is_active() == 0;
    if (frame < MOTOR_FRAMES - 1) expect(lit, "the drive has stopped, frame", frame);
    if (frame > MOTOR_FRAMES + 1) expect(!lit, "the drive still runs, frame", frame);
}

void Soak::run(int64_t count, const Scene& scene) {
    constexpr int64_t SETTLED = 50; ///< frames until the sound has found its lead
    enter(scene);
    const int64_t start = z80_state.t_count;
    paced_frame(); // ends what the sound core had decided before
    if (adapted_) counts_samples_ = false;
    adapted_ = scene.adapts;
    const int64_t start_ns = platform().clock().counter();
    for (int64_t frame = 0; frame < count; ++frame) {
        paced_frame();
        check_motor(int(frame + 2));
        if (frame == SETTLED) sound_watch_take();
    }
    const int64_t late = platform().clock().counter() - start_ns - count * FRAME_NS;
    expect(std::llabs(late) < 3 * FRAME_NS, "nanoseconds beside real time", double(late));
    check_program(scene, z80_state.t_count - start);
    check_tape(count);
    check_sound(scene);
    host_.set_key(KEY_A, false);
    if (scene.key) go_to_first_step(); // by then the program has seen that it is up
    check_picture();
}

/// What the program has counted in so many cycles.
void Soak::check_program(const Scene& scene, int64_t cycles) {
    const int64_t steps = cycles / STEP_CYCLES;
    const auto all = [steps](uint16_t more) { return std::llabs(more - steps) <= 1; };
    const auto keys = uint16_t(word(KEYS) - keys_);
    const auto sticks = uint16_t(word(STICKS) - sticks_);
    const auto taken = uint16_t(word(TAKEN) - taken_);
    const auto tape = uint16_t(word(TAPE) - tape_);
    expect(all(taken), "interrupts", taken);
    expect(scene.key ? all(keys) : keys == 0, "steps with a key down", keys);
    expect(scene.prints || !scene.key ? all(sticks) : sticks < steps, "steps at the stick", sticks);
    expect(scene.plays ? tape > 0 : tape == 0, "cassette bits", tape);
}

/// Every step of a tape is rounded by itself, which may win or lose a hundredth.
void Soak::check_tape(int64_t count) const {
    const double seconds = double(count) * FRAME_NS / 1e9;
    const double shown = std::atof(host_.status_text(2).c_str());
    expect(std::abs(shown - seconds) <= 1 + seconds / 100, "seconds of the tape", shown);
}

void Soak::check_sound(const Scene& scene) {
    const SoundFigures sound = sound_watch_take();
    volume_ = std::sqrt(sound.square_sum / double(std::max<int64_t>(sound.samples, 1)));
    expect(volume_ > 1000 && volume_ < 12000, "effective volume", volume_);
    expect(sound.clipped == 0, "clipped samples", double(sound.clipped));
    expect(sound.longest_run < SOUND_RATE / 20, "equal samples in a row", sound.longest_run);
    if (scene.adapts) {
        expect(sound.least_lead > 0, "bytes before the device, at least", sound.least_lead);
        expect(sound.most_lead < int32_t(RING_BYTES / 4), "bytes before the device, at most",
               sound.most_lead);
    } else {
        const int64_t spread = most_unfinished_ - least_unfinished_;
        expect(spread < FRAGMENT_SAMPLES, "samples unfinished", double(spread));
    }
}

void Soak::check_picture() {
    go_to_first_step();
    if (!beam_) video_render_frame();
    const uint64_t sum = checksum(frame_buffer, size_t(SCREEN_WIDTH) * SCREEN_HEIGHT);
    if (picture_ == 0) picture_ = sum;
    if (sum != picture_) fail("the picture is another one than at first");
}

void Soak::check_memory() const {
#ifndef ADDRESS_SANITIZER // which keeps what is freed
    const int64_t grown = resident_bytes() - first_memory_;
    expect(grown < 1 << 20, "bytes more resident than after the start", double(grown));
#endif
}

// ---- the two runs ------------------------------------------------------------------------------

using SteadyClock = std::chrono::steady_clock;

void run_edges(bool beam) {
    constexpr int64_t CYCLES_31 = int64_t(1) << 31;
    constexpr int64_t CYCLES_32 = int64_t(1) << 32;
    constexpr int64_t SAMPLES_31 = CYCLES_31 / SAMPLES * SAMPLES_CYCLES;
    constexpr int64_t SAMPLES_32 = CYCLES_32 / SAMPLES * SAMPLES_CYCLES;
    struct Edge {
        const char* name;
        int64_t cycle;
        Scene scene;
    };
    const Edge edges[] = {
        {"2^31 cycles", CYCLES_31, RECORDING},   {"2^32 cycles", CYCLES_32, PLAYING},
        {"2^32 cycles", CYCLES_32, RECORDING},   {"2^31 samples", SAMPLES_31, PLAYING},
        {"2^31 samples", SAMPLES_31, RECORDING}, {"2^32 samples", SAMPLES_32, RECORDING},
    };
    constexpr int64_t BEFORE = 60 * FRAME;
    Soak soak(beam);
    for (const Edge& edge : edges) {
        soak.jump_to(edge.cycle - BEFORE);
        event_screenshot_timout = edge.cycle;
        soak.run(125, edge.scene);
        expect(event_screenshot_timout == EVENT_DISARMED, "the timed screenshot", 0);
        std::printf("%-13s %-9s volume %5.0f  picture %016llx\n", edge.name,
                    edge.scene.plays ? "playing" : "recording", soak.last_volume(),
                    static_cast<unsigned long long>(soak.picture()));
    }
}

void run_day(bool beam, int64_t minutes) {
    constexpr int64_t PLAYING_MINUTE = 9; ///< of ten
    constexpr int64_t WARM = 12;          ///< minutes; both scenes have been on
    Soak soak(beam);
    const auto began = SteadyClock::now();
    std::puts("   hour         cycles        samples  volume  resident  real time");
    for (int64_t minute = 1; minute <= minutes; ++minute) {
        soak.run(MINUTE, minute % 10 == PLAYING_MINUTE ? PLAYING : RECORDING);
        if (minute == WARM) soak.watch_memory();
        if (minute > WARM) soak.check_memory();
        if (minute % HOUR != 0 && minute != minutes) continue;
        std::printf("%7.2f %14lld %14lld %7.0f %6lld KB %8.0f s\n", double(minute) / HOUR,
                    static_cast<long long>(z80_state.t_count),
                    static_cast<long long>(sample_position(z80_state.t_count)), soak.last_volume(),
                    static_cast<long long>(resident_bytes() / 1024),
                    std::chrono::duration<double>(SteadyClock::now() - began).count());
        std::fflush(stdout);
    }
}

} // namespace

int main(int argc, char** argv) {
    const std::string mode = argc > 1 ? argv[1] : "";
    const std::string engine = argc > 2 ? argv[2] : "";
    constexpr int64_t DAY = 24 * HOUR;
    const int64_t minutes = argc > 3 ? std::atoll(argv[3]) : DAY;
    const bool known = (engine == "line" || engine == "beam") && minutes > 0;
    if (!known || (mode != "edges" && mode != "day")) {
        std::fputs("usage: soak day line|beam [MINUTES]\n       soak edges line|beam\n", stderr);
        return 2;
    }
    work_folder = std::filesystem::temp_directory_path() / ("soak-" + std::to_string(getpid()));
    std::filesystem::create_directories(work_folder);
    std::filesystem::current_path(work_folder); // where screenshots go
    if (mode == "edges") run_edges(engine == "beam");
    if (mode == "day") run_day(engine == "beam", minutes);
    remove_work_folder();
    return 0;
}
