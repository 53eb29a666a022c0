/// The sound path: one emulated second of samples from the chip, and the same through the sound
/// core with its mix and filter; an update with nothing to do.

#include "sound/beeper.h"
#include "sound/sound_core.h"
#include "sound/ym2149.h"
#include "z80/z80.h"

#include <benchmark/benchmark.h>

#include <array>

namespace {

constexpr uint32_t CLOCK = 2216750; ///< Hz
constexpr int64_t FRAME = 44335;    ///< T-states
constexpr int FRAMES = 50;

void power_on() {
    ay = {};
    z80_init(CLOCK);
    ym2149_init(CLOCK);
    beeper_init();
    sound_init();
}

void power_on_with(const std::array<uint8_t, 14>& values) {
    power_on();
    for (uint32_t reg = 0; reg < values.size(); ++reg) ym2149_write_register(reg, values[reg]);
}

/// Three tones with noise under a fast triangle.
void all_busy() { power_on_with({0x1C, 1, 0x7B, 0, 9, 0, 3, 0, 0x1F, 0x10, 0x1F, 200, 0, 0x0E}); }

/// The most changes in a second: every generator as fast as it is heard.
void all_fastest() { power_on_with({6, 0, 6, 0, 6, 0, 0, 0, 0x10, 0x10, 0x10, 0, 0, 0x0E}); }

void one_voice() {
    power_on();
    ym2149_write_register(0, 0xFE);
    ym2149_write_register(7, 0x3E);
    ym2149_write_register(8, 15);
}

void one_second_of_samples(benchmark::State& state, void (*play)()) {
    play();
    static std::array<uint16_t, SOUND_RATE> samples;
    for (auto _ : state) {
        ym2149_calc_output(samples.data(), SOUND_RATE);
        benchmark::DoNotOptimize(samples.data());
    }
}
BENCHMARK_CAPTURE(one_second_of_samples, busy, all_busy)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(one_second_of_samples, one_voice, one_voice)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(one_second_of_samples, silent, power_on)->Unit(benchmark::kMicrosecond);

template <void (*play)()>
void clean() {
    play();
    ym2149_clean = true;
}

void one_second_through_the_core(benchmark::State& state, void (*play)()) {
    play();
    for (auto _ : state) {
        for (int frame = 0; frame < FRAMES; ++frame) sound_flush(z80_state.t_count += FRAME);
    }
}
BENCHMARK_CAPTURE(one_second_through_the_core, busy, all_busy)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(one_second_through_the_core, one_voice, one_voice)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(one_second_through_the_core, silent, power_on)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(one_second_through_the_core, clean_busy, clean<all_busy>)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(one_second_through_the_core, clean_fastest, clean<all_fastest>)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(one_second_through_the_core, clean_silent, clean<power_on>)
    ->Unit(benchmark::kMicrosecond);

/// A register written every 50 T-states.
void one_second_of_digital_samples(benchmark::State& state, void (*play)()) {
    play();
    for (auto _ : state) {
        for (const int64_t end = z80_state.t_count + CLOCK; z80_state.t_count < end;
             z80_state.t_count += 50) {
            ym2149_write_register(9, uint8_t(z80_state.t_count & 15));
        }
    }
}
BENCHMARK_CAPTURE(one_second_of_digital_samples, busy, all_busy)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(one_second_of_digital_samples, clean_busy, clean<all_busy>)
    ->Unit(benchmark::kMicrosecond);

void update_with_nothing_to_do(benchmark::State& state) {
    power_on();
    for (auto _ : state) sound_update(z80_state.t_count);
}
BENCHMARK(update_with_nothing_to_do);

} // namespace

uint8_t mem_read(uint32_t) { return 0xFF; }
void mem_write(uint32_t, uint8_t) {}
uint8_t z80_in(uint32_t) { return 0xFF; }
void z80_out(uint32_t, uint8_t) {}
void trap_handle(int) {}

BENCHMARK_MAIN();
