#pragma once
/// Joysticks and game controllers by the browser's Gamepad interface. A page sees them only after a
/// button was pressed while it was in front.

#include "platform/joystick.h"

#include <array>

class WebJoysticks final : public Joysticks {
public:
    int count() override;
    bool plugged(int number) override;
    std::string name(int number) override;
    PadKind kind(int number) override;
    /// Positions are always there; false only without a device.
    bool capture(int number) override { return plugged(number); }
    std::optional<JoystickState> read(int number) override;

private:
    struct Stick {
        double next_update = 0; ///< ms of the page's time
        std::optional<JoystickState> state;
    };
    std::array<Stick, 4> sticks_;
};
