#include "platform/headless/stop_signals.h"

#include <atomic>
#include <csignal>

#include <windows.h>

namespace {

std::atomic<int> stop_signal = 0;

BOOL WINAPI stop(DWORD event) {
    const bool from_keys = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
    stop_signal = from_keys ? SIGINT : SIGTERM;
    // The console is closed, or the user logs off: the process ends when this returns.
    if (!from_keys) Sleep(INFINITE);
    return TRUE;
}

} // namespace

void watch_stop_signals() { SetConsoleCtrlHandler(stop, TRUE); }

int take_stop_signal() { return stop_signal.exchange(0); }
