#pragma once

struct machine_input;

/// Asked behind keyboard and joysticks for what else is pressed; may be null.
extern void (*further_input)(machine_input& input);

/// Sets the callbacks of machine_host: from now on the shell gets what the machine tells and asks.
void connect_machine();
/// Shows all of the machine anew: picture, colours, check marks, lamps, the parts of the status
/// bar, or the monitor. The machine stays as it is.
void show_machine_anew();
