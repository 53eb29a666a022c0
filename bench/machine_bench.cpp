/// The machine: frames of both engines with and without a picture, the composite filter, the
/// scaling into the canvas, the GIF writer. "emulated s/s" is emulated seconds per second of the
/// host.

#include "cgenie/memory/memory.h"
#include "cgenie/palette.h"
#include "cgenie/video.h"
#include "cgenie/video_output.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "core/machine_state.h"
#include "core/pacing/pacing.h"
#include "files/file_handle.h"
#include "host/canvas.h"
#include "host/display.h"
#include "host/machine_callbacks.h"
#include "host/recording/gif.h"
#include "media/files/program_files.h"
#include "platform/headless/headless.h"
#include "time/history.h"
#include "wall/machine_host.h"
#include "z80/z80.h"
#include "z80/z80_watch.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <string>
#include <vector>

namespace {

constexpr double CLOCK = 2216750; ///< Hz
constexpr uint16_t WORKLOAD_ORIGIN = 0x4000;
constexpr int WARM_UP_FRAMES = 100;
constexpr int64_t FRAME_NS = 20'000'000;

void power_on() {
    connect_machine();
    machine_init();
    video_init(0);
    g_bCycleBasedEngine = false;
    g_CompositeBlur = 0;
    recreate_bitmap(false, 8);
}

/// The processor's mixed workload, in RAM with its wait cycles.
void start_workload() {
    power_on();
    const FileHandle file = open_file(WORKLOAD, "rb");
    if (!file || std::fread(memory + WORKLOAD_ORIGIN, 1, 0x1000, file.get()) == 0) std::abort();
    z80_state.pc = WORKLOAD_ORIGIN;
}

void start_example(const char* name) {
    power_on();
    const std::string path = std::string(EXAMPLES "/") + name;
    const FileHandle file = open_file(path.c_str(), "rb");
    if (!file || !std::freopen("/dev/null", "w", stderr)) std::abort();
    load_cmd(file.get(), &z80_state.pc);
    do_some_frames(WARM_UP_FRAMES);
}

void run_frames(benchmark::State& state, bool show) {
    const int64_t start = z80_state.t_count;
    for (auto _ : state) {
        machine_run();
        if (show) update_screen(1);
    }
    state.counters["emulated s/s"] =
        benchmark::Counter(double(z80_state.t_count - start) / CLOCK, benchmark::Counter::kIsRate);
}

void frame_of_workload(benchmark::State& state) {
    start_workload();
    run_frames(state, false);
}
BENCHMARK(frame_of_workload)->Unit(benchmark::kMicrosecond);

/// A breakpoint and a watch are armed, and never hit.
void frame_with_breakpoints(benchmark::State& state, const char* name, bool beam) {
    start_example(name);
    g_bCycleBasedEngine = beam;
    z80_watch.memory[0xBFF0] = WATCH_EXECUTE;
    z80_watch.memory[0x3123] = WATCH_WRITE;
    z80_watch.run = z80_run_watched;
    run_frames(state, false);
    z80_watch = {};
}
BENCHMARK_CAPTURE(frame_with_breakpoints, colours, "colours.cmd", false)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(frame_with_breakpoints, beam, "colours.cmd", true)->Unit(benchmark::kMicrosecond);

void save_state(benchmark::State& state) {
    start_workload();
    machine_state parked;
    for (auto _ : state) machine_save(parked);
}
BENCHMARK(save_state)->Unit(benchmark::kMicrosecond);

void load_state(benchmark::State& state) {
    start_workload();
    machine_host = machine_without_host(); // what the shell shows anew is not the machine's
    machine_state parked;
    machine_save(parked);
    for (auto _ : state) machine_load(parked);
}
BENCHMARK(load_state)->Unit(benchmark::kMicrosecond);

/// With a state each second of the machine, as at its own speed, or by the host's time.
void frame_with_history(benchmark::State& state, bool unpaced) {
    start_example("bounce.cmd");
    static int64_t passed = 0;
    history_host.nanoseconds = [] {
        using namespace std::chrono;
        return duration_cast<nanoseconds>(steady_clock::now().time_since_epoch()).count() + passed;
    };
    history_start({});
    for (auto _ : state) {
        machine_run();
        history_frame_ran();
        if (!unpaced) passed += FRAME_NS;
    }
    state.counters["bytes per frame"] = double(history_bytes()) / double(history_last());
    history_stop();
}

void frame_of_example(benchmark::State& state, const char* name) {
    start_example(name);
    run_frames(state, false);
}
BENCHMARK_CAPTURE(frame_of_example, colours, "colours.cmd")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(frame_of_example, bounce, "bounce.cmd")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(frame_with_history, paced, false)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(frame_with_history, unpaced, true)->Unit(benchmark::kMicrosecond);

/// The whole way to the canvas: single or giant, plain or through the composite filter.
void frame_of_example_with_picture(benchmark::State& state, const char* name, bool giant,
                                   bool blur) {
    start_example(name);
    g_CompositeBlur = blur;
    recreate_bitmap(giant, 8);
    run_frames(state, true);
}
BENCHMARK_CAPTURE(frame_of_example_with_picture, colours, "colours.cmd", false, false)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(frame_of_example_with_picture, colours_giant, "colours.cmd", true, false)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(frame_of_example_with_picture, colours_blur, "colours.cmd", false, true)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(frame_of_example_with_picture, bounce_blur, "bounce.cmd", false, true)
    ->Unit(benchmark::kMicrosecond);

void beam_frame_of_example(benchmark::State& state, const char* name) {
    start_example(name);
    g_bCycleBasedEngine = true;
    run_frames(state, false);
}
BENCHMARK_CAPTURE(beam_frame_of_example, colours, "colours.cmd")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(beam_frame_of_example, bounce, "bounce.cmd")->Unit(benchmark::kMicrosecond);

void render_full_frame(benchmark::State& state, const char* name) {
    start_example(name);
    for (auto _ : state) video_render_frame();
}
BENCHMARK_CAPTURE(render_full_frame, text, "colours.cmd")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(render_full_frame, graphics, "bounce.cmd")->Unit(benchmark::kMicrosecond);

/// A picture that stands still, and one that changes in every line.
void composite_filter(benchmark::State& state, bool moving) {
    start_example("colours.cmd");
    std::vector<uint8_t> pixels(size_t(SCREEN_WIDTH) * SCREEN_HEIGHT * 4);
    for (auto _ : state) {
        for (int y = 0; moving && y < SCREEN_HEIGHT; ++y) frame_buffer[y * SCREEN_WIDTH] ^= 1;
        video_resize_frame(pixels.data(), 0, SCREEN_WIDTH, 66, 0);
    }
}
BENCHMARK_CAPTURE(composite_filter, still, false)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(composite_filter, moving, true)->Unit(benchmark::kMicrosecond);

/// Into the canvas without the filter.
void scale_frame(benchmark::State& state, int width) {
    start_example("colours.cmd");
    std::vector<uint8_t> pixels(size_t(SCREEN_WIDTH) * SCREEN_HEIGHT * 4);
    for (auto _ : state) video_resize_frame(pixels.data(), 0, width, 0, 0);
}
BENCHMARK_CAPTURE(scale_frame, single, SCREEN_WIDTH)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(scale_frame, giant, 2 * SCREEN_WIDTH)->Unit(benchmark::kMicrosecond);

void gif_of_example(benchmark::State& state) {
    start_example("colours.cmd");
    for (auto _ : state)
        gif_save("/dev/null", canvas.width, canvas.height, canvas.pixels.data(), cgpalette[0]);
}
BENCHMARK(gif_of_example)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    HeadlessPlatform host({});
    install_platform(host);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
