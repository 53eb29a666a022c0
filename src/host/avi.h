#pragma once
/// AVI capture: every emulated frame's picture, and the next finished fragment of sound, go into
/// a file. The shape of the picture is that of the canvas when the capture was prepared.

#include "host/canvas.h"

#include <functional>
#include <string>

extern uint32_t s_dwVideoFrame; ///< frames written
extern uint32_t s_dwSoundFrame; ///< fragments of sound written

/// Prepares the capture picture from the canvas; 0 without one or without memory.
int Video_CreateBitmap();
/// Frees it.
void Video_DestroyBitmap();
/// Creates the file and asks for the compression; a capture already open is closed first.
/// `sound_buffer` null gives a file without sound. `done` gets 1 when the capture runs; else the
/// user has been told why.
void Video_OpenOutput(const std::string& path, const uint16_t* sound_buffer,
                      const std::function<void(int runs)>& done);
/// Completes the file, frees the capture picture, and says how many frames were written.
void Video_CloseOutput();
/// Hands the canvas to the capture. A canvas of another shape than the capture's repeats the
/// picture before, and the user is told when that begins.
void Video_ConvertBitmap();
/// Writes one frame, bottom row first, with its sound. When that fails, as on a full disk, the
/// capture ends and the user is told.
void Video_SaveFrame(const uint8_t* frame, uint32_t frame_bytes, const uint8_t* sound,
                     uint32_t sound_bytes);
/// Hands the canvas to the running video capture.
void host_capture_frame();
