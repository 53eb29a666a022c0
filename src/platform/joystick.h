#pragma once
#include <cstdint>
#include <optional>
#include <string>

struct JoystickState {
    uint16_t x = 32767; ///< 0 left to 65535 right
    uint16_t y = 32767; ///< 0 up to 65535 down
    bool first_button = false;
    bool second_button = false;
    bool third_button = false; ///< of a game controller the left shoulder button
};

/// Joysticks and game controllers, numbered from 0; they come and go while the program runs.
struct Joysticks {
    virtual ~Joysticks() = default;
    virtual int count() = 0;                  ///< devices the host knows
    virtual bool plugged(int number) = 0;     ///< is there one of this number now?
    virtual std::string name(int number) = 0; ///< as the host calls it; empty without one
    /// Starts delivery of positions; false when the device cannot be had.
    virtual bool capture(int number) = 0;
    /// Nothing when it cannot be read.
    virtual std::optional<JoystickState> read(int number) = 0;
};
