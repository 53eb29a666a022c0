#include "z80/clock.h"

#include "z80/z80.h"

int64_t msec_to_cycles(double milliseconds) {
    return int64_t(milliseconds * (double(z80_state.clock_hz) / 1000.0));
}
