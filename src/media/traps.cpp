#include "media/traps.h"

#include "z80/z80.h"

int cas_is_traps_installed() { return 0; }
void memory_remove_bas_trap() {}
void trap_handle(int /*number*/) {}
