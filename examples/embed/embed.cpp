/// The machine in a program that has nothing else: types a line of BASIC and prints the screen.

#include "cgenie/memory/memory.h"
#include "cgenie/typing/typing.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "media/traps.h"

#include <cstdio>

constexpr int SCREEN = 0x4400, COLUMNS = 40, ROWS = 24;

static void run(int frames) {
    while (frames-- > 0) machine_run();
}

static void type(const char* line) {
    keyboard_open_from_buffer(line);
    memory_place_bas_trap();
    run(50);
}

int main() {
    machine_init();
    run(100);
    type("\r"); // The answer to the question of the start: all the memory that there is.
    type("PRINT 6 * 7, \"IS THE ANSWER\"\r");
    for (int row = 0; row < ROWS; ++row) {
        std::printf("%.*s\n", COLUMNS, reinterpret_cast<char*>(memory) + SCREEN + row * COLUMNS);
    }
}
