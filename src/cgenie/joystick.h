#pragma once
/// Two analogue joysticks with twelve-key keypads, on the sound chip's I/O ports.
///
/// Register 14 (port A) drives a 6-bit converter; four comparators on port B tell whether its level
/// reaches the position of each axis, so software finds a position by trying levels. Bits 0-2 of
/// the same byte, when low, select the keypad columns, whose rows are read in port B bits 0-3.
/// Every bit is active low. Both keypads have the same keys. The fire buttons of the second stick
/// are not connected.

#include <cstdint>

/// What input_getJoyCords can be asked for.
enum JoystickQuery : int {
    JOYSTICK_X,            ///< 0 left to 65535 right
    JOYSTICK_Y,            ///< 0 down to 65535 up
    JOYSTICK_FIRST_BUTTON, ///< 1 when down
    JOYSTICK_SECOND_BUTTON
};

/// Both do nothing: every read looks at the input, so there is nothing to start or reset.
void joystick_init();
void joystick_reset();
/// One value of joystick 0 or 1. A joystick that is not there stands in the middle, 32767 on both
/// axes, with no button down. Any other query gives 0.
uint32_t input_getJoyCords(int joystick, int query);
/// Port B. Bits 7-4 (X and Y of joystick 0, X and Y of joystick 1) are 0 where the level in
/// register 14 reaches the axis, bits 3-0 where a key of a selected keypad column is down.
uint8_t joystick_get_state();
