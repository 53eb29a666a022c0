#include <genie/screen.h>

#include <string.h>

#define CELLS_OF_ROW SCREEN_COLUMNS
#define FIRST_SHAPE 0x80
#define SHAPE_BYTES 8

/* Registers 0 to 13 of the screen controller for text: scan lines of 64 us with 40 characters, rows
   of 8 lines, the picture at 4400. Register 6 is the number of rows. */
static const uint8_t text_format[] = {70, 40, 52, 0xF5, 38, 0, 24, 29, 0, 7, 0x60, 7, 0x04, 0x00};
#define ROWS_REGISTER 6

/* The firmware documents no entry that goes back from graphics. */
void screen_show(void) {
    uint8_t i;
    for (i = 0; i < sizeof text_format; ++i) {
        CRTC_SELECT = i;
        CRTC_DATA = i == ROWS_REGISTER ? TEXT_ROWS : text_format[i];
    }
    latch_set(LATCH_GRAPHICS, 0);
}

void screen_clear(void) __naked {
    __asm
	push	ix
	call	0x01C9
	pop	ix
	ret
    __endasm;
}

void screen_put(char character) __naked {
    character;
    __asm
	cp	a,#10
	jr	NZ,shown
	ld	a,#13
shown:	push	ix
	call	0x0033
	pop	ix
	ret
    __endasm;
}

void screen_print(const char *text) {
    while (*text) screen_put(*text++);
}

/* For printf. */
int putchar(int character) {
    screen_put(character);
    return character;
}

void screen_number(int16_t number) {
    char digits[6];
    uint8_t count = 0;
    uint16_t rest = number;
    if (number < 0) {
        screen_put('-');
        rest = -rest;
    }
    do {
        digits[count++] = '0' + rest % 10;
        rest /= 10;
    } while (rest);
    while (count) screen_put(digits[--count]);
}

uint16_t screen_place(uint8_t column, uint8_t row) { return row * CELLS_OF_ROW + column; }

void screen_goto(uint8_t column, uint8_t row) {
    CURSOR = (uint16_t)SCREEN_TEXT + screen_place(column, row);
}

void screen_cursor(bool shown) { screen_put(shown ? SCREEN_CURSOR_ON : SCREEN_CURSOR_OFF); }

void screen_colour(uint8_t colour) { TEXT_COLOUR = colour; }

void screen_draw(uint8_t column, uint8_t row, uint8_t character, uint8_t colour) {
    const uint16_t place = screen_place(column, row);
    SCREEN_TEXT[place] = character;
    SCREEN_COLOURS[place] = colour;
}

void screen_shape(uint8_t character, const uint8_t *rows) {
    memcpy((uint8_t *)SCREEN_SHAPES + (character - FIRST_SHAPE) * SHAPE_BYTES, rows, SHAPE_BYTES);
}

void screen_shapes(bool generator_80, bool generator_c0) {
    latch_set(LATCH_CHARACTERS, (generator_80 ? 0x10 : 0) | (generator_c0 ? 0x08 : 0));
}

void screen_background(uint8_t colour) {
    if (colour == 0) latch_set(LATCH_BACKGROUND, 0);
    else latch_set(LATCH_BACKGROUND | LATCH_BACKGROUNDS, LATCH_BACKGROUND | (colour - 1) << 6);
}
