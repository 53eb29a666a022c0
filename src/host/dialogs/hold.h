#pragma once
/// What holds the shell: while a dialog is open or the program rests, no frame is run and no
/// message is handled. A host may open a dialog and return at once; whatever is to come behind it
/// waits here until the shell is free.

#include <functional>
#include <utility>

/// Every hold needs its release.
void hold_shell();
void release_shell();
bool shell_is_held();
/// Acts at once when nothing holds the shell, or else when it is free, in the order of the calls.
/// What an act or an answer asks for itself comes before those that wait already.
void when_free(std::function<void()> act);

/// Hands an answer over, and releases the shell behind it.
void release_after(const std::function<void()>& answer);
/// Holds the shell from now on until what is returned has been called, once, with an answer.
template <typename... Answer>
std::function<void(Answer...)> held_until(std::function<void(Answer...)> done) {
    hold_shell();
    return [done = std::move(done)](Answer... answer) {
        release_after([&] { done(std::move(answer)...); });
    };
}
