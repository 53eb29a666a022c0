#pragma once
/// Colours: sixteen colours of the composite signal as luminance and chroma phase, in the two
/// standards the machine was sold with, and the composite filter for a television's picture.

#include "wall/state_record.h"

#include <cstddef>
#include <cstdint>

/// Sixteen colours and black. Behind them stand the same dimmed, for every second line of the giant
/// picture, while the interlaced line is set to dim.
constexpr int PALETTE_ENTRIES = 17;
constexpr uint32_t HIGHEST_DISPLAY_PARAMETER = 100;

struct yuv_pixel {
    uint8_t y;
    int8_t u, v;
    uint8_t pad;
};

/// The knobs of the television, each 0 to 100, and a field that is not used. Brightness, gamma and
/// contrast leave the picture as it is at 50: brightness makes it darker or brighter as a whole,
/// gamma its colours between black and white, contrast how far they stand from grey. The
/// interlaced line is the light of every second line of the giant picture with double scan: all of
/// it from 80 on, none at 0.
struct display_parameters {
    uint32_t saturation, brightness, gamma, contrast, interlaced_line, reserved;
    bool operator==(const display_parameters&) const = default;
};

extern uint8_t cgpalette[256][3]; ///< red, green, blue; 16 in all of an entry that is not used
extern yuv_pixel yuv_palette[256];
extern display_parameters display_params; ///< the user's, and no part of the machine

/// The part of the colours that belongs to the machine. The palettes are calculated from it and
/// from the display parameters: after another state has been loaded, palette_update makes them
/// anew.
struct colour_standard {
    uint32_t index; ///< 0 Southern, 1 Northern
};
extern colour_standard palette_state;
extern const state_record palette_record;
inline constexpr auto& current_pal_index = palette_state.index;

/// Rebuilds both palettes for standard 0 or 1.
void calculate_palette(uint32_t standard);
/// Rebuilds the palettes of the present standard, after a change of the parameters or another
/// state; nothing when they are up to date.
void palette_update();
/// Sets the strength of the colours, 0 (grey) to 100. It takes effect when the palettes are
/// calculated next.
void palette_set_saturation(uint32_t percent);
uint32_t palette_get_saturation();
uint32_t palette_get_default_saturation();
/// Fills all six fields with the values at start.
void palette_get_default_config(display_parameters* parameters);
/// Whether every second line is dimmed, and the dimmed entries with it are used.
bool palette_dims_lines();
/// Dims `count` 00RRGGBB words as the dimmed entries are.
void palette_dim(uint32_t* colours, size_t count);
/// Component 0 red, 1 green, 2 blue of an entry.
uint8_t video_get_palette_value(int entry, int component);

/// Filters `height` lines of palette indices into YUV pixels: luminance smeared to the right by
/// 35 percent, chroma averaged over pixel pairs and the line below. The source must have one line
/// more than `height`; `width` is even. `stride` counts destination pixels.
void video_yuv_filter(const uint8_t* source, yuv_pixel* destination, int width, int height,
                      int stride);
/// Converts `count` pixels to 00RRGGBB words. Source and destination may be the same memory.
void yuv_to_rgb(const yuv_pixel* source, uint32_t* destination, size_t count);
