#pragma once
/// GIF87a writer with an LZW encoder of fixed tables: no allocation, strings of up to 97 pixels.

#include <cstdint>

/// Writes `width` x `height` pixels of one byte with 256 colours (red, green, blue each). Returns
/// 0 when the file cannot be created; write errors inside the pixel data are not detected.
int gif_save(const char* path, int width, int height, const uint8_t* pixels,
             const uint8_t* colours);
