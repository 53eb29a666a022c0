#pragma once
/// The canvas: the host bitmap that the frame is drawn into, source of the window's picture, of
/// screenshots and of video.

#include "host/recording/picture.h"

extern dib canvas;

/// Replaces the bitmap by a black one of the given shape. 0 when there is no memory.
int dib_create(dib& bitmap, int width, int height, int bits);
/// Frees the pixels; the record is as new.
void dib_destroy(dib& bitmap);
/// Ramp from black, for up to 8 bits per pixel: grey for variant 0, else tinted. 0 for more bits.
int dib_create_monopalette(dib& bitmap, int variant);
/// The machine's palette, for 8 bits per pixel; 0 for others.
int dib_create_rgb_palette(dib& bitmap);
/// All pixels to 0.
void dib_clear_buffer(dib& bitmap);
