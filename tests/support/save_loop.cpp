/// save_loop KIND PATH [TIMES]: saves a file of that kind over and over, or so many times, with the
/// one contents and the other by turns, so that it can be killed while it saves.

#include "cgenie/memory/memory.h"
#include "host/screenshot.h"
#include "media/files/cassette_files.h"
#include "media/files/program_files.h"
#include "platform/headless/headless.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

struct kind {
    const char* name;
    int (*save)(const std::string& path);
};
constexpr kind KINDS[] = {
    {"snapshot",
     [](const std::string& path) { return snapshot_save(path.c_str(), memory_get_ram()); }},
    {"export", [](const std::string& path) { return tape_dump_cas(path, "4000", "FFFF", "4000"); }},
    {"screenshot", [](const std::string& path) { return gif_write_as(path, canvas); }},
    {"bitmap", [](const std::string& path) { return dib_save_to_file(canvas, path); }},
};

} // namespace

int main(int count, char** words) {
    if (count < 3) return 2;
    const std::string name = words[1];
    const auto* const kind =
        std::ranges::find_if(KINDS, [&](const auto& known) { return name == known.name; });
    if (kind == std::end(KINDS)) return 2;
    const int times = count > 3 ? std::atoi(words[3]) : 0;
    HeadlessPlatform host({});
    install_platform(host);
    if (!dib_create(canvas, 768, 576, 8)) return 1;
    for (int n = 0; times == 0 || n < times; ++n) {
        const auto value = uint8_t(n % 2 ? 0x55 : 0xAA);
        std::fill_n(memory_get_ram(), RAM_SIZE, value);
        for (size_t at = 0; at < canvas.pixels.size(); ++at)
            canvas.pixels[at] = uint8_t(at * at / 7 ^ value);
        if (!kind->save(words[2])) return std::perror(words[2]), 1;
    }
    return 0;
}
