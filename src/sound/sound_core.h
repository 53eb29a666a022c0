#pragma once
/// Sound core: brings the sound sources up to date. No source is fitted yet, so there is nothing
/// to render; the calls stand where the machine has to make them.

#include <cstdint>

/// Renders the sound up to the given processor cycle. Call it before a source changes its state.
void sound_update(int64_t cycles);
/// The same, at the end of a frame.
void sound_flush(int64_t cycles);
void sound_init();
/// Every source back to its power-on state.
void sound_reset();
