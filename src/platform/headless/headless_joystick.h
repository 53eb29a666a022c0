#pragma once
/// Joysticks as the driver sets them. They may be plugged in and pulled out at any time.

#include "platform/joystick.h"

#include <vector>

struct HeadlessStick {
    JoystickState state;
    bool plugged = true;
    bool readable = true; ///< off: it is there, but its position cannot be had
    bool capture_fails = false;
    bool captured = false; ///< delivery was asked for
    std::string name = "Headless joystick";
    PadKind kind = PadKind::lettered;
};

struct HeadlessJoysticks final : public Joysticks {
    int count() override { return int(sticks.size()); }
    bool plugged(int number) override { return exists(number) && sticks[number].plugged; }
    std::string name(int number) override {
        return exists(number) ? sticks[number].name : std::string();
    }
    PadKind kind(int number) override {
        return exists(number) ? sticks[number].kind : PadKind::lettered;
    }
    bool capture(int number) override {
        if (!plugged(number) || sticks[number].capture_fails) return false;
        return sticks[number].captured = true;
    }
    std::optional<JoystickState> read(int number) override {
        if (!plugged(number) || !sticks[number].readable) return std::nullopt;
        return sticks[number].state;
    }

    std::vector<HeadlessStick> sticks; ///< none at first

private:
    bool exists(int number) const { return number >= 0 && number < int(sticks.size()); }
};
