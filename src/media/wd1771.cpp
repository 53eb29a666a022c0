#include "media/wd1771.h"

#include "z80/z80.h"

namespace {
enum : uint8_t { STATUS_NOT_READY = 0x80, OPEN_BUS = 0xFF };
}

void wd1771_init() { wd1771_reset_all(); }
void wd1771_reset() { wd1771_set_irq(0); }
void wd1771_reset_all() { wd1771_set_irq(0); }
uint8_t wd1771_read_irq(int /*line*/) { return 0; }
void wd1771_write_param_reg(uint8_t /*value*/) {}
uint8_t wd1771_read_reg(uint32_t address) {
    return (address & 3) == 0 ? STATUS_NOT_READY : OPEN_BUS;
}
void wd1771_write_reg(uint32_t /*address*/, uint8_t /*value*/) {}
int wd1771_is_active() { return -1; }
void wd1771_set_irq(int level) { z80_state.irq = level; }
