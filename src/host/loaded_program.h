#pragma once
/// Which program the user works with: that of the file that was started, or attached as a cassette
/// or in drive 0, last. What is typed in has no file.

#include <cstdint>
#include <span>
#include <string>

struct LoadedProgram {
    std::string name;  ///< of the file, without its folder
    uint64_t hash = 0; ///< of what it held; 0 without a program
    bool operator==(const LoadedProgram&) const = default;
};

/// Empty without one.
const LoadedProgram& loaded_program();
/// A file that cannot be read is no program.
void program_is_loaded(const std::string& path);
/// The same with what the file holds; the name may be without a folder.
void program_is_loaded(const std::string& path, std::span<const uint8_t> bytes);
/// For another state of the machine.
void program_is(const LoadedProgram& program);
/// The machine was switched off and on: what is neither in drive 0 nor in the recorder is gone.
void program_after_restart();
/// What the user has set for the program goes with its disk, which has been written to.
void program_is_written(uint64_t hash_before, uint64_t hash_now);
