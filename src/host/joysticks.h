#pragma once
/// The host's first two joysticks are those of the machine. They may be plugged in and out at any
/// time.

struct machine_input;

/// Looks for the host's joysticks, says on the standard error stream what it found, and asks for
/// the delivery of their positions.
void initJoyInput();
/// Fills in the sticks; one that cannot be read stands in the middle.
void read_host_joysticks(machine_input& input);
/// The third button of one of them, which leads back in time. The machine does not see it.
bool rewind_button_is_down();
