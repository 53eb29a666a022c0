#pragma once
/// The host's first two joysticks are those of the machine. They may be plugged in and out at any
/// time.

struct machine_input;

/// Looks for the host's joysticks, says on the standard error stream what it found, and asks for
/// the delivery of their positions.
void initJoyInput();
/// Fills in the sticks, without what is a key of the machine (pad_keys.h); one that cannot be read
/// stands in the middle.
void read_host_joysticks(machine_input& input);
/// The left shoulder button of one of them, which leads back in time unless it is a key of the
/// machine, which does not see it otherwise.
bool rewind_button_is_down();
