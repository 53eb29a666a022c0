#pragma once
/// What a debugger has the processor look out for. With nothing armed the processor runs as if this
/// were not here; with something, by a run loop of its own, which is the same to the byte and ends
/// where something is hit.
///
/// Hits are what the processor does. Bytes that it fetches as parts of instructions are not reads.

#include <cstdint>

enum watch_bits : uint8_t { WATCH_EXECUTE = 1, WATCH_READ = 2, WATCH_WRITE = 4 };

enum class watch_kind : uint8_t {
    execute,     ///< PC has come to `address`; HALT and repeating instructions stay there, which is
                 ///< one hit
    memory_read, ///< the others: behind the instruction
    memory_write,
    port_read,
    port_write,
    interrupt, ///< one was accepted, and `address` is its entry
    cycle      ///< the cycle `until` has come
};

struct watch_hit {
    watch_kind kind = watch_kind::execute;
    uint8_t value = 0;  ///< read or written
    uint8_t before = 0; ///< of a memory write: what could be read there before
    uint16_t address = 0;
    uint16_t pc = 0;   ///< of the instruction
    int64_t cycle = 0; ///< t_count at its start
};

constexpr int WATCH_HITS = 8; ///< of one instruction; those beyond are left out
constexpr int64_t WATCH_NO_CYCLE = INT64_MAX;
constexpr int32_t WATCH_NOWHERE = -1;

struct z80_watch_record {
    uint8_t memory[0x10000]; ///< watch_bits of each address
    uint8_t ports[0x100];    ///< watch_bits of each port
    bool interrupts;
    int64_t until = WATCH_NO_CYCLE; ///< first instruction at this cycle or later; hit once
    /// Null, or z80_run_watched: how the machine is run.
    int32_t (*run)(int32_t budget) = nullptr;

    // What the last watched run has come to.
    watch_hit hits[WATCH_HITS];
    int hit_count = 0;
    /// PC of the last instruction, or of the last execute hit: that of the same address is passed
    /// by. To go on from an address where nothing was hit yet, it is set to that address;
    /// WATCH_NOWHERE after the machine has become another one.
    int32_t last_pc = WATCH_NOWHERE;
};
extern z80_watch_record z80_watch;

/// As z80_run, and notes when instructions start as z80_run_noting_starts; ends before an execute
/// hit, or behind the instruction that has hit something else. More than 0 is left only then.
int32_t z80_run_watched(int32_t budget);
/// For a caller that steps, before an instruction: whether PC has come to an address with an
/// execute watch. Notes that as the only hit.
bool z80_watch_arrives();
/// For a caller that has changed something between two instructions, which may take time: whether
/// the cycle `until` has come. Notes that as the only hit.
bool z80_watch_cycle_comes();
