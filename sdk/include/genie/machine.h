#pragma once
/* What the machine is made of: addresses, ports, and its time.
   The firmware's cells and entries are those of its manual. */

#include <stdint.h>

/* Memory. */
#define SCREEN_TEXT ((volatile uint8_t*)0x4400)     /* 40 characters a row */
#define SCREEN_COLOURS ((volatile uint8_t*)0xF000)  /* of the same places, 0 to 15 */
#define SCREEN_SHAPES ((volatile uint8_t*)0xF400)   /* of the characters 80 to FF, 8 bytes each */
#define GRAPHICS_MEMORY ((volatile uint8_t*)0x4800) /* 40 bytes a row, four points a byte */
#define KEYBOARD ((const volatile uint8_t*)0xF800)  /* rows at F801, F802, F804 to F880 */

/* Cells of the firmware. */
#define TEXT_ROWS (*(const volatile uint8_t*)0x42F9) /* 24 or 25 */
#define TEXT_COLOUR (*(volatile uint8_t*)0x4300)     /* 0 to 15 */
#define CURSOR (*(volatile uint16_t*)0x4020)         /* its address within the text screen */
#define LATCH_COPY (*(volatile uint8_t*)0x431C)      /* what was last written to LATCH */

/* Ports. */
__sfr __at(0xF8) SOUND_SELECT;
__sfr __at(0xF9) SOUND_DATA;
__sfr __at(0xFA) CRTC_SELECT;
__sfr __at(0xFB) CRTC_DATA;
__sfr __at(0xFF) LATCH;

/* Bits of LATCH. */
#define LATCH_BACKGROUND 0x04  /* the background colour is shown */
#define LATCH_CHARACTERS 0x18  /* where the upper characters come from */
#define LATCH_GRAPHICS 0x20    /* the graphics screen is shown */
#define LATCH_BACKGROUNDS 0xC0 /* which background */

/* Writes `bits` into those bits of LATCH that are set in `mask`, and into its copy. */
void latch_set(uint8_t mask, uint8_t bits);

/* Waits so many milliseconds. Nothing else runs meanwhile: the machine has no clock that could
   interrupt a program. */
void wait(uint16_t milliseconds);

/* Ends the program, as the end of main does: back to BASIC's prompt. If the program was started
   before BASIC, a key leads to the question MEM SIZE? then. */
void end_program(void);
