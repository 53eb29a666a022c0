/// basic_run [-r ROM] [-m MODEL] [-d TRACKS] [-f FRAMES] [-p ADDRESS[,COUNT]] < TEXT
/// Types a text at the BASIC prompt of the machine and prints the screen that it leaves; -p prints
/// bytes of the memory behind it. -d gives it the disk ROM and a formatted disk in drive 0; behind
/// the 16 KB of ROM another disk ROM may follow. Ends with 1 when the machine was still busy.
#include "support/basic_machine.h"

#include "cgenie/memory/memory.h"
#include "core/machine.h"
#include "media/disk_system.h"
#include "media/wd1771.h"
#include "support/test_files.h"

#include <cstdio>
#include <iostream>

int main(int count, char** words) {
    std::vector<uint8_t> rom;
    int model = 0, frames = 50 * 600;
    unsigned tracks = 0;
    unsigned address = 0, bytes = 0;
    for (int i = 1; i + 1 < count; i += 2) {
        const char* value = words[i + 1];
        switch (words[i][1]) {
        case 'r': rom = read_file(value); break;
        case 'd': tracks = unsigned(std::atoi(value)); break;
        case 'm': model = std::atoi(value); break;
        case 'f': frames = std::atoi(value); break;
        case 'p':
            bytes = 16;
            std::sscanf(value, "%x,%u", &address, &bytes);
            break;
        default: std::fprintf(stderr, "unknown option %s\n", words[i]); return 2;
        }
    }
    BasicMachine machine;
    if (tracks) {
        std::string problem;
        auto disk = disk_blank(DISK_PLAIN, tracks, 10, problem);
        if (!disk || !disk_format(*disk, problem)) {
            std::fprintf(stderr, "%s\n", problem.c_str());
            return 2;
        }
        machine_cfg[model].expansion_rom = 0;
        wd1771_attach(0, std::move(disk->image), false);
    }
    machine.boot(model, rom);
    const std::string text(std::istreambuf_iterator<char>(std::cin), {});
    const bool idle = machine.type(text, frames);
    for (const std::string& row : machine.screen()) std::printf("%s\n", row.c_str());
    for (unsigned i = 0; i < bytes; ++i)
        std::printf("%s%02X", i % 16 ? " " : i ? "\n" : "", memory[(address + i) & 0xFFFF]);
    std::printf("%s[%d frames, %s]\n", bytes ? "\n" : "", machine.frames(),
                idle ? "waiting" : "still busy");
    return idle ? 0 : 1;
}
