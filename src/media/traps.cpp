#include "media/traps.h"

#include "z80/z80.h"

int cas_is_traps_installed() { return 0; }
void tape_place_traps(uint8_t* /*rom*/) {}
void memory_remove_bas_trap() {}
void trap_handle(int /*number*/) {}
