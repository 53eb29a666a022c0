/// The processor on flat memory: T-states per second on a mixed workload, beside the distribution's
/// general Z80 library in the same run.

#include "files/file_handle.h"
#include "z80/z80.h"

#include <benchmark/benchmark.h>

extern "C" {
#include <z80ex/z80ex.h>
}

namespace {

constexpr uint16_t ORIGIN = 0x4000; ///< of the workload
constexpr int32_t FRAME = 44335;    ///< T-states
constexpr double CLOCK = 2216750;   ///< Hz

uint8_t flat[65536];

void load_workload() {
    const FileHandle file = open_file(WORKLOAD, "rb");
    if (!file || std::fread(flat + ORIGIN, 1, 0x1000, file.get()) == 0) std::abort();
}

void report(benchmark::State& state, int64_t cycles) {
    state.counters["T-states/s"] = benchmark::Counter(double(cycles), benchmark::Counter::kIsRate);
    state.counters["emulated s/s"] =
        benchmark::Counter(double(cycles) / CLOCK, benchmark::Counter::kIsRate);
}

void processor_frames(benchmark::State& state) {
    load_workload();
    z80_init(uint32_t(CLOCK));
    z80_state.pc = ORIGIN;
    const int64_t start = z80_state.t_count;
    int32_t leftover = 0;
    for (auto _ : state) leftover = z80_run(FRAME + leftover);
    report(state, z80_state.t_count - start);
}
BENCHMARK(processor_frames);

void processor_single_steps(benchmark::State& state) {
    load_workload();
    z80_init(uint32_t(CLOCK));
    z80_state.pc = ORIGIN;
    const int64_t start = z80_state.t_count;
    for (auto _ : state) z80_run(0);
    report(state, z80_state.t_count - start);
}
BENCHMARK(processor_single_steps);

Z80EX_BYTE read_flat(Z80EX_CONTEXT*, Z80EX_WORD address, int, void*) { return flat[address]; }
void write_flat(Z80EX_CONTEXT*, Z80EX_WORD address, Z80EX_BYTE value, void*) {
    flat[address] = value;
}
Z80EX_BYTE read_nothing(Z80EX_CONTEXT*, Z80EX_WORD, void*) { return 0xFF; }
void write_nothing(Z80EX_CONTEXT*, Z80EX_WORD, Z80EX_BYTE, void*) {}
Z80EX_BYTE no_vector(Z80EX_CONTEXT*, void*) { return 0xFF; }

void library_z80ex_frames(benchmark::State& state) {
    load_workload();
    Z80EX_CONTEXT* cpu = z80ex_create(read_flat, nullptr, write_flat, nullptr, read_nothing,
                                      nullptr, write_nothing, nullptr, no_vector, nullptr);
    z80ex_set_reg(cpu, regPC, ORIGIN);
    int64_t cycles = 0;
    for (auto _ : state) {
        const int64_t end = cycles + FRAME;
        while (cycles < end) cycles += z80ex_step(cpu);
    }
    z80ex_destroy(cpu);
    report(state, cycles);
}
BENCHMARK(library_z80ex_frames);

} // namespace

uint8_t mem_read(uint32_t address) { return flat[address]; }
uint8_t mem_peek(uint32_t address) { return flat[address]; }
void mem_write(uint32_t address, uint8_t value) { flat[address] = value; }
uint8_t z80_in(uint32_t) { return 0xFF; }
void z80_out(uint32_t, uint8_t) {}
void trap_handle(int) {}

BENCHMARK_MAIN();
