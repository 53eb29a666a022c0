#pragma once
/// Holds the shell: while a dialog is open or the program rests, no frame is run and no message is
/// handled. A host may open a dialog and return at once, so whatever is to be done after the answer
/// waits here until the shell is free.

#include <functional>
#include <utility>

/// Holds count: the shell is free when each has had its release.
void hold_shell();
void release_shell();
bool shell_is_held();
/// Calls `act` at once when nothing holds the shell, or else when it is free, in the order of these
/// calls. An act that is asked for by another act, or by an answer, comes before those that already
/// wait.
void when_free(std::function<void()> act);

/// Calls `answer`, which hands an answer over, and releases the shell after it.
void release_after(const std::function<void()>& answer);
/// Holds the shell now. The function returned hands an answer to `done` and then releases the
/// shell; it must be called exactly once.
template <typename... Answer>
std::function<void(Answer...)> held_until(std::function<void(Answer...)> done) {
    hold_shell();
    return [done = std::move(done)](Answer... answer) {
        release_after([&] { done(std::move(answer)...); });
    };
}
