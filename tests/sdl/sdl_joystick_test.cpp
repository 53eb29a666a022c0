#include "platform/sdl/sdl_joystick.h"

#include <SDL.h>

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

/// A device that SDL itself makes up, and a handle to move it by.
struct VirtualStick {
    VirtualStick(SDL_JoystickType type, int axes, int buttons, int hats)
        : index(SDL_JoystickAttachVirtual(type, axes, buttons, hats)),
          joystick(SDL_JoystickOpen(index)), id(SDL_JoystickInstanceID(joystick)) {}
    ~VirtualStick() { detach(); }
    VirtualStick(const VirtualStick&) = delete;
    VirtualStick& operator=(const VirtualStick&) = delete;

    void axes(int x, int y) const {
        SDL_JoystickSetVirtualAxis(joystick, 0, Sint16(x));
        SDL_JoystickSetVirtualAxis(joystick, 1, Sint16(y));
    }
    void button(int number, bool down) const {
        SDL_JoystickSetVirtualButton(joystick, number, down);
    }
    void detach() {
        if (!joystick) return;
        for (int i = 0; i < SDL_NumJoysticks(); ++i) {
            if (SDL_JoystickGetDeviceInstanceID(i) == id) SDL_JoystickDetachVirtual(i);
        }
        SDL_JoystickClose(joystick);
        joystick = nullptr;
    }

    int index;
    SDL_Joystick* joystick;
    SDL_JoystickID id;
};

class SdlJoystickTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(sticks.count(), 0) << "this test wants the places for itself";
        ASSERT_FALSE(sticks.read(0));
        ASSERT_FALSE(SDL_WasInit(SDL_INIT_VIDEO));
    }
    /// Past the time in which the devices are not asked again.
    static void settle() { std::this_thread::sleep_for(std::chrono::milliseconds(10)); }

    void expect(int number, int x, int y, bool first, bool second, const char* what) {
        settle();
        const auto state = sticks.read(number);
        ASSERT_TRUE(state) << what;
        EXPECT_EQ(state->x, x) << what;
        EXPECT_EQ(state->y, y) << what;
        EXPECT_EQ(state->is_down(PAD_A), first) << what;
        EXPECT_EQ(state->is_down(PAD_B), second) << what;
    }

    SdlJoysticks sticks;
};

TEST_F(SdlJoystickTest, PlainStick) {
    const VirtualStick stick(SDL_JOYSTICK_TYPE_FLIGHT_STICK, 2, 3, 1);
    ASSERT_TRUE(stick.joystick) << SDL_GetError();
    ASSERT_FALSE(SDL_IsGameController(stick.index));
    expect(0, 32768, 32768, false, false, "at rest");
    EXPECT_EQ(sticks.name(0), SDL_JoystickName(stick.joystick));
    EXPECT_NE(sticks.name(0), "");
    stick.axes(-32768, 32767);
    stick.button(0, true);
    expect(0, 0, 65535, true, false, "bottom left");
    stick.axes(1000, -2000);
    stick.button(0, false);
    stick.button(1, true);
    stick.button(2, true);
    expect(0, 33768, 30768, false, true, "in between");
    const struct {
        Uint8 hat;
        int x, y;
    } hats[] = {{SDL_HAT_LEFT, 0, 30768},
                {SDL_HAT_RIGHTUP, 65535, 0},
                {SDL_HAT_DOWN, 33768, 65535},
                {SDL_HAT_CENTERED, 33768, 30768}};
    for (const auto& c : hats) {
        SDL_JoystickSetVirtualHat(stick.joystick, 0, c.hat);
        expect(0, c.x, c.y, false, true, "hat");
    }
}

TEST_F(SdlJoystickTest, GameControllerNeedsNoConfiguration) {
    const VirtualStick pad(SDL_JOYSTICK_TYPE_GAMECONTROLLER, SDL_CONTROLLER_AXIS_MAX,
                           SDL_CONTROLLER_BUTTON_MAX, 0);
    ASSERT_TRUE(pad.joystick) << SDL_GetError();
    ASSERT_TRUE(SDL_IsGameController(pad.index));
    pad.axes(32767, -32768);
    pad.button(SDL_CONTROLLER_BUTTON_B, true);
    expect(0, 65535, 0, false, true, "left stick");
    pad.axes(0, 0);
    pad.button(SDL_CONTROLLER_BUTTON_B, false);
    const struct {
        SDL_GameControllerButton button;
        int x, y;
        bool first;
        int other = -1;
    } buttons[] = {{SDL_CONTROLLER_BUTTON_A, 32768, 32768, true},
                   {SDL_CONTROLLER_BUTTON_X, 32768, 32768, false, PAD_X},
                   {SDL_CONTROLLER_BUTTON_LEFTSHOULDER, 32768, 32768, false, PAD_LEFT_SHOULDER},
                   {SDL_CONTROLLER_BUTTON_START, 32768, 32768, false, PAD_START},
                   {SDL_CONTROLLER_BUTTON_DPAD_UP, 32768, 0, false},
                   {SDL_CONTROLLER_BUTTON_DPAD_DOWN, 32768, 65535, false},
                   {SDL_CONTROLLER_BUTTON_DPAD_LEFT, 0, 32768, false},
                   {SDL_CONTROLLER_BUTTON_DPAD_RIGHT, 65535, 32768, false}};
    for (const auto& c : buttons) {
        pad.button(c.button, true);
        expect(0, c.x, c.y, c.first, false, SDL_GameControllerGetStringForButton(c.button));
        const uint16_t others = sticks.read(0)->buttons & ~(1U << PAD_A);
        EXPECT_EQ(others, c.other < 0 ? 0 : 1U << c.other);
        pad.button(c.button, false);
    }
}

TEST_F(SdlJoystickTest, DevicesComeAndGo) {
    VirtualStick first(SDL_JOYSTICK_TYPE_FLIGHT_STICK, 2, 2, 0);
    settle();
    EXPECT_EQ(sticks.count(), 1);
    const VirtualStick second(SDL_JOYSTICK_TYPE_FLIGHT_STICK, 2, 2, 0);
    first.axes(-32768, -32768);
    second.axes(32767, 32767);
    expect(0, 0, 0, false, false, "first");
    expect(1, 65535, 65535, false, false, "second");
    EXPECT_TRUE(sticks.capture(0) && sticks.capture(1));

    first.detach();
    settle();
    EXPECT_FALSE(sticks.read(0) || sticks.plugged(0) || sticks.capture(0));
    EXPECT_EQ(sticks.name(0), "");
    expect(1, 65535, 65535, false, false, "second keeps its number");
    EXPECT_EQ(sticks.count(), 2);

    const VirtualStick third(SDL_JOYSTICK_TYPE_FLIGHT_STICK, 2, 2, 0);
    third.axes(0, -32768);
    expect(0, 32768, 0, false, false, "third in the place of the first");
    for (const int number : {-1, 2}) EXPECT_FALSE(sticks.read(number)) << number;
}

} // namespace
