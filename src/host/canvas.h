#pragma once
/// The canvas: the bitmap that the frame is drawn into. The window's picture, screenshots and video
/// are taken from it.

#include "host/recording/picture.h"

extern dib canvas;

/// Replaces the bitmap by a black one of the given shape. 0 when there is no memory.
int dib_create(dib& bitmap, int width, int height, int bits);
/// Frees the pixels and clears the record.
void dib_destroy(dib& bitmap);
/// Sets the palette to a ramp from black: grey for variant 0, else tinted. 1 on success; 0 above 8
/// bits per pixel, which have no palette.
int dib_create_monopalette(dib& bitmap, int variant);
/// Sets the machine's palette. 1 on success; 0 unless the bitmap has 2 to 8 bits per pixel.
int dib_create_rgb_palette(dib& bitmap);
/// All pixels to 0.
void dib_clear_buffer(dib& bitmap);
