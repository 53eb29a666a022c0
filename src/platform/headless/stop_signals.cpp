#include "platform/headless/stop_signals.h"

#include <csignal>

namespace {

volatile std::sig_atomic_t stop_signal = 0;

} // namespace

void watch_stop_signals() {
    const auto stop = [](int signal) { stop_signal = signal; };
    std::signal(SIGINT, stop);
    std::signal(SIGTERM, stop);
    std::signal(SIGHUP, stop);
}

int take_stop_signal() {
    const int signal = stop_signal;
    if (signal != 0) stop_signal = 0;
    return signal;
}
