#pragma once
/// The monitor: the machine's registers above a listing of instructions, or its memory as numbers
/// and characters, in place of the picture.
///
/// Nothing runs while it is shown. It has no picture of its own: every change, and every paint of
/// the window, measures the window's client area above the status bar and draws the page anew.
/// Addresses wrap around at both ends of the memory.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

enum MonitorPage : int { MONITOR_DISASSEMBLY = 0, MONITOR_MEMORY = 1 };

extern std::optional<uint16_t> local_pc; ///< first instruction of the listing; unset: at PC
extern int monitor_page;
extern uint16_t memdump_pc; ///< first byte of the memory page

// ---- text --------------------------------------------------------------------------------------

/// The rows of the present page for an area of so many character cells. Rows may be longer than
/// the area is wide.
std::vector<std::string> monitor_page_rows(int rows, int cols);
/// Twice the bytes that a row of the memory page shows.
int monitor_get_memdump_width(int cols);

// ---- in the window -----------------------------------------------------------------------------

int monitor_get_rows(); ///< character cells of the area above the status bar
int monitor_get_cols();
/// Draws the present page.
void monitor_update();
/// Changes to a MonitorPage and draws it.
void monitor_select_page(int page);
/// Draws the registers and the listing, which begins at PC.
void debug();
/// Draws the registers and the listing, which begins where it did before, or at `pc` the first
/// time.
void step(uint16_t pc);
/// Draws the memory page, whichever is the present one.
void monitor_memdump();

/// Address of the first instruction in the listing.
uint16_t monitor_get_current_pc();
/// One step through the present page without drawing it: an instruction, or a row of bytes.
/// `direction` is 1 down, -1 up; up stops at the nearest of a few addresses whose instruction ends
/// where the listing begins.
void getpc_dir(int direction);
/// One step as getpc_dir does, and draws the page.
void step_dir(int direction);
/// As many steps as there are rows.
void step_dir_page(int direction);
/// `count` steps, 0 and more.
void step_dir_rows(int direction, int count);
