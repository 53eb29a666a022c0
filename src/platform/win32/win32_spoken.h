#pragma once
/// What screen readers find in windows that the program draws, or whose own text says too little.
/// Not every system has that.

#include "platform/win32/win32_windows.h"

#include <string>

void set_spoken_name(HWND window, const std::string& name);
/// As its value and its description: readers differ in which of them they say.
void set_spoken_text(HWND window, const std::string& text);
