#pragma once
/// Joysticks by the multimedia service of Windows, and game controllers by XInput, which knows
/// what is printed on their buttons. The service lists those too; there they are left out. The
/// first two devices that come take the two places.

#include "platform/joystick.h"
#include "platform/win32/win32_context.h"
#include "platform/win32/win32_library.h"

#include <array>
#include <chrono>
#include <vector>

#include <xinput.h>

class Win32Joysticks final : public Joysticks {
public:
    explicit Win32Joysticks(Win32Context& context);
    Win32Joysticks(const Win32Joysticks&) = delete;
    Win32Joysticks& operator=(const Win32Joysticks&) = delete;
    ~Win32Joysticks() override;

    /// At least those that the service has room for, plugged or not.
    int count() override;
    bool plugged(int number) override;
    std::string name(int number) override;
    PadKind kind(int number) override;
    /// Has the main window told of a joystick's movements, as the service does it. Positions are
    /// always there.
    bool capture(int number) override;
    std::optional<JoystickState> read(int number) override;

private:
    enum class Source : uint8_t { none, controller, joystick };
    struct Stick {
        Source source = Source::none;
        UINT id = 0; ///< of XInput, or of the service
        JoystickState state;
    };

    Stick* find(int number);
    void update();
    void search();
    void place(Source source, UINT id, const std::optional<JoystickState>& state);
    std::optional<JoystickState> ask_controller(UINT id) const;
    std::optional<JoystickState> ask(const Stick& stick) const;

    Win32Context& context_;
    Win32Library xinput_;
    decltype(&XInputGetState) get_state_ = nullptr;
    std::array<Stick, 2> sticks_;
    std::vector<UINT> captured_;
    std::chrono::steady_clock::time_point next_update_, next_search_;
};
