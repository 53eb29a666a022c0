#pragma once
/// The least of CP/M that a processor exerciser asks for: 64 KB of RAM, a program at 0100, and a
/// console that prints a character or a string ending in "$" through CALL 5.

#include <cstdint>
#include <functional>
#include <span>
#include <string>

struct CpmRun {
    bool finished;        ///< the program returned to 0000 within the limit
    std::string output;   ///< what it printed
    int64_t cycles;       ///< T-states used, the system's jump and return included
    int64_t instructions; ///< steps of the processor
};

/// Runs a COM file's bytes on the flat bus until it reaches 0000 or has used `cycle_limit`
/// T-states. `console`, when given, gets each character as it is printed.
CpmRun run_cpm_program(std::span<const uint8_t> program, int64_t cycle_limit,
                       const std::function<void(char)>& console = nullptr);
