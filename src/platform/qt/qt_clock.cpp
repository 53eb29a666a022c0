#include "platform/qt/qt_clock.h"

#include <QScreen>

#include <chrono>
#include <cmath>

int64_t QtClock::counter() {
    const auto since_start = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(since_start).count();
}

int64_t QtClock::frequency() { return 1'000'000'000; }

uint32_t QtClock::refresh_rate() {
    const QScreen* screen = window_.screen();
    return screen ? uint32_t(std::lround(screen->refreshRate())) : 0;
}
