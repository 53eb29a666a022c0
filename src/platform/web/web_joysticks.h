#pragma once
#include "platform/joystick.h"

struct WebJoysticks final : public Joysticks {
    int count() override { return 0; }
    bool plugged(int /*number*/) override { return false; }
    std::string name(int /*number*/) override { return {}; }
    PadKind kind(int /*number*/) override { return PadKind::lettered; }
    bool capture(int /*number*/) override { return false; }
    std::optional<JoystickState> read(int /*number*/) override { return {}; }
};
