#pragma once
#include <cstdint>
#include <string>

/// What a host needs to draw pictures as a picture tube shows them, for Scaling::tube.
struct PictureTube {
    virtual ~PictureTube() = default;
    /// Loads it, unless it is there. Empty, or why there is none: pictures are then stretched as
    /// without it.
    virtual std::string start() = 0;
    virtual void stop() = 0;
    /// Microseconds that pictures have taken to draw since this was asked last.
    virtual int64_t take_draw_time() = 0;
};
