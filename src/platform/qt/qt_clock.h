#pragma once
#include "platform/clock.h"
#include "platform/qt/qt_window.h"

class QtClock final : public Clock {
public:
    explicit QtClock(QtWindow& window) : window_(window) {}
    int64_t counter() override;
    int64_t frequency() override;
    uint32_t refresh_rate() override;

private:
    QtWindow& window_;
};
