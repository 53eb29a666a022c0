#pragma once
/// A host without a display: no window, the same shell. Time is virtual unless real pacing is asked
/// for: it passes only when the program sleeps or looks at the clock, so that a run is exactly
/// repeatable. Keys and settings are what its driver sets.

#include "platform/platform.h"

#include <deque>
#include <map>
#include <memory>
#include <set>
#include <variant>

struct HeadlessOptions {
    bool real_time = false; ///< pace against the real clock
    /// Virtual nanoseconds that every look at the clock takes. With the 100 Hz that an unknown
    /// display counts for, 10 ms let an unpaced run present every frame.
    int64_t look_ns = 10'000'000;
    uint32_t refresh_rate = 0; ///< Hz; 0 = unknown
    std::string data_directory;
    std::string config_directory;
    std::string program_directory;
};

class HeadlessPlatform final : public Platform {
public:
    explicit HeadlessPlatform(HeadlessOptions options);
    ~HeadlessPlatform() override;

    Clock& clock() override;
    Events& events() override;
    HostKeyboard& keyboard() override;
    Paths& paths() override;
    Settings& settings() override;
    Window& window() override;

    // For whoever drives the run.
    void advance_ns(int64_t nanoseconds); ///< of virtual time
    int64_t slept_ms() const;             ///< in all
    void set_key(uint8_t key, bool down);
    void release_all_keys();
    void push_event(Event event);
    bool quit_posted() const;
    const std::string& title() const;
    const std::string& status_text(int part) const;
    int lamp() const;
    int frames_presented() const;

    /// An interrupt or termination signal ends the message loop instead of the process.
    static void stop_on_signals();

private:
    struct State;
    std::unique_ptr<State> state_;
};
