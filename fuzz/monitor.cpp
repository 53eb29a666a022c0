/// The monitor: any keys over any memory, in a window of any size.

#include "monitor/monitor.h"

#include "cgenie/memory/memory.h"
#include "host/commands.h"
#include "host/menu.h"
#include "host/turn.h"
#include "platform/keyboard.h"
#include "support/input.h"
#include "support/machine.h"
#include "support/shell.h"
#include "z80/disassembler.h"

#include <array>
#include <cstring>

namespace {

constexpr std::array<uint8_t, 16> KEYS = {
    KEY_RETURN, KEY_ESCAPE, KEY_PAGE_UP, KEY_PAGE_DOWN, KEY_UP, KEY_DOWN, KEY_F1, KEY_F2,
    KEY_F3,     KEY_F4,     KEY_F7,      KEY_F9,        KEY_F1, KEY_F2,   KEY_F1, KEY_F2};
constexpr int MOST_ACTIONS = 24;

void look_at_pages(Input& input) {
    const int rows = input.byte();
    const int columns = input.byte() * 2;
    memdump_pc = input.word();
    for (const int page : {MONITOR_DISASSEMBLY, MONITOR_MEMORY}) {
        monitor_page = page;
        require(monitor_page_rows(rows, columns).size() == size_t(rows), "as many rows as asked");
    }
    char line[DISASSEMBLY_LINE];
    for (uint32_t address = 0; address < MEMORY_SIZE; address += 1021) {
        const auto length = uint16_t(disassemble(uint16_t(address), line) - address);
        require(length >= 1 && length <= 5, "an instruction has a length");
        require(std::strlen(line) < sizeof line, "a line fits");
    }
}

/// A run of F7 draws ten thousand pages, and F9 lists all memory: only seldom, or nothing else is
/// seen of the monitor.
bool takes_too_long(uint8_t key, uint8_t choice) {
    constexpr int FEW_ROWS = 3;
    if (key == KEY_F7) return monitor_get_rows() > FEW_ROWS;
    return key == KEY_F9 && choice < 0xF0;
}

void press(Input& input) {
    const uint8_t choice = input.byte();
    const uint8_t key = KEYS[choice % KEYS.size()];
    if (takes_too_long(key, choice)) return;
    WindowProcedure({Event::Kind::key_down, key, uint8_t(0), {}});
}

void act(Input& input, FuzzShell& shell) {
    const uint8_t action = input.byte();
    switch (action & 7) {
    case 0:
        WindowProcedure({.kind = Event::Kind::pointer,
                         .value = int(int8_t(input.byte())) * 60,
                         .text = {},
                         .pointer = {.act = Pointer::Act::wheel}});
        break;
    case 1: {
        const int width = input.byte() * 8, height = input.byte() * 8;
        shell.host.window().move({100, 100, 100 + width, 100 + height});
        WindowProcedure({Event::Kind::resized, 0, 0, {}});
        break;
    }
    case 2: WindowProcedure({Event::Kind::paint, 0, 0, {}}); break;
    default: press(input); break;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    FuzzShell shell;
    shell.start();
    load_registers(input);
    const auto actions = input.take(input.byte());
    Input keys(actions.data(), actions.size());
    Input pages = input;
    tile({memory, MEMORY_SIZE}, input.rest());
    look_at_pages(pages);
    handle_command(COMMAND_MONITOR);
    for (int n = 0; n < MOST_ACTIONS && !keys.empty(); ++n) act(keys, shell);
    return 0;
}
