#pragma once
/// Two analogue joysticks with keypads, read as comparator bits on the sound chip's port B. None is
/// plugged in yet: both sticks stand in the middle and no key is down.

#include <cstdint>

void joystick_init();
/// Looks for the host's joysticks.
void initJoyInput();
/// Port B, active low: bits 7-4 are 0 where the level in register 14 reaches the axis.
uint8_t joystick_get_state();
