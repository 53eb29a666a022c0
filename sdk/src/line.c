#include "point.h"

/* The line goes from the left to the right, a point each time round on its longer way, and on the
   shorter one whenever the error is used up. */
static uint8_t *at;
static uint8_t others; /* bits of the byte that stay */
static uint8_t pattern;
static uint8_t points;
static struct {
    uint8_t shorter, longer;
    int16_t row; /* from a row to the next */
} way;

/* HL byte, C bits that stay, D pattern, E error, B points. */
static void draw(void) __naked {
    __asm
	ld	hl,(_at)
	ld	a,(_points)
	ld	b,a
	ld	a,(_others)
	ld	c,a
	ld	a,(_pattern)
	ld	d,a
	ld	a,(_way+1)
	srl	a
	ld	e,a
	ld	iy,#_way
	ret
    __endasm;
}

static void draw_flat(void) __naked {
    __asm
	call	_draw
flat:	ld	a,(hl)
	xor	a,d
	and	a,c
	xor	a,d
	ld	(hl),a
	ld	a,c
	rrca
	rrca
	ld	c,a
	jr	C,flat_same_byte
	inc	hl
flat_same_byte:
	ld	a,e
	sub	a,0(iy)
	ld	e,a
	jr	NC,flat_same_row
	add	a,1(iy)
	ld	e,a
	ld	a,l
	add	a,2(iy)
	ld	l,a
	ld	a,h
	adc	a,3(iy)
	ld	h,a
flat_same_row:
	djnz	flat
	ret
    __endasm;
}

static void draw_steep(void) __naked {
    __asm
	call	_draw
steep:	ld	a,(hl)
	xor	a,d
	and	a,c
	xor	a,d
	ld	(hl),a
	ld	a,e
	sub	a,0(iy)
	ld	e,a
	jr	NC,steep_same_column
	add	a,1(iy)
	ld	e,a
	ld	a,c
	rrca
	rrca
	ld	c,a
	jr	C,steep_same_column
	inc	hl
steep_same_column:
	ld	a,l
	add	a,2(iy)
	ld	l,a
	ld	a,h
	adc	a,3(iy)
	ld	h,a
	djnz	steep
	ret
    __endasm;
}

void graphics_line(uint8_t x0, uint8_t y0, uint8_t x1, uint8_t y1, uint8_t colour) {
    uint8_t across, down, swap;
    const uint8_t rows = graphics_height();
    if (x0 >= GRAPHICS_WIDTH || x1 >= GRAPHICS_WIDTH || y0 >= rows || y1 >= rows) return;
    if (x0 > x1) {
        swap = x0, x0 = x1, x1 = swap;
        swap = y0, y0 = y1, y1 = swap;
    }
    across = x1 - x0;
    down = y1 > y0 ? y1 - y0 : y0 - y1;
    at = point_byte(x0, y0);
    others = ~point_mask(x0);
    pattern = point_pattern(colour);
    way.row = y1 > y0 ? 40 : -40;
    if (across >= down) {
        way.shorter = down;
        way.longer = across;
        points = across + 1;
        draw_flat();
    } else {
        way.shorter = across;
        way.longer = down;
        points = down + 1;
        draw_steep();
    }
}
