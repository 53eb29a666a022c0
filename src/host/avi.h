#pragma once
/// AVI capture of picture and sound. It cannot be started yet: every attempt fails.

#include <string>

/// Prepares the capture picture from the canvas; 0 when that fails.
int Video_CreateBitmap();
/// Opens the file; 1 on success.
int Video_OpenOutput(const std::string& path);
void Video_CloseOutput();
/// Hands the canvas to the capture.
void Video_ConvertBitmap();
