#pragma once
/* Two joysticks, and the keypad with the fire buttons. They share the port of the printer. */

#include <genie/machine.h>

/* Where stick 1 or 2 stands, 0 (left, down) to 63. A measurement takes a millisecond or two. */
uint8_t stick_x(uint8_t stick);
uint8_t stick_y(uint8_t stick);

/* Bits of stick_keys. */
#define STICK_3 0x001
#define STICK_6 0x002
#define STICK_9 0x004
#define STICK_FIRE_2 0x008
#define STICK_2 0x010
#define STICK_5 0x020
#define STICK_8 0x040
#define STICK_0 0x080
#define STICK_1 0x100
#define STICK_4 0x200
#define STICK_7 0x400
#define STICK_FIRE 0x800

/* The keys that are down on the keypads, which the machine cannot tell apart. */
uint16_t stick_keys(void);
