#pragma once
/// Display output: the canvas follows the display options; one frame at a time is drawn into it and
/// presented, 1:1 in the window or stretched over the whole screen with its 4:3 aspect kept.

#include "host/shell_state.h"
#include "platform/geometry.h"

#include <cstdint>

extern int g_iScreenX, g_iScreenY; ///< canvas size, for the copy into the window
extern int cx, cy;                 ///< outer size of the window that fits the canvas
extern Rectangle g_rcScreen;       ///< target of the stretch, in screen coordinates
extern Rectangle g_rcViewport;     ///< its source: the canvas

/// Replaces the canvas by one of the size for `giant`: 32 bits per pixel while the blur is on, else
/// `bits`. Returns 1, or 0 when there is no memory.
int recreate_bitmap(bool giant, int bits);
/// Bits per pixel of the canvas that the options ask for, before the blur.
int canvas_bits();
/// Sets cx and cy for a canvas of this size.
void calc_cxcy(int width, int height);
/// Canvas of the size for `giant`, and the window with it.
void set_screen_params(bool giant, int bits);
/// Switches between window (1) and whole screen (0) as the way to present.
void change_video_mode(bool use_gdi, bool resize);
/// Toggles the window between its normal and its full-screen shape.
void ChangeCoopLevel();
/// Where the picture goes in the window's client area, fitted to 4:3 when asked.
void ResizeWindow(int width, int height, bool keep_aspect);
/// The full-screen command, both ways.
void toggle_full_screen();
/// The largest 4:3 rectangle in the middle of `area`. A left or top that changes is counted from 0,
/// not from that of `area`.
Rectangle screen_rect_recalc(const Rectangle& area);
/// Takes the machine's changed palette into the canvas. While the machine stands still, the window
/// is painted anew, since no frame will do it.
void show_palette();
/// 1 when there is a canvas to draw into.
int host_has_canvas();
/// Draws one frame into the canvas and presents it, as far as use_of_picture wants it. A `flag` of
/// 0 does nothing.
void show_frame(int flag);
/// Presents the machine's picture and leaves the canvas as it is.
void show_frame_ahead();
/// Presents what the canvas holds.
void show_canvas();
