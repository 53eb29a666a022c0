#pragma once
/// Runs the machine without anybody noticing: to look ahead, or to run old frames again.

#include <memory>

struct machine_host_calls;
struct machine_log;

/// While it lives, nothing leaves the machine: what it shows and puts out is dropped, bytes count
/// as taken, a save of the firmware finds no cassette, breakpoints do not stop it, and no event is
/// logged. Only ROM files, the WAV tape and the keys are still asked for. Several may be nested; no
/// log is begun or ended meanwhile.
class MachineMute {
public:
    MachineMute();
    ~MachineMute();
    MachineMute(const MachineMute&) = delete;
    MachineMute& operator=(const MachineMute&) = delete;

private:
    std::unique_ptr<machine_host_calls> host_; ///< the callbacks that come back
    machine_log* log_;
};
