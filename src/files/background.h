#pragma once
#include <chrono>
#include <functional>
#include <memory>

/// Work beside the program's one thread. Where the system has no threads it is done before the
/// object is made, and whoever asks finds it done. The end of the program does not wait for it.
class Background {
public:
    Background() = default; ///< nothing to do
    /// What the work uses must outlive it.
    explicit Background(std::function<void()> work);

    bool has_work() const { return state_ != nullptr; } ///< was given some, done or not
    /// Waits for the end of the work, but no longer; true when it is done.
    bool is_done(std::chrono::milliseconds patience = {}) const;
    void wait() const;

private:
    struct State;
    std::shared_ptr<State> state_;
};
