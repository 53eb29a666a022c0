#pragma once
/// The dialog that puts buttons and directions of a game pad on keys of the machine (pad_keys.h).
/// An input is chosen by a press on the pad or in the list, and then waits for a key.

/// Shows it, until the user closes it.
void ui_pad_keys();
