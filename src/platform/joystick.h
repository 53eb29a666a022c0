#pragma once
#include <cstdint>
#include <optional>
#include <string>

/// What a person can press on a joystick or a game controller, by the names that most controllers
/// have on them. A plain joystick has its buttons in this order, from PAD_A on.
enum PadInput : uint8_t {
    PAD_UP, ///< the directions of stick, hat and D-pad
    PAD_DOWN,
    PAD_LEFT,
    PAD_RIGHT,
    PAD_A, ///< the lower one of the four buttons
    PAD_B, ///< right
    PAD_LEFT_SHOULDER,
    PAD_X, ///< left
    PAD_Y, ///< upper
    PAD_RIGHT_SHOULDER,
    PAD_LEFT_TRIGGER, ///< pressed more than half down
    PAD_RIGHT_TRIGGER,
    PAD_BACK,
    PAD_START,
    PAD_LEFT_STICK, ///< pressed down
    PAD_RIGHT_STICK,
    PAD_INPUTS
};

/// What is printed on the buttons.
enum class PadKind : uint8_t {
    lettered,    ///< A, B, X, Y
    playstation, ///< cross, circle, square, triangle
    numbered     ///< a plain joystick
};

struct JoystickState {
    uint16_t x = 32767;   ///< 0 left to 65535 right
    uint16_t y = 32767;   ///< 0 up to 65535 down
    uint16_t buttons = 0; ///< bits by PadInput; those of the directions are 0

    bool is_down(PadInput button) const { return (buttons >> button & 1) != 0; }
    void set(PadInput button, bool down) {
        const unsigned bit = 1U << button;
        buttons = uint16_t(down ? buttons | bit : buttons & ~bit);
    }
};

/// Joysticks and game controllers, numbered from 0; they come and go while the program runs.
struct Joysticks {
    virtual ~Joysticks() = default;
    virtual int count() = 0;                  ///< devices the host knows
    virtual bool plugged(int number) = 0;     ///< is there one of this number now?
    virtual std::string name(int number) = 0; ///< as the host calls it; empty without one
    virtual PadKind kind(int number) = 0;     ///< lettered without one
    /// Starts delivery of positions; false when the device cannot be had.
    virtual bool capture(int number) = 0;
    /// Nothing when it cannot be read.
    virtual std::optional<JoystickState> read(int number) = 0;
};
