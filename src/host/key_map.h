#pragma once
/// Turns the keys of the host's keyboard into those of the machine's, in two mappings: by the place
/// of the keys, or by the characters that they give in the host's layout.

struct machine_input;

/// Builds the symbolic map for the host's present layout, switches to the symbolic mapping, and
/// takes every key for released.
void host_keyboard_init();
/// Takes every key for released, by host and machine.
void host_keyboard_reset();
/// Fills in keyboard and keypads as the host's keys are at this moment.
void read_host_keys(machine_input& input);
