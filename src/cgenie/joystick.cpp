#include "cgenie/joystick.h"

#include "sound/ym2149.h"

namespace {
constexpr uint8_t CENTRE = 31;           ///< of 0-63
constexpr uint8_t COMPARATORS = 0xF0;    ///< X0, Y0, X1, Y1
constexpr uint32_t PORT_A_REGISTER = 14; ///< bits 0-5 hold the comparison level
} // namespace

void joystick_init() {}
void initJoyInput() {}

uint8_t joystick_get_state() {
    const uint8_t level = ym2149_peek_reg(PORT_A_REGISTER) & 0x3F;
    return level >= CENTRE ? uint8_t(~COMPARATORS) : 0xFF;
}
