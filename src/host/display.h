#pragma once
/// Display output: the canvas follows the display options, and one frame at a time is drawn into it
/// and presented.

#include <cstdint>

extern bool g_GiantScreen;       ///< canvas of 768 x 576 instead of 384 x 288
extern bool g_bDblScan;          ///< repeat every line of the giant canvas; off leaves gaps
extern uint32_t g_CompositeBlur; ///< nonzero: composite filter, canvas of 32 bits per pixel

/// Replaces the canvas by one of the size for `giant`: 32 bits per pixel while the blur is on, else
/// `bits`. Returns 1, or 0 when there is no memory.
int recreate_bitmap(bool giant, int bits);
