#pragma once
/// Joysticks by the multimedia service of Windows, under its numbers.

#include "platform/joystick.h"
#include "platform/win32/win32_context.h"

#include <array>
#include <chrono>

class Win32Joysticks final : public Joysticks {
public:
    explicit Win32Joysticks(Win32Context& context) : context_(context) {}
    Win32Joysticks(const Win32Joysticks&) = delete;
    Win32Joysticks& operator=(const Win32Joysticks&) = delete;
    ~Win32Joysticks() override;

    /// Those that the service has room for, plugged or not.
    int count() override;
    bool plugged(int number) override;
    std::string name(int number) override;
    PadKind kind(int number) override;
    /// Has the main window told of movements, as the service does it; positions are always there.
    bool capture(int number) override;
    std::optional<JoystickState> read(int number) override;

private:
    struct Stick {
        std::chrono::steady_clock::time_point next_question;
        bool there = false; ///< when it was asked last
        bool captured = false;
        JoystickState state;
    };

    Stick* find(int number);

    Win32Context& context_;
    std::array<Stick, 2> sticks_;
};
