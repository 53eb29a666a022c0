#pragma once
/// Run-ahead: what is shown is the picture some frames later than the machine is, if the keys stay
/// as they are now. A program answers a key one to three frames after it has looked at it; these
/// frames are run in advance, shown, and taken back.

#include <cstdint>

constexpr uint32_t MOST_FRAMES_AHEAD = 4;

/// Lets the machine run `frames` frames on, 1 to MOST_FRAMES_AHEAD, calls `show` (the machine is
/// then what it will be) and puts the machine back. Nothing else leaves it meanwhile: no sound, no
/// byte, no event. Ends early at a question to the user. To be called between two frames.
void look_ahead(uint32_t frames, void (*show)());
