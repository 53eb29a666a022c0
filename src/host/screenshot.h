#pragma once
/// Screenshots of a canvas and dumps of the emulated screen memory.

#include "core/pacing/pacing.h"
#include "host/canvas.h"
#include "host/shell_state.h"

#include <string>

/// The first name of base0000.ext, base0001.ext, ... that cannot be opened for reading. An empty
/// base stands for "Tarvelin".
std::string get_next_fname(const std::string& extension, const std::string& base);

/// Writes a canvas of any depth as a BMP file under the given path. 1 when written; then the status
/// bar names it. 0 with the reason in errno.
int dib_save_to_file(const dib& bitmap, const std::string& path);
/// The same under the next free name after `base`.
int dib_save(const dib& bitmap, const std::string& base);

/// Writes a canvas of 8 bits per pixel as a GIF file, under the given path or the next free name; 0
/// for other depths, and, with the reason in errno, when the file cannot be written.
int gif_write_as(const std::string& path, const dib& bitmap);
int gif_write(const dib& bitmap, const std::string& base);

/// Writes the 1024 bytes of screen memory from the display start address to `base` with the
/// extension ".v80", which replaces an extension of three characters. 0 when that fails,
/// with the reason in errno.
int memory_save_video_ram(const std::string& base);
/// Writes the dump that follows a screenshot, under the base name of screenshots, when that option
/// is on.
void save_video_ram_when_wanted();
/// Saves the canvas under the next free name after `last_file_name`, GIF or BMP by its depth, and
/// the video-RAM dump where that is switched on.
void host_save_screenshot();
