#pragma once
/// Where in the picture the live machine is. The beam engine's lines are those of its beam, counted
/// from the end of the vertical sync; the line engine's are the cycles since the frame began.

#include <cstdint>

/// The line of this moment, from 0 on.
int raster_line();
/// A cycle after now at which to look whether the line has begun; never later than that.
int64_t raster_line_comes(int line);
/// Whether the line has begun since the cycle `since`, which is at most a frame ago. `line_then` is
/// what raster_line was then.
bool raster_line_began(int line, int64_t since, int line_then);
