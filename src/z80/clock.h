#pragma once
/// The machine clock: conversions between durations and T-states of `z80_state.clock_hz`.

#include <cstdint>

/// T-states in `milliseconds` at the present main clock, rounded toward zero.
int64_t msec_to_cycles(double milliseconds);
