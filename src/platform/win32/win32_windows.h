#pragma once
/// Windows' own declarations. Its drawing function Rectangle would hide the layer's record.
/// Included before any other header of Windows.

#define Rectangle WindowsRectangle
#include <windows.h>
#undef Rectangle
