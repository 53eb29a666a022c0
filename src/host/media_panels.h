#pragma once
/// Panels beside the main window, which goes on: what is on the disks in the drives, and what is on
/// the cassette and where it stands.

/// Opens the panel, or brings it to the front.
void ui_disk_panel();
void ui_tape_panel();

/// Once a turn: what has changed is shown, some times a second while the machine runs.
void media_panels_turn(bool machine_is_halted);
/// To be called before the platform ends.
void media_panels_end();

// For the above.
bool disk_panel_is_open();
bool tape_panel_is_open();
void disk_panel_refresh(); ///< of the open panel
void tape_panel_refresh();
void disk_panel_end();
void tape_panel_end();
