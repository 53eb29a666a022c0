#include "support/basic_machine.h"

#include "cgenie/keyboard.h"
#include "cgenie/memory/memory.h"
#include "cgenie/typing/typing.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "core/pacing/pacing.h"
#include "media/traps.h"
#include "support/test_files.h"
#include "z80/z80.h"

#include <algorithm>
#include <cstdlib>

namespace {
constexpr unsigned TEXT = 0x4400, COLUMNS = 40, ROW_COUNT = 0x42F9;
/// The firmware's delay, in which it spends its time while it waits for a key.
constexpr unsigned DELAY = 0x60, DELAY_END = 0x66;
constexpr int IDLE_FRAMES = 5;
constexpr unsigned KEYBOARD_ENTRY = 0x2B;
} // namespace

std::vector<uint8_t> trial_rom() {
    const char* const path = std::getenv("BASIC_ROM");
    return path ? read_file(path) : std::vector<uint8_t>();
}

BasicMachine::BasicMachine() : platform_(HeadlessOptions{}) {
    install_platform(platform_);
    machine_init();
    keyboard_change_mapping(0);
}

void BasicMachine::boot(int slot, const std::vector<uint8_t>& rom) {
    machine_change_cfg(machine_cfg[slot], 1);
    if (!rom.empty()) {
        for (uint8_t* const area : {rom_pointer(), source_rom_pointer()}) {
            std::copy_n(rom.begin(), std::min<size_t>(rom.size(), BASIC_ROM_SIZE), area);
        }
        if (rom.size() > BASIC_ROM_SIZE)
            std::copy(rom.begin() + BASIC_ROM_SIZE, rom.end(), current_eprom);
        z80_reset();
    }
    run_until_idle(200);
    type("\n", 200);
}

bool BasicMachine::type(const std::string& text, int frames) {
    std::string keys;
    for (char c : text) {
        if (c == '\n') keys += '\r'; // typing skips what follows a return as the feed of the pair
        keys += c;
    }
    keyboard_open_from_buffer(keys);
    memory_place_bas_trap();
    return run_until_idle(frames);
}

bool BasicMachine::run_until_idle(int frames) {
    int idle = 0;
    for (frames_ = 0; frames_ < frames && idle < IDLE_FRAMES; ++frames_) {
        run_with_answers(machine_run);
        const bool typed = memory[KEYBOARD_ENTRY] != 0xED;
        const bool waits = z80_state.pc >= DELAY && z80_state.pc < DELAY_END;
        idle = typed && waits ? idle + 1 : 0;
    }
    return idle == IDLE_FRAMES;
}

std::vector<std::string> BasicMachine::screen() const {
    std::vector<std::string> rows;
    for (unsigned y = 0; y < std::min<unsigned>(memory[ROW_COUNT], 25); ++y) {
        std::string row(reinterpret_cast<const char*>(memory) + TEXT + y * COLUMNS, COLUMNS);
        rows.push_back(row.substr(0, row.find_last_not_of(' ') + 1));
    }
    while (!rows.empty() && rows.back().empty()) rows.pop_back();
    return rows;
}
