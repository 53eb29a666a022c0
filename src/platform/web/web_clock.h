#pragma once
#include "platform/clock.h"

/// The page's high-resolution time.
struct WebClock final : public Clock {
    int64_t counter() override;
    int64_t frequency() override { return 1'000'000'000; }
    uint32_t refresh_rate() override { return 0; }
};
