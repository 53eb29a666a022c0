#pragma once
/// 64 KB of flat RAM, ports that record and answer, and a trap that records: the smallest machine
/// that the processor runs on.

#include <array>
#include <cstdint>
#include <vector>

struct FlatBus {
    enum class Access : uint8_t { read, write, in, out };
    struct Event {
        Access access;
        uint16_t address; ///< or port
        uint8_t value;
        bool operator==(const Event&) const = default;
    };

    std::array<uint8_t, 65536> memory = {};
    std::array<uint8_t, 256> input = {}; ///< what each port reads
    bool record = false;                 ///< keep `events`
    std::vector<Event> events;           ///< every access in order
    std::vector<int64_t> times;          ///< t_count of each, with its wait cycles
    int wait_cycles = 0;                 ///< added to t_count by every memory access
    std::vector<int> traps;              ///< numbers of the traps taken
    void (*on_trap)(int number) = nullptr;
    void (*on_out)(uint8_t port, uint8_t value) = nullptr;

    /// Back to zeroed memory and no recording.
    void clear();
    /// Keeps an access, when that is asked for.
    void note(Access access, uint32_t address, uint8_t value);
    /// Places bytes at an address.
    void load(uint16_t address, std::initializer_list<int> bytes);
};
extern FlatBus flat_bus;
