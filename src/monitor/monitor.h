#pragma once
/// The monitor: registers, disassembly and memory in the window. It has no pages yet: it shows a
/// black window while it is open.

#include <cstdint>
#include <string>

/// Draws the monitor into the window.
void monitor_update();
/// Page 0 or 1.
void monitor_select_page(int page);
/// Shows where the processor stands.
void debug();
uint16_t monitor_get_current_pc();
/// Moves through the page: `direction` 1 down, -1 up.
void step_dir(int direction);
void step_dir_page(int direction);
void step_dir_rows(int direction, int rows);
/// Writes the disassembly of the whole memory to a file in the current directory.
void fulldisasm(const std::string& name);
