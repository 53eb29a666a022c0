#include "platform/win32/win32_events.h"

#include <utility>

#include <mmsystem.h>

namespace {

constexpr UINT SHORT_TICK = 1;      ///< ms
constexpr int64_t TIMER_UNITS = 10; ///< in a microsecond

#ifndef CREATE_WAITABLE_TIMER_HIGH_RESOLUTION
constexpr DWORD CREATE_WAITABLE_TIMER_HIGH_RESOLUTION = 2;
#endif

} // namespace

Win32Events::Win32Events(Win32Context& context) : context_(context) {
    timer_.reset(CreateWaitableTimerExW(nullptr, nullptr, CREATE_WAITABLE_TIMER_HIGH_RESOLUTION,
                                        TIMER_ALL_ACCESS));
    if (timer_) return;
    timer_.reset(CreateWaitableTimerW(nullptr, FALSE, nullptr));
    coarse_timer_ = timeBeginPeriod(SHORT_TICK) == TIMERR_NOERROR;
}

Win32Events::~Win32Events() {
    if (coarse_timer_) timeEndPeriod(SHORT_TICK);
}

bool Win32Events::dialog_takes(MSG& message) const {
    const std::vector<HWND> dialogs = context_.dialogs; // one may close meanwhile
    for (const HWND dialog : dialogs) {
        if (IsDialogMessageW(dialog, &message)) return true;
    }
    return false;
}

void Win32Events::take_messages() {
    MSG message;
    while (context_.queue.empty() && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {
            post_quit(int(message.wParam));
        } else if (!dialog_takes(message)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
}

Event Win32Events::poll() {
    take_messages();
    if (context_.queue.empty()) return {};
    Event event = std::move(context_.queue.front());
    context_.queue.pop_front();
    return event;
}

void Win32Events::wait(int64_t microseconds) {
    if (!context_.queue.empty()) return;
    const HANDLE timer = timer_.get();
    DWORD handles = 0;
    if (microseconds != NO_LIMIT && timer) {
        LARGE_INTEGER due;
        due.QuadPart = -microseconds * TIMER_UNITS; // from now on
        if (SetWaitableTimer(timer, &due, 0, nullptr, nullptr, FALSE)) handles = 1;
    }
    const bool unlimited = microseconds == NO_LIMIT || handles;
    const DWORD limit = unlimited ? INFINITE : DWORD(microseconds / 1000 + 1);
    MsgWaitForMultipleObjectsEx(handles, &timer, limit, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
}
