#pragma once
/// Interrupt, termination and hang-up, which end the message loop instead of the process.

void watch_stop_signals();
/// The number of the signal that has come since the last call; 0 without one.
int take_stop_signal();
