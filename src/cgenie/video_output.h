#pragma once
/// Output stage: the finished frame scaled into the canvas.

#include <cstdint>

/// Writes the frame into `destination`. Blur off: one byte a pixel; blur on: 32 bits a pixel
/// through the composite filter. Width 768 doubles pixels and lines; every second line is black
/// with `black_odd_lines`, else as bright as the display parameters say. `cut` is not used.
void video_resize_frame(uint8_t* destination, int cut, int width, int blur, int black_odd_lines);
