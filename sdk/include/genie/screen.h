#pragma once
/* The text screen: 40 columns, TEXT_ROWS rows, sixteen colours. */

#include <genie/machine.h>
#include <stdbool.h>

#define SCREEN_COLUMNS 40

/* Codes that screen_put obeys. '\n' begins a row. */
#define SCREEN_ERASE '\x08' /* the character before the cursor */
#define SCREEN_CURSOR_ON '\x0E'
#define SCREEN_CURSOR_OFF '\x0F'
#define SCREEN_LEFT '\x18'
#define SCREEN_RIGHT '\x19'
#define SCREEN_DOWN '\x1A'
#define SCREEN_UP '\x1B'
#define SCREEN_HOME '\x1C'
#define SCREEN_ROW_START '\x1D'
#define SCREEN_CLEAR_ROW '\x1E'  /* from the cursor to the end of the row */
#define SCREEN_CLEAR_REST '\x1F' /* from the cursor to the end of the screen */

/* Shows the text screen. */
void screen_show(void);
/* Clears it; the cursor goes to the upper left corner. */
void screen_clear(void);
/* Moves the cursor to a column, 0 to 39, and a row. */
void screen_goto(uint8_t column, uint8_t row);
/* Shows or hides the cursor. */
void screen_cursor(bool shown);
/* Colour of what is printed from now on, 0 to 15: one less than BASIC's COLOUR takes. */
void screen_colour(uint8_t colour);

/* Print at the cursor, in the colour chosen; behind the last place the screen scrolls. */
void screen_put(char character);
void screen_print(const char* text);
void screen_number(int16_t number);

/* The number of a place, for SCREEN_TEXT and SCREEN_COLOURS. */
uint16_t screen_place(uint8_t column, uint8_t row);
/* Draws one character without the cursor, codes below 32 as their shapes. */
void screen_draw(uint8_t column, uint8_t row, uint8_t character, uint8_t colour);

/* Gives a character from 80 to FF the shape of eight bytes, the top row first, bit 7 left. It is
   seen where screen_shapes has chosen the character memory. */
void screen_shape(uint8_t character, const uint8_t* rows);
/* Where the shapes of 80-BF and of C0-FF come from: the character memory, or the generator. */
void screen_shapes(bool generator_80, bool generator_c0);
/* Background colour 1 to 4 as BASIC's BGRD has them, 0 for black. */
void screen_background(uint8_t colour);
