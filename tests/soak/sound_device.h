#pragma once
/// Listens to what SDL's device takes, and lends it a clock: a program that is linked with this, or
/// started with it preloaded, is heard as it plays. SDL's disk driver, writing to the file
/// "by-the-clock", takes 48000 samples a second, which neither it nor the dummy driver does by
/// itself. Preloaded, it writes what it has heard to the file that SOUND_DEVICE_LOG names.

#include <vector>

struct HeardSound {
    double played = 0;         ///< seconds
    int late = 0;              ///< times that the program's thread was 50 ms behind the clock
    std::vector<double> jumps; ///< moments at which a high step of the level was taken
    struct Gap {
        double moment; ///< of its end
        double ms;
    };
    std::vector<Gap> gaps; ///< half a millisecond of silence and more, after two seconds of sound
};
/// To be read when the device is closed.
const HeardSound& heard_sound();
/// Seconds of the monotonic clock.
double sound_device_now();
