#pragma once
/// The host's joysticks and game controllers, by SDL. The first two that come take the two places;
/// a place that falls free goes to the next device, so a stick that stays keeps its number.

#include "platform/joystick.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <vector>

class SdlJoysticks final : public Joysticks {
public:
    SdlJoysticks();
    ~SdlJoysticks() override;

    /// Up to the last place that is taken.
    int count() override;
    bool plugged(int number) override;
    std::string name(int number) override;
    PadKind kind(int number) override;
    /// Positions are always there; false only without a device.
    bool capture(int number) override;
    std::optional<JoystickState> read(int number) override;

private:
    struct Stick;

    bool start();
    void update();
    void release_lost();
    void open_new();
    void open_device(int index);
    Stick* find(int number);

    static constexpr int PLACES = 2;
    std::array<std::unique_ptr<Stick>, PLACES> sticks_;
    std::vector<int32_t> refused_; ///< devices that could not be opened
    bool start_tried_ = false;
    bool started_ = false;
    std::chrono::steady_clock::time_point next_update_;
};
