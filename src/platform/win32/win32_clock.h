#pragma once
#include "platform/clock.h"
#include "platform/win32/win32_context.h"

class Win32Clock final : public Clock {
public:
    explicit Win32Clock(const Win32Context& context) : context_(context) {}
    int64_t counter() override;
    int64_t frequency() override;
    uint32_t refresh_rate() override;

private:
    const Win32Context& context_;
};
