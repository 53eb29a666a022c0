#pragma once
/// Drivers that play the sound. There is none but silence yet.

constexpr int SOUND_RATE = 48000; ///< samples per second

/// The driver that plays through the host's audio, at `rate` samples per second; 1 on success.
int dsound_init(int rate);
/// The driver that plays nothing.
void sound_null_driver_init();
