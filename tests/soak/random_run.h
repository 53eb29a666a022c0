/// What random runs of the machine share.

#pragma once

#include "core/machine_events.h"
#include "files/whole_file.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <random>
#include <string>
#include <string_view>
#include <vector>

inline std::mt19937 generator;
inline unsigned below(unsigned count) { return unsigned(generator() % count); }
inline bool once_in(unsigned count) { return below(count) == 0; }

inline uint64_t hash_of(const void* data, size_t size, uint64_t sum = 0xCBF29CE484222325) {
    const auto* bytes = static_cast<const uint8_t*>(data);
    for (size_t n = 0; n < size; ++n) sum = (sum ^ bytes[n]) * 0x100000001B3;
    return sum;
}

[[noreturn]] inline void fail(const std::string& problem) {
    std::printf("FAILED: %s\n", problem.c_str());
    std::fflush(stdout);
    std::_Exit(1);
}

inline std::vector<uint8_t> contents(const std::string& path) {
    const auto bytes = read_whole_file(path);
    if (!bytes) fail(path + " cannot be read");
    return *bytes;
}

inline void type(std::string_view text) {
    machine_apply(event_kind::typing_trap);
    machine_apply(event_kind::type_text, 0, 0,
                  shared_bytes(std::vector<uint8_t>(text.begin(), text.end())));
}

/// What uses the screen, sound, cassette, disk and printer.
inline void type_something() {
    constexpr std::string_view TEXTS[] = {
        "\rPRINT 1\r",
        "\r10 FOR I=1 TO 50:PRINT I,RND(100):NEXT\r\n20 GOTO 10\rRUN\r",
        "\rCSAVE\"A\"\r",
        "\rCLOAD\r",
        "\r10 SOUND 7,56:SOUND 8,15\r\n20 SOUND 0,RND(200):GOTO 20\r\nRUN\r",
        "\rLPRINT \"ABC\"\r",
        "\r10 FGR:FCLS:FOR I=1 TO 30:FCOLOUR RND(4):CIRCLE 40,40,I:NEXT\r\n20 GOTO 10\r\nRUN\r",
        "\rSAVE \"X\"\r",
        "\rLOAD \"X\"\r",
        "\rSYSTEM\r\nA\r",
        "\rNEW\r\rLIST\r"};
    type(TEXTS[below(std::size(TEXTS))]);
}

/// Paths of the examples whose names end so.
inline std::vector<std::string> examples(std::initializer_list<std::string_view> kinds) {
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(EXAMPLES)) {
        const std::string kind = entry.path().extension();
        if (std::ranges::count(kinds, kind)) found.push_back(entry.path());
    }
    std::ranges::sort(found);
    return found;
}

/// From its disk, as a module, or typed.
inline void start_example(const std::string& path) {
    const std::vector<uint8_t> bytes = contents(path);
    if (path.ends_with(".dsk")) {
        machine_apply(event_kind::disk_in, 0, 0, shared_bytes(bytes));
        machine_apply(event_kind::restart_with_disk_rom);
    } else if (path.ends_with(".cmd")) {
        machine_apply(event_kind::load_module, 1, 0, shared_bytes(bytes));
    } else {
        type({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }
}
