#include "platform/win32/win32_clock.h"

int64_t Win32Clock::counter() {
    LARGE_INTEGER count;
    QueryPerformanceCounter(&count);
    return count.QuadPart;
}

int64_t Win32Clock::frequency() {
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    return frequency.QuadPart;
}

uint32_t Win32Clock::refresh_rate() {
    DEVMODEW mode{};
    mode.dmSize = sizeof mode;
    if (!EnumDisplaySettingsW(context_.monitor().szDevice, ENUM_CURRENT_SETTINGS, &mode)) return 0;
    const DWORD rate = mode.dmDisplayFrequency;
    return rate <= 1 ? 0 : rate; // 0 and 1 stand for the display's own choice
}
