#pragma once
/// The video circuit: frame of palette indices, the port FF latch, and the full-frame renderer.
///
/// The picture is 384 x 288 pixels of one byte. Text cells are 8 pixels wide in one of sixteen
/// colours on one background; graphics bytes hold four 2-bit pixels, two frame pixels wide and two
/// lines high. The full-frame renderer draws from the state of the moment; the beam engine
/// (video_beam.h) draws while the processor runs.

#include "cgenie/memory/memory.h"
#include "wall/state_record.h"

#include <cstddef>
#include <cstdint>

enum : int {
    SCREEN_WIDTH = 384,
    SCREEN_HEIGHT = 288,
    BLACK_INDEX = 16 ///< border, blanking, cleared areas
};
/// In bytes. The beam may write past the last line; only the first 384 x 288 bytes are shown.
constexpr size_t FRAME_STORAGE = 1769472;

extern uint8_t frame_buffer[FRAME_STORAGE];
/// Has only the shown lines and the one below them, which the composite filter reads: nothing reads
/// the rest of the storage.
extern const state_record frame_buffer_record;

/// The port FF latch as it was last written, and the character generator.
struct video_circuit {
    uint8_t mode;
    uint8_t charset_selected;
    uint8_t graphic_background_selected;
    uint8_t hires_palette[4] = {BLACK_INDEX, 11, 6, 13};
    uint8_t unused = 0;
    uint8_t charset[CHARSET_SIZE];
};
extern video_circuit video_state;
extern const state_record video_record;

inline constexpr auto& video_mode = video_state.mode;                         ///< nonzero: graphics
inline constexpr auto& video_charset_selected = video_state.charset_selected; ///< 00, 08, 10, 18
inline constexpr auto& video_graphic_background_selected = video_state.graphic_background_selected;
/// Indices of the 2-bit pixels; entry 0 is the background.
inline constexpr auto& hires_palette = video_state.hires_palette;
/// 256 characters of 8 rows, bit 7 leftmost.
inline constexpr auto& current_charset = video_state.charset;

int video_screenx(); ///< 384
int video_screeny(); ///< 288
/// Palette of the active configuration, then video_reset.
void video_init(uint32_t palette);
/// Clears the frame and the vertical centring; the latch stays.
void video_reset();
/// Loads character set 0, 1 or 2 of the firmware, or 3, the user's: set 0 when there is none, a
/// blank set when its file cannot be read.
void video_set_charset(uint32_t index);
void video_charset_select(uint8_t value);     ///< value AND 18
void video_mode_select(uint8_t value);        ///< value AND 20
void video_graphic_background(uint8_t value); ///< value AND C4

/// Pattern of character `code` on line `y` of its row, from the built-in set or the character RAM
/// as the latch selects. Lines past the end of a table read blank.
uint8_t video_character_pattern(uint8_t code, uint32_t y);

/// Draws the whole picture from the present state.
void video_render_frame();
/// The same for the monochrome canvas, which is packed from the frame: nothing else is used.
void video_render_1bit(uint8_t* pixels, int cut, int page);
/// Does nothing: the lines are drawn by video_resize_frame.
void video_draw_interlaced(uint8_t* pixels, int bits);

int video_get_windowx(int giant);      ///< 384, or 768 when giant
int video_get_windowy(int giant);      ///< 288, or 576 when giant
int video_get_rows();                  ///< of text displayed, 0 to 127
int video_get_columns();               ///< of text displayed, 0 to 255
const uint8_t* video_get_screen_ram(); ///< address 4000 + (start address AND 3FFF)
/// Where the cursor is, in characters from the top left corner of the screen, row by row. It may be
/// outside of the screen.
uint32_t video_get_cursor();
/// Presents the finished frame.
void video_update_frame();
