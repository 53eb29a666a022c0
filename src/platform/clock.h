#pragma once
#include <cstdint>

/// High-resolution time and the display's refresh rate.
struct Clock {
    virtual ~Clock() = default;
    /// Monotonic count since an arbitrary start.
    virtual int64_t counter() = 0;
    /// Counts per second.
    virtual int64_t frequency() = 0;
    /// Hz, or 0 when the host does not know.
    virtual uint32_t refresh_rate() = 0;
};
